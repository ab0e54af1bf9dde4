#include <algorithm>
#include <cmath>
#include <set>

#include "base/Text.h"
#include "judge/Names.h"
#include "judge/Rules.h"

namespace vyr::inspect {

namespace {

constexpr int k_mmtp = 2;
constexpr unsigned k_mpTable = 0x20;  ///< the complete one
constexpr double k_many = 0.1;        ///< of which share on a loss is not for a moment only

/// What the signalling by MMTP says, against itself and against what is on the air.
class CMmtRules : public CRules {
  public:
    CMmtRules(const SEvidence& evidence, CFindings& findings, const SRuleSettings& settings)
        : CRules(evidence, findings), m_settings(settings)
    {
    }

    void Finish(const SDelivery* delivery) override;

  private:
    /// Destination and packet_id.
    using TPlace = std::pair<std::string, std::uint64_t>;

    void m_Tell(ERule rule, const std::string& session, const SMmtFacts& facts, const SSource& source,
                const std::string& message, std::optional<unsigned> service = {});
    void m_Look(const SDelivery& delivery);
    double m_Since(const SSource& source) const;
    void m_Service(const SSltService& service);
    void m_Usbd(const std::string& session, const SMmtFacts& facts, const SMmtUsbdFacts& usbd);
    void m_Assets(const std::string& session, const SMmtFacts& facts);
    void m_Asset(const std::string& session, const SMmtFacts& facts, const SMpTableFacts& table,
                 const SAssetFacts& asset);
    void m_Loss(const SSessionDelivery& session, const SFlowDelivery& flow);

