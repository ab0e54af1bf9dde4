#include "measure/Traffic.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace vyr::inspect {

namespace {

constexpr unsigned k_lastPayloadType = 3;  // MPU, generic object, signalling, repair symbol

/// Whether it is an LCT packet and can be no MMTP packet: those of repair data begin like LCT's.
bool LooksLikeLct(SView payload)
{
    SLctPacket packet;
    return payload.size >= 2 && (payload[1] & 0x3Fu) > k_lastPayloadType && (payload[1] & 0x0Cu) == 0 &&
           ReadLct(payload, packet);
}

bool LooksLikeMmtp(SView payload)
{
    SMmtpPacket packet;
    return ReadMmtp(payload, packet) == EMmtp::FINE && packet.type <= k_lastPayloadType;
}

}  // namespace

void CTraffic::Take(const SDatagram& datagram, const std::optional<STime>& time)
{
    m_now = m_clock.Now(time);
    const SMoment& moment = m_now;
    const SView payload = datagram.payload;
    m_meter.Count(payload.size, moment);
    SSession* session = m_Session({datagram.destination, datagram.destinationPort, datagram.source});
    if (session == nullptr) {
        m_others.Count(payload.size, moment);
        return;
    }
    session->meter.Count(payload.size, moment);
    if (session->announced == EDeliveryProtocol::UNKNOWN) {
        m_Guess(*session, payload);
    }
    if ((session->read == EDeliveryProtocol::ROUTE && !m_TakeLct(*session, payload, moment)) ||
        (session->read == EDeliveryProtocol::MMTP && !m_TakeMmtp(*session, payload, moment))) {
        ++session->otherPackets;
    }
}

void CTraffic::Announce(const SServiceSession& session, EDeliveryProtocol protocol, std::optional<unsigned> serviceId)
{
    const std::size_t before = m_announced.size();
    SAnnounced* entry = m_Entry(session);
    if (entry == nullptr) {
        return;
    }
    if (serviceId && entry->services.size() < k_maxServices) {
        entry->services.insert(*serviceId);
    }
    bool& known = entry->protocols[static_cast<std::size_t>(protocol)];
    if (known && m_announced.size() == before) {
        return;
    }
    known = true;
    for (auto one = m_sessions.lower_bound({session.destination, session.port, session.source});
         one != m_sessions.end() && one->first.destination == session.destination && one->first.port == session.port &&
         (session.source == 0 || one->first.source == session.source);
         ++one) {
        m_Learn(*one->second);
    }
}

void CTraffic::Name(const SServiceSession& session, std::uint64_t flow, const std::string& carries)
{
    SAnnounced* entry = m_Entry(session);
    if (entry != nullptr && (entry->names.size() < k_maxFlows || entry->names.count(flow) != 0)) {
        entry->names[flow] = carries;
    }
}

/// Null: there are too many.
CTraffic::SAnnounced* CTraffic::m_Entry(const SServiceSession& session)
{
    const auto entry = m_announced.find(session);
    if (entry != m_announced.end()) {
        return &entry->second;
    }
    return session.destination != 0 && m_announced.size() < k_maxAnnounced ? &m_announced[session] : nullptr;
}

/// What is said of the session itself, and of its address from any source.
template <class TVisit>
void CTraffic::m_EachAnnounced(const SServiceSession& key, TVisit visit) const
{
    for (const std::uint32_t source : {key.source, std::uint32_t{0}}) {
        const auto entry = m_announced.find({key.destination, key.port, source});
        if (entry != m_announced.end()) {
            visit(entry->second);
        }
        if (source == 0) {
            break;
        }
    }
}

/// Null: there are too many. Some places are kept for those that are announced.
CTraffic::SSession* CTraffic::m_Session(const SServiceSession& key)
{
    const auto is = [&key](const SServiceSession& other) {
        return other.destination == key.destination && other.port == key.port && other.source == key.source;
    };
    if (m_last != nullptr && is(m_last->key)) {
        return m_last;
    }
    const auto found = m_sessions.find(key);
    if (found != m_sessions.end()) {
        m_last = found->second.get();
        return m_last;
    }
    bool announced = false;
    m_EachAnnounced(key, [&announced](const SAnnounced&) { announced = true; });
    if (m_sessions.size() >= k_maxSessions || (!announced && m_foreign >= k_maxForeign)) {
        return nullptr;
    }
    m_last = m_sessions.emplace(key, std::make_unique<SSession>()).first->second.get();
    m_last->key = key;
    ++m_foreign;
    if (announced) {
        m_Learn(*m_last);
    }
    return m_last;
}

