#include "follow/LlsStream.h"

#include <algorithm>
#include <cmath>

#include "base/Gunzip.h"
#include "base/Text.h"
#include "content/LlsTables.h"

namespace vyr::inspect {

namespace {

constexpr int k_silent = 15;  // seconds

/// Whether as much time went by that three lists are due.
bool Silent(const std::optional<STime>& since, const std::optional<STime>& now)
{
    return since && now && Seconds(*now) - Seconds(*since) > k_silent;
}

std::string Title(unsigned bsid, const std::pair<std::uint32_t, std::uint16_t>& sender)
{
    return "bsid " + std::to_string(bsid) + " from " + EndpointText(sender.first, sender.second);
}

}  // namespace

CLlsStream::CLlsStream(std::string name, TMake make, CReport& report)
    : m_name(std::move(name)), m_make(std::move(make)), m_report(report), m_bsids(k_mostTables)
{
    m_broadcasts.push_back({m_make(m_name, CLlsFollower::k_maxServices), {}});
}

bool CLlsStream::SawSlt() const
{
    return m_sawSlt || std::any_of(m_broadcasts.begin(), m_broadcasts.end(),
                                   [](const SBroadcast& one) { return one.follower->SawSlt(); });
}

std::size_t CLlsStream::Services() const
{
    std::size_t count = 0;
    for (const SBroadcast& one : m_broadcasts) {
        count += one.follower->Services();
    }
    return count;
}

std::optional<unsigned> CLlsStream::m_Bsid(SView table)
{
    const std::uint64_t hash = ContentHash(table);
    const std::optional<unsigned>* const known = m_bsids.Find(hash);
    return known != nullptr ? *known : m_bsids.Hold(hash) = TableBsid(table);
}

/// The broadcast whose list came.
CLlsStream::TBroadcast CLlsStream::m_Listed(unsigned bsid, const TSender& sender, const SSource& source)
{
    constexpr std::size_t k_maxServices = CLlsFollower::k_maxServices / k_mostBroadcasts;
    const auto is = [bsid](const SBroadcast& one) { return one.bsid == bsid; };
    const auto known = std::find_if(m_broadcasts.begin(), m_broadcasts.end(), is);
    if (known != m_broadcasts.end()) {
        return known;
    }
    const auto its = m_senders.find(sender);
    const bool lists = its != m_senders.end() && its->second.lists;
    if (lists && !its->second.broadcast->told) {
        m_Rename(*its->second.broadcast, bsid, source);
        return its->second.broadcast;
    }
    SBroadcast& first = m_broadcasts.front();
    if (!first.bsid && (first.follower->Tables() == 0 || first.sender.first == sender.first)) {
        first.bsid = bsid;
        return m_broadcasts.begin();
    }
    if (m_broadcasts.size() == k_mostBroadcasts) {
        first.bsid = first.bsid.value_or(bsid);
        return m_broadcasts.begin();
    }
    const bool free = std::none_of(m_broadcasts.begin(), m_broadcasts.end(),
                                   [this](const SBroadcast& one) { return one.follower->Stream() == m_name; });
    m_broadcasts.push_back({m_make(free ? m_name : m_name + " bsid " + std::to_string(bsid), k_maxServices), bsid});
    m_broadcasts.back().told = lists;  // its sender's are of several
    return std::prev(m_broadcasts.end());
}

/// What one socket sends is one broadcast, which may get another bsid, until its old one comes again soon: then they
/// are two.
void CLlsStream::m_Rename(SBroadcast& broadcast, unsigned bsid, const SSource& source)
{
    if (broadcast.bsidBefore == bsid && !Silent(broadcast.lastBefore, source.time)) {
        broadcast.told = true;
        m_Tell(Title(bsid, broadcast.sender), Title(*broadcast.bsid, broadcast.sender), source);
    }
    broadcast.bsidBefore = broadcast.bsid;
    broadcast.lastBefore = broadcast.lastListed;
    broadcast.bsid = bsid;
}

/// The broadcast whose lists the sender sent, or another socket of the same machine; none: it sent none, and others
/// did.
std::optional<CLlsStream::TBroadcast> CLlsStream::m_Of(const TSender& sender)
{
    auto known = m_senders.find(sender);
    if (known == m_senders.end()) {
        known = m_senders.lower_bound({sender.first, 0});
    }
    if (known != m_senders.end() && known->first.first == sender.first) {
        return known->second.broadcast;
    }
    const SBroadcast& first = m_broadcasts.front();
    const bool only = m_senders.empty() || (!first.bsid && first.sender.first == sender.first);
    return only ? std::optional(m_broadcasts.begin()) : std::nullopt;
}

/// Adds the places of what it had; the broadcast behind it.
CLlsStream::TBroadcast CLlsStream::m_End(TBroadcast broadcast, std::vector<TListKey>& gone)
{
    const std::vector<TListKey> lists = broadcast->follower->End();
    gone.insert(gone.end(), lists.begin(), lists.end());
    m_sawSlt = m_sawSlt || broadcast->follower->SawSlt();
    for (auto sender = m_senders.begin(); sender != m_senders.end();) {
        sender = sender->second.broadcast == broadcast ? m_senders.erase(sender) : std::next(sender);
    }
    m_lastListed = m_lastListed == &*broadcast ? nullptr : m_lastListed;
    return m_broadcasts.erase(broadcast);
}

/// Ends those whose lists come no more, and the one without a list whose sender turns out to be of another: the places
/// of what they had.
std::vector<TListKey> CLlsStream::m_EndOthers(TBroadcast listed, const SSource& source)
{
    std::vector<TListKey> gone;
    for (auto one = m_broadcasts.begin(); one != m_broadcasts.end();) {
        const bool silent = Silent(one->lastListed, source.time);
        const bool same = !one->bsid && one->sender.first == listed->sender.first;
        if (one == listed || (!silent && !same)) {
            ++one;
            continue;
        }
        if (silent) {
            m_report.Finding({ERule::SEVERAL_BROADCASTS,
                              "no service list of " + Title(*one->bsid, one->sender) + " came on " + m_name + " for " +
                                  std::to_string(k_silent) + " s, and those of " +
                                  Title(*listed->bsid, listed->sender) + " do: its services are let go",
                              source});
        }
        one = m_End(one, gone);
    }
    return gone;
}

/// A list that comes again behind that of another broadcast: they are side by side, and neither took the other's place.
void CLlsStream::m_TellOf(SBroadcast& listed, const SSource& source)
{
    if (m_lastListed == nullptr || m_lastListed == &listed || !listed.lastListed ||
        (listed.told && m_lastListed->told)) {
        return;
    }
    listed.told = m_lastListed->told = true;
    m_Tell(Title(*listed.bsid, listed.sender), Title(*m_lastListed->bsid, m_lastListed->sender), source);
}

void CLlsStream::m_Tell(const std::string& one, const std::string& other, const SSource& source)
{
    m_report.Finding(
        {ERule::SEVERAL_BROADCASTS,
         "the service lists of several broadcasts come by turns on " + m_name + ": " + one + ", and " + other, source});
}

/// What a sender sent first counts, lists before all else.
void CLlsStream::m_Sends(const TSender& sender, const SSends& what)
{
    const auto known = m_senders.find(sender);
    if (known == m_senders.end() && m_senders.size() < k_mostSenders) {
        m_senders.emplace(sender, what);
    } else if (known != m_senders.end() && !known->second.lists) {
        known->second = what;
    }
}

void CLlsStream::m_TakeList(TBroadcast listed, const SDatagram& datagram, const SSource& source)
{
    const TSender sender = {datagram.source, datagram.sourcePort};
    m_Sends(sender, {listed, true});
    listed->sender = sender;
    m_TellOf(*listed, source);
    const std::vector<TListKey> gone = m_EndOthers(listed, source);
    listed->lastListed = source.time;
    m_lastListed = &*listed;
    listed->follower->Take(datagram.payload, source, gone);
    m_waiting.remove_if([&](const SWaiting& waiting) {
        const bool its = waiting.sender.first == sender.first;
        if (its) {
            listed->follower->Take({waiting.table.data(), waiting.table.size()}, waiting.source);
        }
        return its;
    });
}

/// Those that have waited too long are of the first broadcast, and so is what else their senders send.
void CLlsStream::m_EndWaiting(const std::optional<STime>& now)
{
    constexpr double k_longest = 5;  // seconds in which a list is due
    while (!m_waiting.empty()) {
        const SWaiting& first = m_waiting.front();
        const bool waits = now && first.source.time &&
                           std::abs(Seconds(*now) - Seconds(*first.source.time)) <= k_longest &&
                           m_waiting.size() <= k_mostWaiting;
        if (waits) {
            return;
        }
        const SWaiting over = std::move(m_waiting.front());
        m_waiting.pop_front();
        m_Sends(over.sender, {m_broadcasts.begin(), false});
        m_broadcasts.front().follower->Take({over.table.data(), over.table.size()}, over.source);
    }
}

void CLlsStream::Take(const SDatagram& datagram, const SSource& source)
{
    const SView table = datagram.payload;
    const TSender sender = {datagram.source, datagram.sourcePort};
    if (m_taken++ == 0) {
        m_broadcasts.front().sender = sender;
    }
    if (const std::optional<unsigned> bsid = m_Bsid(table)) {
        m_TakeList(m_Listed(*bsid, sender, source), datagram, source);
    } else if (const std::optional<TBroadcast> broadcast = m_Of(sender)) {
        (*broadcast)->follower->Take(table, source);
    } else {
        m_waiting.push_back({sender, {table.data, table.data + table.size}, source});
    }
    m_EndWaiting(source.time);
}

void CLlsStream::Finish()
{
    m_EndWaiting({});
}

}  // namespace vyr::inspect
