#include "report/DeliveryJson.h"

#include <cmath>
#include <cstdint>
#include <optional>
#include <string>

#include "base/Json.h"
#include "base/Text.h"

namespace vyr::inspect {

namespace {

void PutTime(TJson& json, const char* key, const std::optional<STime>& time)
{
    if (time) {
        json[key] = TimeJson(*time);
    }
}

void PutTraffic(TJson& json, const STraffic& traffic)
{
    const auto rounded = [](double rate) { return std::round(rate * 1e3) / 1e3; };
    json["packets"] = traffic.packets;
    json["bytes"] = traffic.bytes;
    PutTime(json, "firstTime", traffic.first);
    PutTime(json, "lastTime", traffic.last);
    PutSeconds(json, "longestGapSeconds", traffic.gap);
    PutTime(json, "longestGapTime", traffic.gapSince);
    if (traffic.meanRate) {
        json["meanRate"] = rounded(*traffic.meanRate);
    }
    if (traffic.peakRate) {
        json["peakRate"] = rounded(*traffic.peakRate);
    }
}

TJson ObjectsJson(const SObjectsDelivery& objects)
{
    TJson json = {{"begun", objects.begun},
                  {"whole", objects.whole},
                  {"repeats", objects.repeats},
                  {"incomplete", objects.incomplete},
                  {"bytesMissing", objects.bytesMissing},
                  {"cut", objects.cut},
                  {"unknown", objects.unknown}};
    for (const SIncompleteObject& object : objects.firstIncomplete) {
        TJson& entry = json["firstIncomplete"].emplace_back(TJson::object());
        PutToi(entry, object.toi);
        entry["bytes"] = object.bytes;
        PutValue(entry, "length", object.length);
        PutText(entry, "name", object.name);
    }
    return json;
}

TJson FlowJson(const SFlowDelivery& flow)
{
    TJson json = TJson::object();
    json[flow.objects ? "TSI" : "packet_id"] = flow.id;
    PutTraffic(json, flow.traffic);
    PutNumber(json, "repairPackets", flow.repairPackets, std::uint64_t{0});
    PutList(json, "serviceIds", flow.services);
    PutText(json, "carries", flow.carries);
    PutValue(json, "type", flow.payloadType);
    if (flow.objects) {
        json["objects"] = ObjectsJson(*flow.objects);
    }
    if (flow.packets) {
        json["packetsLost"] = flow.packets->lost;
        json["packetsRepeated"] = flow.packets->duplicates;
        json["packetsLate"] = flow.packets->late;
        json["restarts"] = flow.packets->restarts;
    }
    return json;
}

}  // namespace

TJson DeliveryJson(const SDelivery& delivery)
{
    TJson json = TJson::object();
    json["source"] = SourceJson(delivery.source);
    PutTraffic(json, delivery.traffic);
    if (delivery.traffic.first) {
        json["seconds"] = delivery.seconds;
    }
    PutNumber(json, "clockSet", delivery.clockSet, std::uint64_t{0});
    json["sessions"] = delivery.sessions.size();
    PutNumber(json, "packetsNoSession", delivery.others.packets, std::uint64_t{0});
    PutNumber(json, "bytesNoSession", delivery.others.bytes, std::uint64_t{0});
    return json;
}

TJson DeliveryJson(const SDelivery& delivery, const SSessionDelivery& session)
{
    TJson json = TJson::object();
    json["source"] = SourceJson(delivery.source);
    PutTraffic(json, session.traffic);
    json["session"] = EndpointText(session.destination, session.port);
    PutText(json, "sourceAddress", session.source != 0 ? Ipv4Text(session.source) : std::string());
    PutText(json, "protocol", DeliveryProtocolName(session.protocol));
    if (session.guessed) {
        json["protocolGuessed"] = true;
    }
    PutList(json, "serviceIds", session.services);
    PutText(json, "carries", session.carries);
    if (delivery.namesKnown) {
        json["named"] = session.Named();
    }
    PutNumber(json, "packetsOther", session.otherPackets, std::uint64_t{0});
    PutNumber(json, "packetsOtherVersions", session.otherVersions, std::uint64_t{0});
    PutNumber(json, "packetsNoFlow", session.packetsNoFlow, std::uint64_t{0});
    for (const SFlowDelivery& flow : session.flows) {
        json["flows"].push_back(FlowJson(flow));
    }
    return json;
}

}  // namespace vyr::inspect
