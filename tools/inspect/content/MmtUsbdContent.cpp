#include "base/Json.h"
#include "base/Names.h"
#include "base/Text.h"
#include "content/MmtContent.h"
#include "content/PtrArrays.h"
#include "content/SlsContent.h"
#include "mmt/desc/MMTBroadbandComponent.h"
#include "mmt/desc/MMTChannel.h"
#include "mmt/desc/MMTComponentInfo.h"
#include "mmt/desc/MMTContentAdvisoryRatings.h"
#include "mmt/desc/MMTMpuComponent.h"
#include "mmt/desc/MMTName.h"
#include "mmt/desc/MMTRouteComponent.h"
#include "mmt/desc/MMTUsbd.h"
#include "model/Content.h"

namespace vyr::inspect {

namespace {

constexpr unsigned k_noAddress = 0xFFFFFFFF;

void PutMpuComponent(const CMMTMpuComponent::SMpuComponent& mpu, SContent& content)
{
    TJson& json = content.json["MPUComponent"] = TJson::object();
    PutText(json, "mmtPackageId", mpu.mmtPackageId);
    PutText(json, "contentIdSchemeIdUri", mpu.contentIdSchemeIdUri);
    PutText(json, "contentIdValue", mpu.contentIdValue);
    PutText(json, "nextMMTPackageId", mpu.nextMMTPackageId);
    PutText(json, "nextContentIdSchemeIdUri", mpu.nextContentIdSchemeIdUri);
    PutText(json, "nextContentIdValue", mpu.nextContentIdValue);
    const auto idText = [](const std::string& package, const std::string& value, const std::string& scheme) {
        return Joined({Printable(package), value.empty() ? "" : "content " + Quoted(value),
                       scheme.empty() ? "" : "of " + Printable(scheme)});
    };
    content.text += Line("package", idText(mpu.mmtPackageId, mpu.contentIdValue, mpu.contentIdSchemeIdUri));
    content.text += Line("next", idText(mpu.nextMMTPackageId, mpu.nextContentIdValue, mpu.nextContentIdSchemeIdUri));
}

void PutRouteComponent(const CMMTRouteComponent::SRouteComponent& route, SContent& content)
{
    TJson& json = content.json["ROUTEComponent"] = TJson::object();
    const auto put = [&json](const char* key, unsigned address) {
        if (address != 0 && address != k_noAddress) {
            json[key] = Ipv4Text(address);
        }
    };
    PutText(json, "sTSIDUri", route.sTSIDUri);
    put("sTSIDDestinationIpAddress", route.sTSIDDestinationIpAddress);
    PutNumber<unsigned>(json, "sTSIDDestinationUdpPort", route.sTSIDDestinationUdpPort, 0);
    put("sTSIDSourceIpAddress", route.sTSIDSourceIpAddress);
    PutNumber(json, "sTSIDMajorProtocolVersion", route.sTSIDMajorProtocolVersion, 0);
    PutNumber(json, "sTSIDMinorProtocolVersion", route.sTSIDMinorProtocolVersion, 0);
    content.text += Line("ROUTE", FieldsText(json));
}

void PutComponentInfo(const CMMTComponentInfo::SComponentInfo& info, SContent& content)
{
    TJson json = TJson::object();
    PutNamed(json, "componentType", info.componentType, ComponentTypeName(info.componentType));
    json["componentRole"] = info.componentRole;
    json["componentProtectedFlag"] = info.componentProtectedFlag;
    PutText(json, "componentId", info.componentId);
    PutText(json, "componentName", info.componentName);
    Append(content.json, "ComponentInfo", std::move(json));
    const char* type = ComponentTypeName(info.componentType);
    content.text += Line("component", Joined({type != nullptr ? type : "type " + std::to_string(info.componentType),
                                              "role " + std::to_string(info.componentRole),
                                              info.componentId.empty() ? "" : "asset " + Quoted(info.componentId),
                                              info.componentName.empty() ? "" : Quoted(info.componentName),
                                              info.componentProtectedFlag ? "protected" : ""}));
}

TJson TextsJson(const std::vector<CMMTContentAdvisoryRatings::SText>& texts)
{
    TJson json = TJson::array();
    for (const CMMTContentAdvisoryRatings::SText& text : texts) {
        TJson entry = TJson::object();
        PutText(entry, "lang", text.lang);
        entry["text"] = text.text;
        json.push_back(std::move(entry));
    }
    return json;
}

void PutRatings(const CMMTContentAdvisoryRatings& ratings, SContent& content)
{
    const CMMTContentAdvisoryRatings::SContentAdvisoryRatings& state = *ratings.State();
    TJson json = TJson::object();
    PutNumber(json, "RegionIdentifier", state.regionIdentifier, 0);
    PutList(json, "RatingDescription", TextsJson(state.descriptions));
    PutNumber(json, "RatedDimensions", state.ratedDimensions, 0);
    for (const CMMTContentAdvisoryRatings::SDimension& dimension : state.ratings) {
        TJson entry = TJson::object();
        PutNumber(entry, "RatingDimension", dimension.dimension, 0);
        PutList(entry, "RatingValueString", TextsJson(dimension.values));
        Append(json, "RatingDimVal", std::move(entry));
    }
    std::string rating;
    ratings.GetContentRatingString(rating);
    json["rating"] = rating;
    Append(content.json, "ContentAdvisoryRatings", std::move(json));
    content.text += Line("rated", Printable(rating));
}

void PutLanguages(const CMMTUsbd::SMMTUsbd& state, SContent& content)
{
    std::vector<std::string> names;
    ForEach<CMMTName>(state.names, [&](const CMMTName& name) {
        TJson json = TJson::object();
        PutText(json, "lang", name.State()->lang);
        json["name"] = name.State()->name;
        Append(content.json, "Name", std::move(json));
        names.push_back(Quoted(name.State()->name) + InLanguage(name.State()->lang));
    });
    std::vector<std::string> languages;
    ForEach<char>(state.svcLanguages, [&](const char& language) {
        Append(content.json, "ServiceLanguage", &language);
        languages.push_back(Printable(&language));
    });
    content.text += Line("names", Joined(names)) + Line("languages", Joined(languages));
}

}  // namespace

SContent MmtUsbdContent(const CMMTUsbd& usbd)
{
    constexpr unsigned short k_none = 0xFFFF;
    const CMMTUsbd::SMMTUsbd& state = *usbd.State();
    SContent content;
    content.headline =
        Joined({state.serviceId != k_none ? "service " + std::to_string(state.serviceId) : "of no service",
                state.globalServiceId != nullptr ? Quoted(state.globalServiceId) : ""}) +
        ServiceStatusText(state.givenServiceStatus, state.serviceStatus);
    TJson& json = content.json;
    PutText(json, "globalServiceID", state.globalServiceId);
    PutNumber(json, "serviceId", state.serviceId, k_none);
    PutValue(json, "serviceStatus", state.givenServiceStatus);
    PutLanguages(state, content);
    if (state.channel != nullptr) {
        const CMMTChannel::SChannel& channel = *state.channel->State();
        TJson& entry = json["Channel"] = TJson::object();
        PutText(entry, "serviceGenre", channel.serviceGenre);
        PutText(entry, "serviceIcon", channel.serviceIcon);
        content.text += Line("channel", FieldsText(entry));
    }
    if (state.mpuComponent != nullptr) {
        PutMpuComponent(*state.mpuComponent->State(), content);
    }
    if (state.routeComponent != nullptr) {
        PutRouteComponent(*state.routeComponent->State(), content);
    }
    if (state.broadbandComponent != nullptr) {
        PutText(json["BroadbandComponent"] = TJson::object(), "fullMPDUri",
                state.broadbandComponent->State()->fullMPDUri);
        content.text += Line("broadband", Printable(state.broadbandComponent->State()->fullMPDUri));
    }
    ForEach<CMMTComponentInfo>(state.componentInfos,
                               [&](const CMMTComponentInfo& info) { PutComponentInfo(*info.State(), content); });
    if (state.serviceLinkage != nullptr) {
        json["ServiceLinkage"] = LinkageJson(*state.serviceLinkage->State());
        content.text += Line("linked to", LinkageText(*state.serviceLinkage->State()));
    }
    ForEach<CMMTContentAdvisoryRatings>(
        state.contentAdvisoryRatings, [&](const CMMTContentAdvisoryRatings& ratings) { PutRatings(ratings, content); });
    return content;
}

}  // namespace vyr::inspect
