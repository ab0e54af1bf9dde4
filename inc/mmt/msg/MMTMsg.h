#pragma once

#include "../MMTParser.h"

class CMMTDesc;

/// Base of the MMT signalling messages (ISO/IEC 23008-1 10.3). An object takes one message, as the factory makes
/// them: required, what a further Parse finds in most classes joins the lists of the first until the object goes,
/// so that who reuses one keeps all. Held is 64 bytes at most for each of the message, inflated. See docs/using.md.
class VYR_API CMMTMsg : public IMMTParser {
  public:
    /// Which message, as its class tells.
    enum EClassType {
        CLASS_TYPE_PA = 0,
        CLASS_TYPE_MPI,
        CLASS_TYPE_MPT,
        CLASS_TYPE_CRI,
        CLASS_TYPE_DCI,
        CLASS_TYPE_SSWR,
        CLASS_TYPE_ALFEC,
        CLASS_TYPE_LS,
        CLASS_TYPE_LR,
        CLASS_TYPE_HRBM,
        CLASS_TYPE_HRBMREMOVAL,
        CLASS_TYPE_MC,
        CLASS_TYPE_AC,
        CLASS_TYPE_AF,
        CLASS_TYPE_RQF,
        CLASS_TYPE_NAM,
        CLASS_TYPE_LDC,
        CLASS_TYPE_ADC,
        CLASS_TYPE_ATSC3,
        CLASS_TYPE_SMM
    };

    /// Of a class derived from it.
    explicit CMMTMsg(EClassType classType);
    CMMTMsg(const CMMTMsg&) = delete;
    CMMTMsg& operator=(const CMMTMsg&) = delete;

    /// Reads message id and version; subclasses read the length, 16 or 32 bits wide, and what follows.
    bool Parse(SItem* item) override;
    /// Logs the header, at debug priority.
    virtual void Dump() const;
    /// Hands what was parsed to the callbacks that the class has. After a Parse that succeeded.
    virtual bool Process() = 0;
    /// Calls `callback(user, descriptor)` for each descriptor of the message, on this thread; they stay the
    /// message's. The callback may call anything of the message, and may throw; a PA message's Parse is refused
    /// inside, as it is in callbacks of its tables (asserted, "!m_visiting").
    virtual bool GetDescriptors(void (*callback)(void* user, CMMTDesc* descriptor), void* user) = 0;

    /// The message id in the first two bytes of `data`.
    static unsigned short MessageId(const unsigned char* data);
    /// "CLASS_TYPE_PA" and so on; required: "UNKONWN CLASS TYPE" for a type without a name.
    const char* ClassString() const;

    /// Which message it is.
    EClassType ClassType() const { return m_classType; }
    /// Message id of the header; 0xFFFF before Parse.
    unsigned short Id() const { return m_id; }
    /// Version of the header; 0 before Parse.
    unsigned char Version() const { return m_version; }
    /// Length of the header, in bytes behind it; 0 before Parse.
    unsigned int Length() const { return m_length; }

  protected:
    /// The framing that every message begins with: CMMTMsg::Parse, a length of `bits` (16 or 32), and the
    /// check that so many bytes are there. `format` is the message that logs their lack, with the item's
    /// size and the length.
    bool t_ParseHeader(SItem* item, unsigned int bits, const char* format);

  private:
    EClassType m_classType;
    unsigned short m_id = 0xFFFF;
    unsigned char m_version = 0;
    unsigned int m_length = 0;
};
