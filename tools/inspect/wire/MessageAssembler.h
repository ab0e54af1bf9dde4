#pragma once

#include <cstdint>
#include <functional>

#include "base/BoundedMap.h"
#include "base/Bytes.h"
#include "model/Counts.h"
#include "wire/Mmtp.h"
#include "wire/ObjectAssembler.h"

namespace vyr::inspect {

/// Takes the signalling messages out of the MMTP packets of a session: whole ones, several in a packet, and
/// fragments of one in consecutive packets of a packet id, in bounded memory.
class CMessageAssembler {
  public:
    static constexpr std::size_t k_maxMessage = 1048576;  ///< bytes
    static constexpr std::size_t k_maxFlows = 64;         ///< packet ids; beyond, the one first seen is forgotten

    using TSink = std::function<void(std::uint16_t packetId, SView message)>;

    /// The sink's message is good during the call only.
    CMessageAssembler(CAssemblyMemory& memory, TSink sink);

    /// Takes a packet that carries signalling. False: its payload contradicts itself; what came before the
    /// contradiction is taken.
    bool Take(const SMmtpPacket& packet);
    /// With the messages that are begun and not whole among the lost ones.
    SMessageCounts Counts() const;

  private:
    enum class EArrival { NEXT, BEHIND_A_GAP, LATE, REPEATED };
    enum class EFragments { NONE, KEPT, SKIPPED };

    /// The packets of one packet id.
    struct SFlow {
        bool begun = false;
        std::uint32_t sequenceNumber = 0;  ///< the highest
        std::uint64_t seen = 0;            ///< bit n: the one n before it came
        EFragments fragments = EFragments::NONE;
        TToi message;  ///< in m_objects, of the fragments kept
        std::size_t size = 0;
    };

    SFlow& m_Flow(std::uint16_t packetId);
    static EArrival m_Arrive(SFlow& flow, std::uint32_t sequenceNumber);
    bool m_TakeWhole(const SMmtpPacket& packet, SView data, bool several, std::size_t lengthSize);
    void m_TakeFragment(const SMmtpPacket& packet, SFlow& flow, unsigned indicator, SView data);
    void m_Lose(SFlow& flow);

    TSink m_sink;
    CObjectAssembler m_objects;  ///< TOI: packet id, and a number of the message's own
    CBoundedMap<std::uint16_t, SFlow> m_flows{k_maxFlows};
    std::uint64_t m_begun = 0;
    SMessageCounts m_counts;
};

}  // namespace vyr::inspect
