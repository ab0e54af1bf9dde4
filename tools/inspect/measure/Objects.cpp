#include "measure/Objects.h"

#include <algorithm>
#include <utility>

namespace vyr::inspect {

namespace {

/// A number for the TOI; those of more than 64 bits share them.
std::uint64_t Number(const TToi& toi)
{
    const std::uint64_t number = toi.second ^ toi.first * 0x9E3779B97F4A7C15u;
    return number == ~std::uint64_t{0} ? number - 1 : number;
}

}  // namespace

CObjects::~CObjects()
{
    for (const SObject& object : m_open) {
        m_kept.parts -= object.bytes.Parts();
    }
    m_kept.open -= m_open.size();
    m_kept.parts -= m_whole.Parts();
}

void CObjects::Take(const SLctPacket& packet, const SMoment& moment, const TLength& length)
{
    ++m_packets;
    if (moment.time && !m_begun) {
        m_begun = moment.at;
    }
    const bool known = m_Find(packet.toi);
    if (packet.data.size == 0) {
        if (packet.closeObject && known) {
            m_done += m_open[m_last].lastCame || m_open[m_last].closed ? 0 : 1;
            m_open[m_last].closed = true;
        }
        return;
    }
    const std::uint64_t begin = packet.startOffset;
    const std::uint64_t end = begin + packet.data.size;
    std::optional<std::uint64_t> told = packet.transferLength;
    if (!told && packet.closeObject) {
        told = end;
    }
    if (told && end > *told) {
        return;  // no object has this
    }
    if (!known && begin == 0 && end == told) {
        const bool again = m_whole.Has(Number(packet.toi));
        m_counts.begun += again ? 0 : 1;
        ++m_done;
        m_Whole(packet.toi, again);
        return;
    }
    SObject* object = known ? &m_open[m_last] : &m_Open(packet.toi, moment, length);
    if (object->signalled && (end > *object->length || told.value_or(*object->length) != *object->length)) {
        object->length.reset();  // the packets know it better
        object->signalled = object->lastCame = false;
    }
    const bool differs = object->length && told && *object->length != *told;
    if (differs || object->bytes.End() > told.value_or(object->bytes.End()) || end > object->length.value_or(end)) {
        // The sender has another object under the TOI now. Where packets do not say the length, some of it may have
        // been taken for the one before.
        const bool again = object->again;
        const bool mixed = object->unsaid && begin != 0;
        m_counts.unknown += again ? 0 : 1;
        m_counts.begun += again ? 0 : 1;
        m_kept.parts -= object->bytes.Parts();
        *object = {};
        m_Begin(*object, packet.toi, moment, {});
        object->again = again;
        object->mixed = mixed;
    }
    object->length = told ? told : object->length;
    object->signalled = object->signalled && !told;
    object->unsaid = object->unsaid || !packet.transferLength;
    const bool wasDone = object->lastCame || object->closed;
    if (object->packets == 0) {
        object->firstOffset = begin;
        object->first = moment;
    } else if (moment.time && object->last.time) {
        const std::int64_t silence = moment.at - object->last.at;
        object->silence = std::max(object->silence, silence);
        if (!wasDone && begin >= object->bytes.End() && object->first.time) {  // it goes on, and does not come again
            m_silence = std::max(m_silence, silence);
            m_longest = std::max(m_longest, moment.at - object->first.at);
        }
    }
    object->last = moment;
    ++object->packets;
    object->used = m_packets;
    m_Add(*object, begin, end);
    object->lastCame = object->lastCame || (object->length && end == *object->length);
    object->closed = object->closed || packet.closeObject;
    m_done += !wasDone && (object->lastCame || object->closed) ? 1 : 0;
    object->doneSince = m_done;
    if (!object->lost && object->length && object->bytes.Count() == *object->length) {
        m_Whole(object->toi, object->again);
        m_Remove(m_last);
    }
}

/// Whether the object is under way: m_last is its place then.
bool CObjects::m_Find(const TToi& toi)
{
    if (m_last >= m_open.size() || m_open[m_last].toi != toi) {
        m_last = static_cast<std::size_t>(
            std::find_if(m_open.begin(), m_open.end(), [&toi](const SObject& open) { return open.toi == toi; }) -
            m_open.begin());
    }
    return m_last < m_open.size();
}

/// Begins an object, in the place of another if need be.
CObjects::SObject& CObjects::m_Open(const TToi& toi, const SMoment& moment, const TLength& length)
{
    if (m_open.size() >= (m_kept.open < SObjectsKept::k_mostOpen ? k_maxOpen : k_fewOpen)) {
        const auto oldest = std::min_element(m_open.begin(), m_open.end(),
                                             [](const SObject& a, const SObject& b) { return a.used < b.used; });
        m_Judge(*oldest, moment.at, false, m_counts);
        m_Remove(static_cast<std::size_t>(oldest - m_open.begin()));
    }
    m_last = m_open.size();
    SObject& object = m_open.emplace_back();
    ++m_kept.open;
    object.again = m_whole.Has(Number(toi));
    m_counts.begun += object.again ? 0 : 1;
    m_Begin(object, toi, moment, length);
    return object;
}

void CObjects::m_Begin(SObject& object, const TToi& toi, const SMoment& moment, const TLength& length)
{
    object.toi = toi;
    object.first = moment;
    object.doneBefore = m_done;
    object.length = length ? length(toi) : std::nullopt;
    object.signalled = object.length.has_value();
}

void CObjects::m_Add(SObject& object, std::uint64_t begin, std::uint64_t end)
{
    if (object.lost) {
        return;
    }
    const std::size_t before = object.bytes.Parts();
    const std::size_t most = m_kept.parts < SObjectsKept::k_mostParts ? k_maxParts : k_fewParts;
    if (!object.bytes.Add(begin, end, most)) {
        object.lost = true;
        object.bytes.Clear();
    }
    m_kept.parts += object.bytes.Parts() - before;
}

void CObjects::m_Whole(const TToi& toi, bool again)
{
    ++(again ? m_counts.repeats : m_counts.whole);
    const std::uint64_t number = Number(toi);
    const std::size_t before = m_whole.Parts();
    const std::size_t most = m_kept.parts < SObjectsKept::k_mostParts ? k_maxWhole : k_fewParts;
    while (!m_whole.Add(number, number + 1, most)) {
        m_whole.DropFirst();
        m_allWhole = false;
    }
    m_kept.parts += m_whole.Parts() - before;
}

void CObjects::m_Remove(std::size_t place)
{
    m_kept.parts -= m_open[place].bytes.Parts();
    --m_kept.open;
    if (place + 1 != m_open.size()) {
        std::swap(m_open[place], m_open.back());
    }
    m_open.pop_back();
}

/// Whether no more of the object is to be expected: its sender said so, or has sent its last byte and gone on, or has
/// sent others since for longer than it ever let an object of the session wait.
bool CObjects::m_IsOver(const SObject& object, std::int64_t now) const
{
    constexpr std::int64_t k_least = 2 * CCaptureClock::k_second;
    constexpr std::int64_t k_leastOfOne = 30 * CCaptureClock::k_second;  // a packet alone has no rhythm
    const bool others = m_done > object.doneSince;
    const std::int64_t silence = object.last.time ? now - object.last.at : 0;
    return object.closed || (object.lastCame && (others || silence > CCaptureClock::k_second)) ||
           (others &&
            silence > std::max(4 * std::max(object.silence, m_silence), object.packets > 1 ? k_least : k_leastOfOne));
}

/// Whether the object was under way before the first packet of its session, or may have been: its begin is missing, and
/// came before, at the rate at which the rest came; or objects of the session take as long; or nothing of the session
/// had been sent to its end.
bool CObjects::m_BeganBefore(const SObject& object) const
{
    if (object.bytes.Begin() == 0) {
        return false;
    }
    if (object.doneBefore == 0) {
        return true;
    }
    if (!object.first.time || !object.last.time || !m_begun) {
        return false;
    }
    const std::int64_t behind = object.first.at - *m_begun;
    if (behind <= m_longest + m_longest / 4) {
        return true;
    }
    const auto came = static_cast<double>(object.bytes.End() - std::min(object.firstOffset, object.bytes.End() - 1));
    const auto lasted = static_cast<double>(object.last.at - object.first.at);
    return static_cast<double>(behind) <= lasted * static_cast<double>(object.firstOffset) / came;
}

/// Counts an object of which bytes may be missing, at the capture's end or when it has to go.
void CObjects::m_Judge(const SObject& object, std::int64_t now, bool atEnd, SObjectsDelivery& counts) const
{
    if (object.again) {
        return;  // it was counted when it was whole
    }
    if (object.lost || object.mixed) {
        ++counts.unknown;
        return;
    }
    if (!m_IsOver(object, now)) {
        ++(atEnd ? counts.cut : counts.unknown);
        return;
    }
    if (m_BeganBefore(object)) {
        ++counts.cut;
        return;
    }
    const std::uint64_t missing = object.length.value_or(object.bytes.End()) - object.bytes.Count();
    if (missing == 0) {
        ++counts.unknown;
        return;
    }
    ++counts.incomplete;
    counts.bytesMissing += missing;
    if (counts.firstIncomplete.size() < k_maxIncomplete) {
        counts.firstIncomplete.push_back({object.toi, object.bytes.Count(), object.length});
    }
}

SObjectsDelivery CObjects::Result(std::int64_t end) const
{
    SObjectsDelivery counts = m_counts;
    counts.wholeTois = m_whole.All();
    counts.allWholeTois = m_allWhole;
    for (const SObject& object : m_open) {
        m_Judge(object, end, true, counts);
    }
    return counts;
}

}  // namespace vyr::inspect
