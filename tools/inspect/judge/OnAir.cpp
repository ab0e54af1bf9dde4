#include "judge/OnAir.h"

#include <algorithm>
#include <iterator>

#include "base/Text.h"
#include "judge/Read.h"

namespace vyr::inspect {

namespace {

constexpr double k_clocksApart = 10;  ///< seconds by which a capture's clock may differ from the broadcast's
// For how many seconds something is waited for.
constexpr double k_enough = 2;
constexpr double k_enoughOfFew = 10;  ///< subtitles and files, of which not so many packets come
constexpr double k_stopped = 10;      ///< of what came before: longer than any segment

/// "239.255.7.1:" of "239.255.7.1:30100".
std::string AddressOf(const std::string& destination)
{
    return destination.substr(0, destination.find(':') + 1);
}

double LastOf(const STraffic& traffic, double unknown)
{
    return traffic.last ? Seconds(*traffic.last) : unknown;
}

/// The addresses that signalling names.
std::set<std::string> Addresses(const SEvidence& evidence)
{
    std::set<std::string> addresses;
    for (const auto& [key, package] : evidence.packages) {
        addresses.insert(AddressOf(package.session));
        for (std::size_t i = 0; package.stsid && i < package.stsid->sessions.size(); ++i) {
            addresses.insert(AddressOf(std::get<0>(KeyOf(package, package.stsid->sessions[i]))));
        }
    }
    return addresses;
}

}  // namespace

double SecondsBehind(const SEvidence& evidence, const SSource& source)
{
    return source.time && evidence.last ? Seconds(*evidence.last) - Seconds(*source.time) : 0;
}

COnAir::COnAir(const SEvidence& evidence, const SDelivery& delivery)
    : m_evidence(evidence), m_delivery(delivery), m_lct(LctSessions(evidence, delivery))
{
    for (const auto& [key, list] : evidence.lists) {
        for (const SSltService& service : list.services) {
            double& since = m_listed.emplace(SessionOf(service), k_never).first->second;
            since = std::max(since, SecondsBehind(evidence, list.source));
        }
    }
    const std::set<std::string> addresses = Addresses(evidence);
    for (const SSessionDelivery& session : delivery.sessions) {
        if (session.traffic.packets != 0) {
            m_Count(session, addresses);
        }
    }
}

void COnAir::m_Count(const SSessionDelivery& session, const std::set<std::string>& addresses)
{
    constexpr unsigned k_mpu = 0;  // payload types
    constexpr unsigned k_signalling = 2;
    const std::string destination = SessionText(session);
    const auto later = [](double& time, double other) { time = std::max(time, other); };
    const bool isMmt = session.protocol == EDeliveryProtocol::MMTP && !session.guessed;
    for (const bool mmt : {false, true}) {
        SCaptured& captured = (mmt ? m_mmt : m_route)[destination];
        later(captured.last, LastOf(session.traffic, k_never));
        captured.allFlows = captured.allFlows && session.packetsNoFlow == 0 && session.otherVersions == 0 &&
                            (mmt ? isMmt : session.protocol == EDeliveryProtocol::ROUTE);
    }
    const bool known = !session.guessed || addresses.count(AddressOf(destination)) != 0;
    for (const SFlowDelivery& flow : session.flows) {
        if (isMmt) {
            const SFlowDelivery*& last = m_packets[{destination, flow.id}];
            last = last != nullptr && LastOf(last->traffic, k_never) > LastOf(flow.traffic, k_never) ? last : &flow;
            m_mmtMedia = m_mmtMedia || (flow.payloadType == k_mpu && flow.traffic.packets > 1);
        }
        const bool isRoute = session.protocol == EDeliveryProtocol::ROUTE && flow.objects;
        const bool signalling = isRoute ? flow.id == 0 : flow.payloadType == k_signalling;
        m_media = m_media || (known && !signalling);
        if (isRoute && known && !signalling && flow.objects->whole + flow.objects->repeats > 1) {
            later(m_came.emplace(destination, k_never).first->second, LastOf(flow.traffic, k_never));
        }
    }
}

std::optional<double> COnAir::m_Listed(const std::string& session, const std::vector<unsigned>& announced) const
{
    const auto listed = m_listed.find(session);
    return announced.empty()          ? std::numeric_limits<double>::infinity()
           : listed != m_listed.end() ? std::optional<double>(listed->second)
                                      : std::nullopt;
}

/// What is asked of every LCT session of the package.
const COnAir::SLook& COnAir::m_LookAt(const SPackageFacts& package) const
{
    const auto [known, isNew] = m_looks.try_emplace(&package);
    SLook& look = known->second;
    if (!isNew) {
        return look;
    }
    if (package.mpd) {
        for (const SRepresentationFacts& each : package.mpd->representations) {
            look.types.emplace(each.id, each.contentType);
        }
    }
    for (std::size_t i = 0; package.stsid && i < package.stsid->sessions.size(); ++i) {
        const SLctFacts& lct = package.stsid->sessions[i];
        const TLctKey key = KeyOf(package, lct);
        const auto came = m_came.find(std::get<0>(key));
        if (came != m_came.end() && came->first != package.session) {
            look.elsewhere = std::max(look.elsewhere, came->second);
        }
        for (const auto& [session, flow] : m_lct.at(key).flows) {
            const STraffic& traffic = m_delivery.sessions[session].flows[flow].traffic;
            double& begun = look.begun.emplace(TypeOf(package, lct), k_never).first->second;
            begun = traffic.first ? std::max(begun, Seconds(*traffic.first)) : begun;
        }
    }
    return look;
}

std::string COnAir::TypeOf(const SPackageFacts& package, const SLctFacts& lct) const
{
    if (!lct.contentType.empty() || lct.repId.empty()) {
        return lct.contentType;
    }
    const std::map<std::string, std::string>& types = m_LookAt(package).types;
    const auto type = types.find(lct.repId);
    return type != types.end() ? type->second : std::string();
}

/// Whether nothing came of it for so long that nothing is to come.
bool COnAir::m_Stopped(const STraffic& traffic) const
{
    return traffic.gap && m_delivery.Silence(traffic).value_or(0) > k_stopped;
}

/// Whether packets to the destination would be in the capture, to its end when something came there until `after`:
/// others of it are, or such that nothing but a capture of everything would have beside the signalling.
bool COnAir::m_WouldBeCaptured(const SPackageFacts& package, const std::string& destination, double after) const
{
    const auto stillCame = [after](double last) { return after == k_never || last > after + k_stopped; };
    const auto captured = m_route.find(destination);
    if (captured != m_route.end() && stillCame(captured->second.last)) {
        return after != k_never || captured->second.allFlows;
    }
    if ((captured != m_route.end() && after == k_never) || m_delivery.others.packets != 0) {
        return false;
    }
    const std::string address = AddressOf(destination);
    for (auto same = m_came.lower_bound(address);
         same != m_came.end() && same->first.compare(0, address.size(), address) == 0; ++same) {
        if (stillCame(same->second)) {
            return true;
        }
    }
    const double elsewhere = m_LookAt(package).elsewhere;
    return elsewhere != k_never && stillCame(elsewhere);
}

SPresence COnAir::m_OfFlows(const SPackageFacts& package, const SLctFacts& lct, const SLctSession& session,
                            double since) const
{
    const STraffic* latest = nullptr;
    for (const auto& [place, flow] : session.flows) {
        const STraffic& traffic = m_delivery.sessions[place].flows[flow].traffic;
        if (!m_Stopped(traffic)) {
            return {SPresence::COMES};
        }
        latest = latest == nullptr || Seconds(*latest->last) < Seconds(*traffic.last) ? &traffic : latest;
    }
    const std::string type = TypeOf(package, lct);
    const double last = Seconds(*latest->last);
    const std::map<std::string, double>& begun = m_LookAt(package).begun;
    if (since < k_stopped || (type != "video" && type != "audio")) {
        return {SPresence::COMES};
    }
    if (const auto other = begun.find(type); other != begun.end() && other->second > last) {
        return {SPresence::NOT_DUE};
    }
    return m_WouldBeCaptured(package, std::get<0>(KeyOf(package, lct)), last)
               ? SPresence{SPresence::STOPPED, *m_delivery.Silence(*latest)}
               : SPresence{SPresence::UNKNOWN};
}

SPresence COnAir::Of(const SPackageFacts& package, const SLctFacts& lct) const
{
    const auto source = package.documentSource.find(ESlsDocument::STSID);
    const double since = source != package.documentSource.end() ? SecondsBehind(m_evidence, source->second) : 0;
    const double end = m_evidence.last ? Seconds(*m_evidence.last) : 0;
    const std::optional<double> startTime = Instant(lct.startTime);
    const std::optional<double> endTime = Instant(lct.endTime);
    const std::optional<double> listed = m_Listed(package.session, package.announced);
    const bool due = listed && lct.bandwidth != std::uint64_t{0} &&
                     !(startTime && *startTime > end - since - k_clocksApart) &&
                     !(endTime && *endTime < end + k_clocksApart);
    const TLctKey key = KeyOf(package, lct);
    const SLctSession& session = m_lct.at(key);
    if (!session.flows.empty()) {
        return due ? m_OfFlows(package, lct, session, std::min(since, *listed)) : SPresence{SPresence::COMES};
    }
    if (!due) {
        return {SPresence::NOT_DUE};
    }
    if (m_delivery.clockSet != 0 || (m_came.empty() && !m_mmtMedia)) {
        return {SPresence::UNKNOWN};
    }
    const std::string type = TypeOf(package, lct);
    const bool steady = lct.realTime && (type == "audio" || type == "video");
    if (since < (steady ? k_enough : k_enoughOfFew)) {
        return {SPresence::TOO_SOON};
    }
    return m_WouldBeCaptured(package, std::get<0>(key), k_never) ? SPresence{SPresence::ABSENT, since}
                                                                 : SPresence{SPresence::UNKNOWN};
}

SPresence COnAir::Of(const std::string& session, const SMpTableFacts& table, const SAssetFacts& asset) const
{
    const double since = SecondsBehind(m_evidence, table.source);
    const std::optional<double> listed = m_Listed(session, m_evidence.mmt.at(session).announced);
    if (!listed) {
        return {SPresence::NOT_DUE};
    }
    if (asset.places.empty() || asset.elsewhere) {
        return {SPresence::UNKNOWN};
    }
    const bool steady = IsSteady(asset);
    bool came = false;
    double silence = 0;
    for (const auto& [destination, packetId] : asset.places) {
        const std::string& where = destination.empty() ? session : destination;
        const auto captured = m_mmt.find(where);
        const auto flow = m_packets.find({where, packetId});
        if (flow == m_packets.end()) {
            if (captured == m_mmt.end() || !captured->second.allFlows) {
                return {SPresence::UNKNOWN};
            }
            continue;
        }
        const STraffic& traffic = flow->second->traffic;
        if (!steady || std::min(since, *listed) < k_stopped || !m_Stopped(traffic)) {
            return {SPresence::COMES};
        }
        const double silent = *m_delivery.Silence(traffic);
        if (captured->second.last < Seconds(*traffic.last) + k_stopped) {
            return {SPresence::UNKNOWN};
        }
        silence = came ? std::min(silence, silent) : silent;
        came = true;
    }
    if (came) {
        return {SPresence::STOPPED, silence};
    }
    if (m_delivery.clockSet != 0 || (m_came.empty() && !m_mmtMedia)) {
        return {SPresence::UNKNOWN};
    }
    return since < (steady ? k_enough : k_enoughOfFew) ? SPresence{SPresence::TOO_SOON}
                                                       : SPresence{SPresence::ABSENT, since};
}

bool COnAir::IsSteady(const SAssetFacts& asset)
{
    constexpr const char* k_few[] = {"stpp", "wvtt", "tx3g", "urim", "mett", "metx"};
    return std::find(std::begin(k_few), std::end(k_few), asset.type) == std::end(k_few);
}

bool COnAir::HasRepair(const SSessionDelivery& session)
{
    return std::any_of(session.flows.begin(), session.flows.end(),
                       [](const SFlowDelivery& each) { return each.repairPackets != 0 || each.carries == "repair"; });
}

}  // namespace vyr::inspect