/// Takes over what is announced of the session. Where the protocols contradict each other, its packets tell.
void CTraffic::m_Learn(SSession& session)
{
    if (session.foreign) {
        session.foreign = false;
        --m_foreign;
        m_foreignFlows -= session.flows.size();
    }
    std::array<bool, 4> protocols{};
    m_EachAnnounced(session.key, [&protocols](const SAnnounced& announced) {
        for (std::size_t i = 1; i < protocols.size(); ++i) {
            protocols[i] = protocols[i] || announced.protocols[i];
        }
    });
    const bool one = std::count(protocols.begin(), protocols.end(), true) == 1;
    session.announced =
        one ? static_cast<EDeliveryProtocol>(std::find(protocols.begin(), protocols.end(), true) - protocols.begin())
            : EDeliveryProtocol::UNKNOWN;
    if (one) {
        m_Read(session, session.announced);
    }
}

/// Reads the packets of the session as those of the protocol from now on; flows of another one begin anew.
void CTraffic::m_Read(SSession& session, EDeliveryProtocol protocol)
{
    if (session.read == protocol) {
        return;
    }
    m_flows -= session.flows.size();
    m_foreignFlows -= session.foreign ? session.flows.size() : 0;
    session.flows.clear();
    session.ids.clear();
    session.otherPackets = 0;
    session.otherVersions = 0;
    session.packetsNoFlow = 0;
    session.read = protocol;
}

/// Until signalling says it, the protocol is what most of the packets look like.
void CTraffic::m_Guess(SSession& session, SView payload)
{
    session.lct += LooksLikeLct(payload) ? 1 : 0;
    session.mmtp += LooksLikeMmtp(payload) ? 1 : 0;
    if (session.lct > session.mmtp) {
        m_Read(session, EDeliveryProtocol::ROUTE);
    } else if (session.mmtp > session.lct) {
        m_Read(session, EDeliveryProtocol::MMTP);
    }
}

/// Null: there are too many.
CTraffic::SFlow* CTraffic::m_Flow(SSession& session, std::uint64_t id)
{
    if (session.last >= session.ids.size() || session.ids[session.last] != id) {
        session.last =
            static_cast<std::size_t>(std::find(session.ids.begin(), session.ids.end(), id) - session.ids.begin());
    }
    if (session.last < session.ids.size()) {
        return session.flows[session.last].get();
    }
    if (session.ids.size() >= k_maxFlows || m_flows >= k_maxAllFlows ||
        (session.foreign && m_foreignFlows >= k_maxForeignFlows)) {
        ++session.packetsNoFlow;
        return nullptr;
    }
    ++m_flows;
    m_foreignFlows += session.foreign ? 1 : 0;
    session.ids.push_back(id);
    session.flows.push_back(std::make_unique<SFlow>(id, m_kept));
    if (m_length) {
        session.flows.back()->length = [this, key = session.key, id](const TToi& toi) {
            return m_length(key, id, toi);
        };
    }
    return session.flows.back().get();
}

/// False: it is no such packet.
bool CTraffic::m_TakeLct(SSession& session, SView payload, const SMoment& moment)
{
    SLctPacket packet;
    if (!ReadLct(payload, packet)) {
        return false;
    }
    if (SFlow* flow = m_Flow(session, packet.tsi)) {
        flow->meter.Count(payload.size, moment);
        if (packet.source || packet.data.size == 0) {
            flow->objects.Take(packet, moment, flow->length);
        } else {
            ++flow->repairPackets;
        }
    }
    return true;
}

bool CTraffic::m_TakeMmtp(SSession& session, SView payload, const SMoment& moment)
{
    SMmtpPacket packet;
    const EMmtp read = ReadMmtp(payload, packet);
    if (read != EMmtp::FINE) {
        session.otherVersions += read == EMmtp::OTHER_VERSION ? 1 : 0;
        return read == EMmtp::OTHER_VERSION;
    }
    if (SFlow* flow = m_Flow(session, packet.packetId)) {
        flow->meter.Count(payload.size, moment);
        flow->loss.Take(packet.sequenceNumber);
        flow->types |= std::uint64_t{1} << packet.type;
        flow->repairPackets += packet.fec > SMmtpPacket::k_fecSource ? 1 : 0;
    }
    return true;
}

