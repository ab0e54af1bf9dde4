#include "wire/ObjectAssembler.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace vyr::inspect {

CObjectAssembler::CObjectAssembler(CAssemblyMemory& memory, std::function<void(const TToi&, SView)> sink)
    : m_memory(memory), m_sink(std::move(sink))
{
}

CObjectAssembler::~CObjectAssembler()
{
    while (!m_open.empty()) {
        m_Drop(m_open.begin());
    }
}

void CObjectAssembler::Take(const SLctPacket& packet)
{
    const std::size_t start = packet.startOffset;
    const std::size_t end = start + packet.data.size;
    std::optional<std::uint64_t> length = packet.transferLength;
    if (!length && packet.closeObject) {
        length = end;
    }
    if (packet.data.size == 0) {
        return;
    }
    if (end > k_maxObject || (length && (*length > k_maxObject || end > *length))) {
        ++m_counts.tooLarge;
        return;
    }
    SObject* object = &m_Begin(packet.toi);
    if (m_Contradicts(*object, start, packet.data, length)) {
        ++m_counts.dropped;
        m_Drop(m_open.find(packet.toi));
        object = &m_Begin(packet.toi);
    }
    if (length) {
        object->length = length;
    }
    m_Put(*object, start, packet.data);
    if (object->length && object->held == *object->length) {
        m_Deliver(m_open.find(packet.toi));
    } else {
        m_MakeRoom();
    }
}

bool CObjectAssembler::Drop(const TToi& toi)
{
    const auto object = m_open.find(toi);
    if (object == m_open.end()) {
        return false;
    }
    m_Drop(object);
    return true;
}

std::vector<CObjectAssembler::SIncomplete> CObjectAssembler::Open() const
{
    std::vector<SIncomplete> open;
    for (const auto& [begun, toi] : m_order) {
        const SObject& object = m_open.at(toi);
        open.push_back({toi, object.held, object.length});
    }
    return open;
}

CObjectAssembler::SObject& CObjectAssembler::m_Begin(const TToi& toi)
{
    const auto [object, isNew] = m_open.try_emplace(toi);
    if (isNew) {
        object->second.begun = m_memory.m_next++;
        m_order[object->second.begun] = toi;
        m_memory.m_open[object->second.begun] = this;
    }
    return object->second;
}

/// Whether the packet cannot belong to the object held: another length, or other bytes at one place.
bool CObjectAssembler::m_Contradicts(const SObject& object, std::size_t start, SView data,
                                     const std::optional<std::uint64_t>& length)
{
    if (object.chunks.empty()) {
        return false;
    }
    const std::size_t end = start + data.size;
    const auto& last = *object.chunks.rbegin();
    if (object.length ? end > *object.length || (length && *length != *object.length)
                      : length && last.first + last.second.size() > *length) {
        return true;
    }
    auto chunk = object.chunks.upper_bound(start);
    if (chunk != object.chunks.begin()) {
        --chunk;
    }
    for (; chunk != object.chunks.end() && chunk->first < end; ++chunk) {
        const std::size_t from = std::max(start, chunk->first);
        const std::size_t to = std::min(end, chunk->first + chunk->second.size());
        if (from < to &&
            std::memcmp(data.data + (from - start), chunk->second.data() + (from - chunk->first), to - from) != 0) {
            return true;
        }
    }
    return false;
}

/// Keeps the bytes that are not there yet.
void CObjectAssembler::m_Put(SObject& object, std::size_t start, SView data)
{
    const std::size_t end = start + data.size;
    std::size_t at = start;
    auto chunk = object.chunks.upper_bound(start);
    if (chunk != object.chunks.begin()) {
        --chunk;
    }
    while (at < end) {
        while (chunk != object.chunks.end() && chunk->first + chunk->second.size() <= at) {
            ++chunk;
        }
        if (chunk == object.chunks.end() || chunk->first >= end) {
            m_PutGap(object, at, data.From(at - start));
            break;
        }
        if (chunk->first > at) {
            m_PutGap(object, at, data.From(at - start).First(chunk->first - at));
        }
        at = chunk->first + chunk->second.size();
    }
}

void CObjectAssembler::m_PutGap(SObject& object, std::size_t start, SView data)
{
    auto before = object.chunks.lower_bound(start);
    std::size_t cost = data.size;
    if (before != object.chunks.begin() && (--before)->first + before->second.size() == start) {
        before->second.insert(before->second.end(), data.data, data.data + data.size);
    } else {
        object.chunks[start].assign(data.data, data.data + data.size);
        cost += k_chunkCost;
    }
    object.held += data.size;
    m_held += cost;
    m_memory.m_held += cost;
}

void CObjectAssembler::m_Drop(TOpen::iterator object)
{
    const std::size_t cost = object->second.held + object->second.chunks.size() * k_chunkCost;
    m_held -= cost;
    m_memory.m_held -= cost;
    m_memory.m_open.erase(object->second.begun);
    m_order.erase(object->second.begun);
    m_open.erase(object);
}

void CObjectAssembler::m_MakeRoom()
{
    while (m_held > k_limit) {
        ++m_counts.dropped;
        m_Drop(m_open.find(m_order.begin()->second));
    }
    while (m_memory.m_held > CAssemblyMemory::k_limit) {
        CObjectAssembler& oldest = *m_memory.m_open.begin()->second;
        ++oldest.m_counts.dropped;
        oldest.m_Drop(oldest.m_open.find(oldest.m_order.begin()->second));
    }
}

void CObjectAssembler::m_Deliver(TOpen::iterator object)
{
    const TToi toi = object->first;
    std::vector<unsigned char> bytes = std::move(object->second.chunks.begin()->second);
    for (auto chunk = std::next(object->second.chunks.begin()); chunk != object->second.chunks.end(); ++chunk) {
        bytes.insert(bytes.end(), chunk->second.begin(), chunk->second.end());
    }
    m_Drop(object);
    ++m_counts.complete;
    m_sink(toi, {bytes.data(), bytes.size()});
}

}  // namespace vyr::inspect
