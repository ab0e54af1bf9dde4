#pragma once

#include "../MMTParser.h"

class CMMTDesc;
class CMMTElementIdentifierMapping;
class CMMTElementLocation;
class CIdentifierUnitBase;
struct SIdentifier;
struct SLocationInfo;
struct UInternalIdentifier;

/// Base of the MMT signalling tables (ISO/IEC 23008-1): table_id, version, a 16-bit length, and what the
/// table's own class reads. An object takes one table: what a further Parse finds joins the lists of the first.
class VYR_API CMMTTbl : public IMMTParser {
  public:
    /// Which table, as its class tells.
    enum EClassType { CLASS_TYPE_PA = 0, CLASS_TYPE_MPI, CLASS_TYPE_MP, CLASS_TYPE_CRI, CLASS_TYPE_DCI, CLASS_TYPE_SI };

    /// `classType` is an EClassType.
    explicit CMMTTbl(unsigned int classType);
    CMMTTbl(const CMMTTbl&) = delete;
    CMMTTbl& operator=(const CMMTTbl&) = delete;

    /// Reads the header; subclasses read on. False: the data ended.
    bool Parse(SItem* item) override;
    /// Logs the header, at debug priority.
    virtual void Dump() const;
    /// Calls `callback(user, descriptor)` for each descriptor of the table, in wire order; they stay the
    /// table's.
    virtual bool GetDescriptors(void (*callback)(void* user, CMMTDesc* descriptor), void* user) = 0;
    /// Hands what was parsed to the callbacks that the class has. Here: does nothing; false.
    virtual bool Process();

    /// "CLASS_TYPE_PA" and so on; required: "UNKONWN CLASS TYPE" for a type without a name.
    const char* ClassString() const;
    /// One of EClassType; tells which class the table is.
    unsigned int ClassType() const { return m_classType; }

    /// table_id; 0xFF before Parse.
    unsigned char TableId() const { return m_tableId; }
    /// version; 0 before Parse.
    unsigned char Version() const { return m_version; }
    /// length in bytes of what follows the header; 0 before Parse.
    unsigned short Length() const { return m_length; }

  protected:
    /// CMMTTbl::Parse, and the check that as many bytes follow as the length says; `error` is the message
    /// that logs their lack.
    bool t_ParseHeader(SItem* item, const char* error);

    /// Fills `out` from a location of type 0 or 1; true. Another type is logged: false, `out` has the type
    /// alone. False too without a location unit, `out` is untouched then.
    static bool t_GetMMTGeneralLocationInfo(SLocationInfo* out, const CMMTElementLocation* location);
    /// Fills `out` from an identifier of type 0 (asset id); true. The text in it is the caller's, freed with
    /// delete[]. Another type is logged: false, `out` has the type alone.
    static bool t_GetIdentifier(SIdentifier* out, const CMMTElementIdentifierMapping* mapping);

    /// While callbacks of Process or GetDescriptors are called: the message that owns the table takes no other.
    bool t_visiting = false;

  private:
    friend class CMMTMsgPa;
    static bool m_AssetId(const CIdentifierUnitBase* unit, UInternalIdentifier* out);

    unsigned char m_tableId = 0xFF;
    unsigned char m_version = 0;
    unsigned short m_length = 0;
    unsigned int m_classType;
};
