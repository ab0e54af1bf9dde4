#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "MMTMsgPayload.h"

/// ARQ configuration message (AC message, message_id 0x0206; ISO/IEC 23008-1): where and how long a receiver can
/// ask for lost packets.
class VYR_API CMMTMsgAc : public CMMTMsgPayload {
  public:
    static constexpr unsigned short k_messageId = 0x0206;  ///< message_id

    /// The packets of one packet id; a field that does not fit in the message is absent.
    struct SEntry {
        /// packet_id.
        unsigned short packetId;
        std::optional<unsigned int> windowTimeout;  ///< retransmission window timeout
        std::string_view serverAddress;             ///< in Payload(): 4 bytes of IPv4 or 16 of IPv6, in wire order
        std::optional<unsigned short> serverPort;   ///< UDP port
    };

    CMMTMsgAc() : CMMTMsgPayload(CLASS_TYPE_AC) {}

    bool Parse(SItem* item) override;
    void Dump() const override;

    /// In wire order, those whose packet id is there.
    const std::vector<SEntry>& Entries() const { return m_entries; }

  private:
    std::vector<SEntry> m_entries;
};