SFlowDelivery CTraffic::m_Result(const SSession& session, const SFlow& flow) const
{
    SFlowDelivery result;
    result.id = flow.id;
    result.traffic = flow.meter.Result(m_clock.End());
    result.repairPackets = flow.repairPackets;
    bool signalling = false;
    if (session.read == EDeliveryProtocol::ROUTE) {
        result.objects = flow.objects.Result(m_clock.End());
        signalling = flow.id == 0;
    } else {
        result.packets = flow.loss.Result();
        result.packets->gone = flow.loss.Gone();
        if ((flow.types & (flow.types - 1)) == 0) {
            unsigned type = 0;
            while (flow.types >> type != 1) {
                ++type;
            }
            result.payloadType = type;
            signalling = type == SMmtpPacket::k_signalling;
        }
    }
    result.carries = signalling && !session.foreign ? "signalling" : "";
    m_EachAnnounced(session.key, [&result](const SAnnounced& announced) {
        const auto name = announced.names.find(result.id);
        result.carries = name != announced.names.end() ? name->second : result.carries;
    });
    return result;
}

SSessionDelivery CTraffic::m_Result(const SSession& session) const
{
    SSessionDelivery result;
    result.destination = session.key.destination;
    result.port = session.key.port;
    result.source = session.key.source;
    result.traffic = session.meter.Result(m_clock.End());
    std::set<unsigned> services;
    m_EachAnnounced(session.key, [&services](const SAnnounced& announced) {
        services.insert(announced.services.begin(), announced.services.end());
    });
    result.services = {services.begin(), services.end()};
    const std::uint64_t packets = session.meter.Packets();
    std::uint64_t inOrder = 0;
    for (const std::unique_ptr<SFlow>& flow : session.flows) {
        inOrder += flow->loss.InOrder();
    }
    // A packet alone can look like anything.
    const bool route = session.lct > 1 && session.lct >= packets - packets / 10;
    const bool mmtp = inOrder > 2 && inOrder >= packets / 2;
    const bool announced = session.announced != EDeliveryProtocol::UNKNOWN;
    if (announced || (session.read == EDeliveryProtocol::ROUTE ? route : mmtp)) {
        result.protocol = session.read;
        result.guessed = !announced;
        result.otherPackets = session.otherPackets;
        result.otherVersions = session.otherVersions;
        result.packetsNoFlow = session.packetsNoFlow;
        for (const std::unique_ptr<SFlow>& flow : session.flows) {
            result.flows.push_back(m_Result(session, *flow));
        }
        std::sort(result.flows.begin(), result.flows.end(),
                  [](const SFlowDelivery& a, const SFlowDelivery& b) { return a.id < b.id; });
    }
    return result;
}

/// Adds what is announced and did not come, if that is certain.
void CTraffic::m_AddMissing(std::vector<SSessionDelivery>& sessions) const
{
    for (const auto& [key, announced] : m_announced) {
        const auto came = m_sessions.lower_bound(key);
        const bool is = came != m_sessions.end() && came->first.destination == key.destination &&
                        came->first.port == key.port && (key.source == 0 || came->first.source == key.source);
        const auto protocol = std::find(announced.protocols.begin(), announced.protocols.end(), true);
        if (is || m_others.Packets() != 0 || protocol == announced.protocols.end()) {
            continue;
        }
        SSessionDelivery& session = sessions.emplace_back();
        session.destination = key.destination;
        session.port = key.port;
        session.source = key.source;
        session.protocol = static_cast<EDeliveryProtocol>(protocol - announced.protocols.begin());
        session.services = {announced.services.begin(), announced.services.end()};
    }
    std::sort(sessions.begin(), sessions.end(), [](const SSessionDelivery& a, const SSessionDelivery& b) {
        return std::tie(a.destination, a.port, a.source) < std::tie(b.destination, b.port, b.source);
    });
}

SDelivery CTraffic::Result(const SSource& source) const
{
    SDelivery delivery;
    delivery.source = source;
    delivery.traffic = m_meter.Result(m_clock.End());
    delivery.seconds = static_cast<double>(m_clock.End()) / CCaptureClock::k_second;
    delivery.clockSet = m_clock.TimesSet();
    delivery.binSeconds = static_cast<double>(std::uint64_t{1} << CMeter::WidthAt(m_clock.End()));
    delivery.others = m_others.Result(m_clock.End());
    for (const auto& [key, session] : m_sessions) {
        delivery.sessions.push_back(m_Result(*session));
    }
    m_AddMissing(delivery.sessions);
    return delivery;
}

}  // namespace vyr::inspect
