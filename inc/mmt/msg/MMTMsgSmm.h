#pragma once

#include <memory>
#include <string_view>

#include "MMTMsgPayload.h"

/// Signed message (message_id 0x8101; ATSC A/331): an MMT message and a signature. Whoever wants it verified does
/// so over SignedBlock.
class VYR_API CMMTMsgSmm : public CMMTMsgPayload {
  public:
    static constexpr unsigned short k_messageId = 0x8101;  ///< message_id
    CMMTMsgSmm() : CMMTMsgPayload(CLASS_TYPE_SMM) {}

    /// A wrapped message that is unsupported or does not parse does not fail this one. Signed messages in
    /// signed messages are followed four deep.
    bool Parse(SItem* item) override;
    void Dump() const override;
    /// Processes the wrapped message; true.
    bool Process() override;
    /// The wrapped message's. True; a null callback is asserted: false.
    bool GetDescriptors(void (*callback)(void* user, CMMTDesc* descriptor), void* user) override;

    /// service_id; 0 before Parse.
    unsigned short ServiceId() const { return m_serviceId; }
    /// The wrapped message, parsed. Empty when it is not there, is unsupported or does not parse.
    const std::shared_ptr<CMMTMsg>& Message() const { return m_message; }
    /// Its bytes, in Payload(); null data when they are not there.
    std::string_view MessageData() const { return m_messageData; }
    /// The payload up to the signature's length, in Payload(); null data without the wrapped message's bytes.
    std::string_view SignedBlock() const { return m_signedBlock; }
    /// The signature (CMS SignedData, RFC 5652), in Payload(); null data when it is not there.
    std::string_view Signature() const { return m_signature; }

  private:
    void m_ParseMessage();

    unsigned short m_serviceId = 0;
    unsigned int m_depth = 0;  // number of signed messages around this one
    std::shared_ptr<CMMTMsg> m_message;
    std::string_view m_messageData;
    std::string_view m_signedBlock;
    std::string_view m_signature;
};
