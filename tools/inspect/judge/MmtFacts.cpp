#include "judge/MmtFacts.h"

#include "judge/Read.h"
#include "model/Content.h"

namespace vyr::inspect {

namespace {

constexpr std::size_t k_mostSessions = 1024;
constexpr std::size_t k_mostMessages = 256;  ///< of a session
constexpr std::size_t k_mostPlaces = 16;     ///< of an asset
constexpr std::size_t k_mostDestinations = 256;

// Identifiers of MMT tables, and of where an asset is.
constexpr std::uint64_t k_firstMpTable = 0x11;
constexpr std::uint64_t k_mpTable = 0x20;
constexpr std::uint64_t k_sameSession = 0;
constexpr std::uint64_t k_ipv4Session = 1;

bool ReadAsset(const TJson& json, SAssetFacts& asset)
{
    asset.id = Text(Field(json, "identifier"), "asset_id");
    asset.type = Text(json, "asset_type");
    bool whole = true;
    return Each(json, "locations",
                [&](const TJson& location) {
                    const std::uint64_t type = Unsigned(location, "location_type").value_or(~0u);
                    const std::optional<std::uint64_t> packetId = Unsigned(location, "packet_id");
                    if (!packetId || type > k_ipv4Session) {
                        asset.elsewhere = true;
                        return;
                    }
                    whole = whole && asset.places.size() < k_mostPlaces;
                    if (whole) {
                        asset.places.emplace_back(type == k_sameSession
                                                      ? std::string()
                                                      : Text(location, "ipv4_dst_addr") + ':' +
                                                            std::to_string(Unsigned(location, "dst_port").value_or(0)),
                                                  *packetId);
                    }
                }) &&
           whole;
}

void ReadMpTable(const TJson& json, const SSource& source, std::vector<SMpTableFacts>& tables, SMmtFacts& facts)
{
    const std::uint64_t id = Unsigned(json, "table_id").value_or(0);
    if (id < k_firstMpTable || id > k_mpTable || Field(json, "assets").is_null()) {
        return;
    }
    SMpTableFacts table = {Text(json, "MMT_package_id"), static_cast<unsigned>(id), {}, source, source.time};
    facts.whole = Each(json, "assets",
                       [&](const TJson& assetJson) {
                           SAssetFacts asset;
                           const bool fits = facts.entries < k_mostFacts;
                           facts.whole = facts.whole && fits && ReadAsset(assetJson, asset);
                           for (const auto& [destination, packetId] : asset.places) {
                               facts.whole = facts.whole && facts.destinations.size() < k_mostDestinations;
                               if (facts.whole && !destination.empty()) {
                                   facts.destinations.insert(destination);
                               }
                           }
                           if (fits) {
                               table.assets.push_back(std::move(asset));
                               ++facts.entries;
                           }
                       }) &&
                  facts.whole;
    tables.push_back(std::move(table));
}

SMmtUsbdFacts ReadUsbd(const TJson& json, const SSource& source, SMmtFacts& facts)
{
    SMmtUsbdFacts usbd;
    const std::optional<std::uint64_t> id = Unsigned(json, "serviceId");
    usbd.serviceId = id ? std::optional<unsigned>(static_cast<unsigned>(*id)) : std::nullopt;
    usbd.globalServiceId = Text(json, "globalServiceID");
    usbd.package = Text(Field(json, "MPUComponent"), "mmtPackageId");
    usbd.route = !Field(json, "ROUTEComponent").is_null();
    usbd.broadband = !Field(json, "BroadbandComponent").is_null();
    usbd.source = source;
    usbd.whole = Each(json, "ComponentInfo",
                      [&](const TJson& component) {
                          const bool fits = facts.entries < k_mostFacts;
                          usbd.whole = usbd.whole && fits;
                          if (fits) {
                              usbd.components.push_back(Text(component, "componentId"));
                              ++facts.entries;
                          }
                      }) &&
                 usbd.whole;
    return usbd;
}

/// Drops what the message of that key said.
void Drop(SMmtFacts& facts, const std::string& key)
{
    for (const SMpTableFacts& table : facts.mpTables[key]) {
        facts.entries -= table.assets.size();
    }
    facts.mpTables.erase(key);
    if (const auto usbd = facts.usbds.find(key); usbd != facts.usbds.end()) {
        facts.entries -= usbd->second.components.size();
        facts.usbds.erase(usbd);
    }
}

}  // namespace

bool SMmtFacts::Holds(const SMpTableFacts& table, double longest) const
{
    const std::optional<STime>& now = messages.last.time;
    bool named = table.package.empty();
    bool names = false;
    for (const auto& [key, usbd] : usbds) {
        named = named || usbd.package == table.package;
        names = names || !usbd.package.empty();
    }
    return (named || !names) && !(now && table.last && Seconds(*now) - Seconds(*table.last) > longest);
}

void HoldMessage(std::map<std::string, SMmtFacts>& sessions, const SMessage& message)
{
    if (message.session.empty() || (sessions.size() == k_mostSessions && sessions.count(message.session) == 0)) {
        return;
    }
    SMmtFacts& facts = sessions[message.session];
    facts.announced = message.services;
    facts.messages.Add(message.source);
    if (message.status == EStatus::REPEATED) {
        if (const auto tables = facts.mpTables.find(message.key); tables != facts.mpTables.end()) {
            for (SMpTableFacts& table : tables->second) {
                table.last = message.source.time;
            }
        }
        return;
    }
    Drop(facts, message.key);
    if (!message.content) {
        facts.whole = facts.whole && !message.supported;
        return;
    }
    const TJson& own = message.content->json;
    const TJson& json = Field(own, "message").is_object() ? Field(own, "message") : own;  // of a signed message
    std::vector<SMpTableFacts> tables;
    facts.whole =
        Each(json, "tables", [&](const TJson& table) { ReadMpTable(table, message.source, tables, facts); }) &&
        facts.whole;
    ReadMpTable(Field(json, "MP_table"), message.source, tables, facts);
    const TJson& usbd = Field(json, "BundleDescriptionMMT");
    if (tables.empty() && !usbd.is_object()) {
        return;
    }
    if (facts.mpTables.size() + facts.usbds.size() >= k_mostMessages) {
        facts.whole = false;
        for (const SMpTableFacts& table : tables) {
            facts.entries -= table.assets.size();
        }
        return;
    }
    if (usbd.is_object()) {
        facts.usbds[message.key] = ReadUsbd(usbd, message.source, facts);
    }
    if (!tables.empty()) {
        facts.mpTables[message.key] = std::move(tables);
    }
}

}  // namespace vyr::inspect
