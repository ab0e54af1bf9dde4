#include "wire/MessageAssembler.h"

#include <algorithm>
#include <utility>

namespace vyr::inspect {

namespace {

constexpr unsigned k_whole = 0;
constexpr unsigned k_first = 1;
constexpr unsigned k_last = 3;

}  // namespace

CMessageAssembler::CMessageAssembler(CAssemblyMemory& memory, TSink sink)
    : m_sink(std::move(sink)), m_objects(memory, [this](const TToi& toi, SView message) {
          ++m_counts.complete;
          m_sink(static_cast<std::uint16_t>(toi.first), message);
      })
{
}

bool CMessageAssembler::Take(const SMmtpPacket& packet)
{
    constexpr std::size_t k_header = 2;
    SFlow& flow = m_Flow(packet.packetId);
    const EArrival arrival = m_Arrive(flow, packet.sequenceNumber);
    if (arrival == EArrival::REPEATED) {
        ++m_counts.repeated;
        return true;
    }
    if (arrival == EArrival::BEHIND_A_GAP) {
        m_Lose(flow);
    }
    const SView payload = packet.payload;
    if (payload.size <= k_header) {
        m_Lose(flow);
        return false;
    }
    const unsigned indicator = payload[0] >> 6;
    const std::size_t lengthSize = (payload[0] & 0x02) != 0 ? 4 : 2;
    const bool several = (payload[0] & 0x01) != 0;
    const SView data = payload.From(k_header);
    if (indicator == k_whole) {
        if (arrival != EArrival::LATE) {
            m_Lose(flow);
            flow.fragments = EFragments::NONE;
        }
        return m_TakeWhole(packet, data, several, lengthSize);
    }
    if (several) {
        m_Lose(flow);
        return false;
    }
    // Of a fragment that comes late, the message has been lost already.
    if (arrival != EArrival::LATE) {
        m_TakeFragment(packet, flow, indicator, data);
    }
    return true;
}

SMessageCounts CMessageAssembler::Counts() const
{
    SMessageCounts counts = m_counts;
    counts.lost += m_objects.Open().size();
    counts.dropped += m_objects.Counts().dropped;
    return counts;
}

CMessageAssembler::SFlow& CMessageAssembler::m_Flow(std::uint16_t packetId)
{
    return m_flows.Hold(packetId, [this](std::uint16_t, SFlow& oldest) { m_Lose(oldest); });
}

/// A sender that begins anew counts from anywhere: a number far behind the highest is behind a gap, too.
CMessageAssembler::EArrival CMessageAssembler::m_Arrive(SFlow& flow, std::uint32_t sequenceNumber)
{
    constexpr std::uint32_t k_window = 64;
    const std::uint32_t ahead = sequenceNumber - flow.sequenceNumber;
    const std::uint32_t behind = flow.sequenceNumber - sequenceNumber;
    if (flow.begun && behind < k_window) {
        const std::uint64_t bit = std::uint64_t{1} << behind;
        const bool again = (flow.seen & bit) != 0;
        flow.seen |= bit;
        return again ? EArrival::REPEATED : EArrival::LATE;
    }
    const bool next = !flow.begun || ahead == 1;
    flow.seen = (flow.begun && ahead < k_window ? flow.seen << ahead : 0) | 1;
    flow.begun = true;
    flow.sequenceNumber = sequenceNumber;
    return next ? EArrival::NEXT : EArrival::BEHIND_A_GAP;
}

bool CMessageAssembler::m_TakeWhole(const SMmtpPacket& packet, SView data, bool several, std::size_t lengthSize)
{
    if (!several) {
        ++m_counts.complete;
        m_sink(packet.packetId, data);
        return true;
    }
    for (bool first = true; data.size != 0; first = false) {
        const std::size_t length = data.size < lengthSize ? 0 : lengthSize == 4 ? data.Be32(0) : data.Be16(0);
        if (length == 0 || length > data.size - lengthSize) {
            const auto isZero = [](unsigned char byte) { return byte == 0; };
            return !first && std::all_of(data.data, data.data + data.size, isZero);  // padding
        }
        ++m_counts.complete;
        m_sink(packet.packetId, data.From(lengthSize).First(length));
        data = data.From(lengthSize + length);
    }
    return true;
}

void CMessageAssembler::m_TakeFragment(const SMmtpPacket& packet, SFlow& flow, unsigned indicator, SView data)
{
    if (indicator == k_first) {
        m_Lose(flow);
        flow.fragments = EFragments::KEPT;
        flow.message = {packet.packetId, m_begun++};
        flow.size = 0;
    } else if (flow.fragments == EFragments::NONE) {
        ++m_counts.lost;
        flow.fragments = EFragments::SKIPPED;
    } else if (flow.fragments == EFragments::KEPT && !m_objects.Holds(flow.message)) {
        flow.fragments = EFragments::SKIPPED;
    }
    if (flow.fragments == EFragments::KEPT && flow.size + data.size > k_maxMessage) {
        m_objects.Drop(flow.message);
        ++m_counts.dropped;
        flow.fragments = EFragments::SKIPPED;
    }
    if (flow.fragments == EFragments::KEPT) {
        SLctPacket piece;
        piece.toi = flow.message;
        piece.startOffset = static_cast<std::uint32_t>(flow.size);
        piece.closeObject = indicator == k_last;
        piece.data = data;
        flow.size += data.size;
        m_objects.Take(piece);
    }
    if (indicator == k_last) {
        flow.fragments = EFragments::NONE;
    }
}

/// Lets the message go that was begun, if any; what follows of it is skipped.
void CMessageAssembler::m_Lose(SFlow& flow)
{
    if (flow.fragments == EFragments::KEPT) {
        m_counts.lost += m_objects.Drop(flow.message) ? 1 : 0;
        flow.fragments = EFragments::SKIPPED;
    }
}

}  // namespace vyr::inspect