    const SRuleSettings m_settings;
    std::set<TPlace> m_came;
    std::set<std::string> m_sessions;  ///< destinations of which all packet ids are known
    std::set<std::string> m_unread;    ///< destinations of packets of other versions, which may carry anything
    bool m_media = false;              ///< something else than signalling came
};

void CMmtRules::m_Tell(ERule rule, const std::string& session, const SMmtFacts& facts, const SSource& source,
                       const std::string& message, std::optional<unsigned> service)
{
    t_findings.Tell(rule, message, source, service || facts.announced.empty() ? service : facts.announced.front(),
                    session);
}

void CMmtRules::m_Look(const SDelivery& delivery)
{
    constexpr unsigned k_media = 0;  // MPU
    std::set<std::string> unclear;
    m_came.clear();
    m_sessions.clear();
    m_unread.clear();
    m_media = false;
    for (const SSessionDelivery& session : delivery.sessions) {
        const std::string destination = SessionText(session);
        if (session.traffic.packets == 0) {
            continue;
        }
        if (session.otherVersions != 0) {
            m_unread.insert(destination);
        }
        if (session.protocol != EDeliveryProtocol::MMTP || session.guessed || session.packetsNoFlow != 0 ||
            session.otherVersions != 0) {
            unclear.insert(destination);
            continue;
        }
        m_sessions.insert(destination);
        for (const SFlowDelivery& flow : session.flows) {
            m_came.emplace(destination, flow.id);
            m_media = m_media || (flow.payloadType == k_media && flow.traffic.packets > 1);
        }
    }
    for (const std::string& destination : unclear) {
        m_sessions.erase(destination);
    }
}

/// For how many seconds the capture goes on.
double CMmtRules::m_Since(const SSource& source) const
{
    return source.time && t_evidence.last ? Seconds(*t_evidence.last) - Seconds(*source.time) : 0;
}

/// Without any MP table, nothing that a USBD says is of use.
void CMmtRules::m_Service(const SSltService& service)
{
    const std::string session = SessionOf(service);
    const auto found = t_evidence.mmt.find(session);
    if (found == t_evidence.mmt.end()) {
        return;
    }
    const SMmtFacts& facts = found->second;
    const unsigned id = service.serviceId;
    const std::string name = "service " + std::to_string(id);
    std::string package;
    for (const auto& [key, usbd] : facts.usbds) {
        if (usbd.serviceId != id) {
            continue;
        }
        package = usbd.package;
        const std::string listed = service.globalServiceId.value_or("");
        if (!listed.empty() && !usbd.globalServiceId.empty() && usbd.globalServiceId != listed) {
            m_Tell(ERule::GLOBAL_SERVICE_ID, session, facts, usbd.source,
                   name + " has the globalServiceID " + Quoted(listed) + " in the service list, and " +
                       Quoted(usbd.globalServiceId) + " in its USBD",
                   id);
        }
    }
    bool its = false;
    facts.EachTable([&](const SMpTableFacts& table) {
        its = its || package.empty() || table.package.empty() || table.package == package;
    });
    const std::optional<STime>& first = facts.messages.first.time;
    const std::optional<STime>& last = facts.messages.last.time;
    if (!its && facts.whole && m_unread.count(session) == 0 && first && last &&
        Seconds(*last) - Seconds(*first) >= m_settings.longestInterval) {
        m_Tell(ERule::NO_MP_TABLE, session, facts, facts.messages.last,
               name + ": " + Counted(facts.messages.count, "message") + " came, and no MP table" +
                   (package.empty() ? "" : " of package " + Quoted(package)),
               id);
    }
}

void CMmtRules::m_Usbd(const std::string& session, const SMmtFacts& facts, const SMmtUsbdFacts& usbd)
{
    std::set<std::string> assets;
    bool complete = false;
    bool settled = m_Since(usbd.source) >= m_settings.longestInterval;
    facts.EachTable([&](const SMpTableFacts& table) {
        complete = complete || (table.tableId == k_mpTable && table.package == usbd.package);
        settled = settled && m_Since(table.source) >= m_settings.longestInterval;
        for (const SAssetFacts& asset : table.assets) {
            assets.insert(asset.id);
        }
    });
    if (!complete || !settled || !facts.whole || !usbd.whole || usbd.route || usbd.broadband) {
        return;
    }
    for (const std::string& component : usbd.components) {
        if (!component.empty() && assets.count(component) == 0) {
            m_Tell(ERule::COMPONENT_WITHOUT_ASSET, session, facts, usbd.source,
                   "the USBD has a component " + Quoted(component) + ", and package " + Quoted(usbd.package) +
                       " no such asset",
                   usbd.serviceId);
        }
    }
}

/// Packages may share an asset.
void CMmtRules::m_Assets(const std::string& session, const SMmtFacts& facts)
{
    struct SUser {
        const SMpTableFacts* table;
        const SAssetFacts* asset;
    };
    std::map<TPlace, SUser> users;
    std::set<TPlace> told;
    facts.EachTable([&](const SMpTableFacts& table) {
        if (!facts.Holds(table, m_settings.longestInterval)) {
            return;
        }
        for (const SAssetFacts& asset : table.assets) {
            m_Asset(session, facts, table, asset);
            for (const auto& [destination, packetId] : asset.places) {
                const TPlace place = {destination.empty() ? session : destination, packetId};
                const auto [user, isFirst] = users.try_emplace(place, SUser{&table, &asset});
                const SAssetFacts& other = *user->second.asset;
                const bool settled =
                    user->second.table == &table ||
                    std::min(m_Since(user->second.table->source), m_Since(table.source)) >= m_settings.longestInterval;
                if (!isFirst && settled && !asset.id.empty() && !other.id.empty() && asset.id != other.id &&
                    told.insert(place).second) {
                    m_Tell(ERule::PACKET_ID_TWICE, session, facts, table.source,
                           "packet_id " + std::to_string(packetId) + " of " + place.first + " is that of asset " +
                               Quoted(other.id) + " and of asset " + Quoted(asset.id));
                }
            }
        }
    });
}

void CMmtRules::m_Asset(const std::string& session, const SMmtFacts& facts, const SMpTableFacts& table,
                        const SAssetFacts& asset)
{
    constexpr double k_enough = 2;
    constexpr double k_enoughOfFew = 10;  // of subtitles not so many packets come
    constexpr const char* k_few[] = {"stpp", "wvtt", "tx3g", "urim", "mett", "metx"};
    const bool few = std::find(std::begin(k_few), std::end(k_few), asset.type) != std::end(k_few);
    if (!m_media || asset.places.empty() || asset.elsewhere ||
        m_Since(table.source) < (few ? k_enoughOfFew : k_enough)) {
        return;
    }
    for (const auto& [destination, packetId] : asset.places) {
        const std::string& where = destination.empty() ? session : destination;
        if (m_sessions.count(where) == 0 || m_came.count({where, packetId}) != 0) {
            return;
        }
    }
    const auto& [destination, packetId] = asset.places.front();
    m_Tell(ERule::ASSET_NOT_SENT, session, facts, table.source,
           "asset " + Quoted(asset.id) + " (" + Printable(asset.type) + "): no packet of packet_id " +
               std::to_string(packetId) + " came to " + (destination.empty() ? session : destination) + " in " +
               NumberText(std::floor(m_Since(table.source))) + " s");
}

/// What is lost may be repaired where there are repair packets.
void CMmtRules::m_Loss(const SSessionDelivery& session, const SFlowDelivery& flow)
{
    if (!flow.packets || flow.packets->lost == 0) {
        return;
    }
    const bool repair = std::any_of(session.flows.begin(), session.flows.end(),
                                    [](const SFlowDelivery& each) { return each.repairPackets != 0; });
    const std::uint64_t sent = flow.traffic.packets - flow.packets->duplicates + flow.packets->lost;
    const double share = static_cast<double>(flow.packets->lost) / static_cast<double>(sent);
    t_findings.Tell(
        share >= k_many && flow.packets->lost > 1 && !repair ? ERule::MANY_PACKETS_LOST : ERule::PACKETS_LOST,
        "packet_id " + std::to_string(flow.id) + " of " + SessionText(session) +
            (flow.carries.empty() ? "" : " (" + Printable(flow.carries) + ')') + ": " +
            NumberText(std::round(share * 1000) / 10) + " %, " + std::to_string(flow.packets->lost) + " of " +
            Counted(sent, "packet") + ", lost" + (repair ? ", before repair" : ""),
        FirstService(session, flow), SessionText(session));
}

void CMmtRules::Finish(const SDelivery* delivery)
{
    if (delivery == nullptr || !t_evidence.last || delivery->clockSet != 0 || !delivery->Whole()) {
        return;
    }
    m_Look(*delivery);
    for (const auto& [key, list] : t_evidence.lists) {
        for (const SSltService& service : list.services) {
            if (service.notListed.empty() && service.slsProtocol == k_mmtp) {
                m_Service(service);
            }
        }
    }
    for (const auto& [session, facts] : t_evidence.mmt) {
        for (const auto& [key, usbd] : facts.usbds) {
            m_Usbd(session, facts, usbd);
        }
        m_Assets(session, facts);
    }
    for (const SSessionDelivery& session : delivery->sessions) {
        for (const SFlowDelivery& flow : session.flows) {
            if (session.protocol == EDeliveryProtocol::MMTP && !session.guessed) {
                m_Loss(session, flow);
            }
        }
    }
}

}  // namespace

std::unique_ptr<CRules> MmtRules(const SEvidence& evidence, CFindings& findings, const SRuleSettings& settings)
{
    return std::make_unique<CMmtRules>(evidence, findings, settings);
}

}  // namespace vyr::inspect
