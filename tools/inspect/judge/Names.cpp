#include "judge/Names.h"

#include <algorithm>
#include <set>

#include "base/Text.h"

namespace vyr::inspect {

namespace {

constexpr std::size_t k_mostServices = 64;  ///< of a session or flow
constexpr int k_guide = 4;
constexpr int k_route = 1;
constexpr int k_mmtp = 2;

void AddServices(std::vector<unsigned>& services, const std::vector<unsigned>& more)
{
    for (const unsigned service : more) {
        const auto place = std::lower_bound(services.begin(), services.end(), service);
        if (services.size() < k_mostServices && (place == services.end() || *place != service)) {
            services.insert(place, service);
        }
    }
}

void NameFlow(SFlowDelivery& flow, const std::vector<unsigned>& services, const std::string& carries)
{
    AddServices(flow.services, services);
    flow.carries = flow.carries.empty() ? carries : flow.carries;
}

void NameLct(const SLctSession& lct, SDelivery& delivery)
{
    if (lct.flows.empty()) {
        return;
    }
    std::vector<unsigned> services;
    std::map<TToi, const std::string*> files;
    bool readable = true;
    for (const SLctSession::SAnnouncement& one : lct.by) {
        AddServices(services, ServicesOf(*one.package));
        readable = readable && !one.facts->otherPayloadId;
        for (const SFileFacts& file : one.facts->files) {
            files.emplace(file.toi, &file.name);
        }
    }
    const SLctFacts& first = *lct.by.front().facts;
    const std::string carries = CarriesText(first);
    for (const auto& [session, place] : lct.flows) {
        SFlowDelivery& flow = delivery.sessions[session].flows[place];
        NameFlow(flow, services, carries);
        if (flow.objects && !readable) {
            // They were read as if all packets had a start_offset.
            const std::uint64_t begun = flow.objects->begun;
            *flow.objects = {};
            flow.objects->begun = flow.objects->unknown = begun;
        }
        for (std::size_t i = 0; flow.objects && i < flow.objects->firstIncomplete.size(); ++i) {
            SIncompleteObject& object = flow.objects->firstIncomplete[i];
            const auto file = files.find(object.toi);
            object.name = file != files.end()
                              ? *file->second
                              : NameByTemplate(OfRepresentation(first.fileTemplate, first.repId), object.toi);
        }
    }
}

using TPlaces = std::map<std::pair<std::string, std::uint64_t>, std::vector<SFlowDelivery*>>;

void NameAssets(const std::string& session, const SMmtFacts& facts, const TPlaces& places)
{
    static const std::vector<SFlowDelivery*> k_none;
    facts.EachTable([&](const SMpTableFacts& table) {
        for (const SAssetFacts& asset : table.assets) {
            for (const auto& [destination, packetId] : asset.places) {
                const auto flows = places.find({destination.empty() ? session : destination, packetId});
                for (SFlowDelivery* flow : flows != places.end() ? flows->second : k_none) {
                    NameFlow(*flow, facts.announced, Joined({asset.type, asset.id.empty() ? "" : "asset " + asset.id}));
                }
            }
        }
    });
}

/// Whether all that the service's signalling names is known.
bool IsKnown(const SEvidence& evidence, const SSltService& service)
{
    if (!service.hasBroadcastSvcSignaling) {
        return service.notListed.empty();
    }
    if (service.slsProtocol == k_mmtp) {
        const auto facts = evidence.mmt.find(SessionOf(service));
        return facts != evidence.mmt.end() && facts->second.whole && !facts->second.mpTables.empty() &&
               std::none_of(facts->second.usbds.begin(), facts->second.usbds.end(),
                            [](const auto& usbd) { return usbd.second.route; });
    }
    const std::vector<const SPackageFacts*> packages = evidence.Of(service);
    return service.slsProtocol == k_route && !packages.empty() &&
           (service.serviceCategory != k_guide || (evidence.guide.came && evidence.guide.whole)) &&
           std::all_of(packages.begin(), packages.end(), [](const SPackageFacts* package) {
               const auto broken = package->broken.find(ESlsDocument::STSID);
               return package->stsid && package->stsid->whole && package->allEarlier &&
                      (broken == package->broken.end() || !broken->second);
           });
}

/// Whether every list of every group is there, and all that its services name.
bool NamesKnown(const SEvidence& evidence)
{
    std::map<std::string, std::set<unsigned>> groups;
    bool known = !evidence.lists.empty();
    for (const auto& [key, list] : evidence.lists) {
        groups[key.first].insert(key.second);
        known = known && list.whole &&
                std::all_of(list.services.begin(), list.services.end(),
                            [&](const SSltService& service) { return IsKnown(evidence, service); });
    }
    for (const auto& [key, list] : evidence.lists) {
        known = known && groups[key.first].size() > list.header.groupCountMinus1;
    }
    return known;
}

}  // namespace

TLctKey KeyOf(const SPackageFacts& package, const SLctFacts& lct)
{
    const std::size_t colon = lct.destination.find(':');
    const std::size_t own = package.session.find(':');
    const std::string address = lct.destination.substr(0, colon);
    const std::string port = lct.destination.substr(colon + 1);
    return {(address.empty() ? package.session.substr(0, own) : address) + ':' +
                (port.empty() ? package.session.substr(own + 1) : port),
            lct.source, lct.tsi};
}

TLctSessions LctSessions(const SEvidence& evidence, const SDelivery& delivery)
{
    TLctSessions sessions;
    for (const auto& [key, package] : evidence.packages) {
        if (package.stsid) {
            for (const SLctFacts& lct : package.stsid->sessions) {
                sessions[KeyOf(package, lct)].by.push_back({&package, &lct});
            }
        }
    }
    for (std::size_t i = 0; i < delivery.sessions.size(); ++i) {
        const SSessionDelivery& session = delivery.sessions[i];
        for (std::size_t j = 0; session.protocol == EDeliveryProtocol::ROUTE && j < session.flows.size(); ++j) {
            for (const std::string& source : {Ipv4Text(session.source), std::string()}) {
                const auto lct = sessions.find({SessionText(session), source, session.flows[j].id});
                if (lct != sessions.end()) {
                    lct->second.flows.emplace_back(i, j);
                }
            }
        }
    }
    return sessions;
}

std::vector<unsigned> ServicesOf(const SPackageFacts& package)
{
    return package.usbd && package.usbd->serviceId ? std::vector<unsigned>{*package.usbd->serviceId}
                                                   : package.announced;
}

std::string CarriesText(const SLctFacts& lct)
{
    if (!lct.sourceFlow) {
        return "repair";
    }
    if (!lct.realTime) {
        return "files";
    }
    return Joined({lct.contentType.empty() ? "streaming" : lct.contentType, lct.lang,
                   lct.repId.empty() ? "" : "representation " + lct.repId});
}

std::string OfRepresentation(const std::string& text, const std::string& id)
{
    static const std::string k_place = "$RepresentationID$";
    std::string filled = text;
    const std::size_t at = filled.find(k_place);
    return at != std::string::npos && !id.empty() ? filled.replace(at, k_place.size(), id) : filled;
}

std::string SessionText(const SSessionDelivery& session)
{
    return EndpointText(session.destination, session.port);
}

std::optional<unsigned> FirstService(const SSessionDelivery& session, const SFlowDelivery& flow)
{
    const std::vector<unsigned>& services = flow.services.empty() ? session.services : flow.services;
    return services.empty() ? std::nullopt : std::optional<unsigned>(services.front());
}

void NameDelivery(const SEvidence& evidence, SDelivery& delivery)
{
    using TDestinations = std::map<std::string, std::vector<unsigned>>;
    std::map<EDeliveryProtocol, TDestinations> announced;
    for (const auto& [key, lct] : LctSessions(evidence, delivery)) {
        for (const SLctSession::SAnnouncement& one : lct.by) {
            AddServices(announced[EDeliveryProtocol::ROUTE][std::get<0>(key)], ServicesOf(*one.package));
        }
        NameLct(lct, delivery);
    }
    for (const auto& [session, facts] : evidence.mmt) {
        for (const std::string& destination : facts.destinations) {
            AddServices(announced[EDeliveryProtocol::MMTP][destination], facts.announced);
        }
    }
    std::set<TLctKey> earlier;
    for (const auto& [key, package] : evidence.packages) {
        earlier.insert(package.earlier.begin(), package.earlier.end());
    }
    TPlaces places;
    for (SSessionDelivery& session : delivery.sessions) {
        const std::string destination = SessionText(session);
        for (const auto& [protocol, destinations] : announced) {
            const auto known = destinations.find(destination);
            if (known != destinations.end()) {
                session.guessed = session.guessed && session.protocol != protocol;
                AddServices(session.services, known->second);
                session.carries = session.services.empty() && session.carries.empty() ? "announced" : session.carries;
            }
        }
        if (evidence.guide.destinations.count(destination) != 0 && session.services.empty() &&
            session.carries.empty()) {
            session.carries = "service guide";
        }
        for (SFlowDelivery& flow : session.flows) {
            if (session.protocol == EDeliveryProtocol::MMTP) {
                places[{destination, flow.id}].push_back(&flow);
            } else if (flow.carries.empty() && (earlier.count({destination, Ipv4Text(session.source), flow.id}) != 0 ||
                                                earlier.count({destination, {}, flow.id}) != 0)) {
                flow.carries = "announced before";
            }
        }
    }
    for (const auto& [session, facts] : evidence.mmt) {
        NameAssets(session, facts, places);
    }
    delivery.namesKnown = NamesKnown(evidence);
}

}  // namespace vyr::inspect
