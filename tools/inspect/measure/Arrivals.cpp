#include "measure/Arrivals.h"

#include <algorithm>
#include <vector>

#include "model/Guide.h"
#include "model/Items.h"

namespace vyr::inspect {

CArrivals::CArrivals(CReport& report, const CTraffic& traffic) : m_report(report), m_traffic(traffic)
{
    m_report.AddWitness(*this);
}

CArrivals::~CArrivals()
{
    m_report.RemoveWitness(*this);
}

void CArrivals::Table(const STable& table)
{
    m_Note({EArrivals::TABLE, table.stream, table.header.tableId, table.header.groupId, table.insideMultiTable},
           table.status, table.source);
}

void CArrivals::Signalling(const SSignalling& signalling)
{
    m_Note({EArrivals::SIGNALLING, signalling.session, 0, 0, false, signalling.services}, signalling.status,
           signalling.source);
}

void CArrivals::Message(const SMessage& message)
{
    m_Note({EArrivals::MESSAGE, message.session, message.id, 0, false, message.services}, message.status,
           message.source);
}

void CArrivals::GuideObject(const SGuideObject& object)
{
    m_Note({EArrivals::GUIDE, object.session}, object.status, object.source);
}

/// Of what comes with a packet.
void CArrivals::m_Note(const SArrivalLine& line, EStatus status, const SSource& source)
{
    const TKey key = {line.kind, line.place, line.id, line.groupId, line.insideMultiTable};
    const auto known = m_lines.find(key);
    if (source.packet == 0 || (known == m_lines.end() && m_lines.size() == k_mostLines)) {
        m_more += source.packet != 0 ? 1 : 0;
        return;
    }
    SLine& entry = known != m_lines.end() ? known->second : m_lines[key];
    if (entry.line.came == 0) {
        entry.line = line;
    } else if (!line.services.empty()) {
        entry.line.services = line.services;
    }
    entry.line.services.resize(std::min(entry.line.services.size(), k_mostServices));
    const bool changed = status != EStatus::NEW && status != EStatus::REPEATED;
    ++entry.line.came;
    entry.line.changes += changed ? 1 : 0;
    if (source.time) {
        m_Mark(entry, m_traffic.Now().at, changed);
    }
}

void CArrivals::m_Mark(SLine& line, std::int64_t at, bool changed)
{
    if (line.last >= 0) {
        line.gap = std::max(line.gap, at - line.last);
    }
    line.last = std::max(line.last, at);
    std::vector<SMark>& marks = line.marks;
    const auto same = [&line](std::int64_t a, std::int64_t b) { return a >> line.width == b >> line.width; };
    // Packets can be out of order.
    auto place = marks.end();
    while (place != marks.begin() && (place - 1)->at > at && !same((place - 1)->at, at)) {
        --place;
    }
    const SMark mark = {at, 1, changed ? 1u : 0u};
    const auto join = [](SMark& to, const SMark& from) {
        to.at = std::min(to.at, from.at);
        to.count += from.count;
        to.changes += from.changes;
    };
    if (place != marks.begin() && same((place - 1)->at, at)) {
        join(*(place - 1), mark);
    } else {
        marks.insert(place, mark);
    }
    while (marks.size() > k_mostMarks) {
        ++line.width;
        std::size_t kept = 0;
        for (std::size_t i = 1; i < marks.size(); ++i) {
            if (same(marks[kept].at, marks[i].at)) {
                join(marks[kept], marks[i]);
            } else {
                marks[++kept] = marks[i];
            }
        }
        marks.resize(kept + 1);
    }
}

SArrivalLines CArrivals::Result() const
{
    const auto seconds = [](std::int64_t at) { return static_cast<double>(at) / CCaptureClock::k_second; };
    SArrivalLines arrivals;
    arrivals.more = m_more;
    for (const auto& [key, line] : m_lines) {
        SArrivalLine& result = arrivals.lines.emplace_back(line.line);
        if (line.gap >= 0) {
            result.gap = seconds(line.gap);
        }
        for (const SMark& mark : line.marks) {
            result.marks.push_back({seconds(mark.at), mark.count, mark.changes});
        }
    }
    return arrivals;
}

}  // namespace vyr::inspect
