#include "content/MmtContent.h"

#include "base/Names.h"
#include "base/Text.h"
#include "content/MmtDescriptors.h"
#include "content/MpdContent.h"
#include "content/SlsContent.h"
#include "mmt/IdentifierUnit/IdentifierUnit0.h"
#include "mmt/IdentifierUnit/IdentifierUnit1.h"
#include "mmt/IdentifierUnit/IdentifierUnit2.h"
#include "mmt/IdentifierUnit/IdentifierUnit3.h"
#include "mmt/IdentifierUnit/IdentifierUnitPriv.h"
#include "mmt/msg/MMTMsgAc.h"
#include "mmt/msg/MMTMsgAdc.h"
#include "mmt/msg/MMTMsgLdc.h"
#include "mmt/msg/MMTMsgLs.h"
#include "mmt/table/MMTTblCri.h"
#include "mmt/table/MMTTblDci.h"
#include "mmt/table/MMTTblMp.h"
#include "mmt/table/MMTTblMpi.h"
#include "mmt/table/MMTTblPa.h"
#include "mmt/table/MMTTblSi.h"
#include "model/Content.h"

namespace vyr::inspect {

namespace {

constexpr char k_indent[] = "    ";

std::string Reversed(std::uint32_t address)
{
    return Ipv4Text(address << 24 | (address & 0xFF00) << 8 | (address >> 8 & 0xFF00) | address >> 24);
}

std::string WordsText(const unsigned short (&words)[8])
{
    unsigned char bytes[16];
    for (int i = 0; i < 8; ++i) {
        bytes[2 * i] = static_cast<unsigned char>(words[i] >> 8);
        bytes[2 * i + 1] = static_cast<unsigned char>(words[i]);
    }
    return Ipv6Text(bytes);
}

/// Asks for every field; a unit answers for those that its type has.
TJson LocationJson(const CMMTElementLocation& location)
{
    TJson json = {{"location_type", location.LocationType()}};
    const CLocationUnitBase* unit = location.Location();
    if (unit == nullptr) {
        return json;
    }
    // The library gives the addresses of these types with the first byte lowest.
    const bool reversed = location.LocationType() == 0x0A || location.LocationType() == 0x0C;
    unsigned word = 0;
    unsigned short half = 0;
    unsigned short words[8] = {};
    std::string text;
    if (unit->GetIpv4SrcAddr(&word)) {
        json["ipv4_src_addr"] = reversed ? Reversed(word) : Ipv4Text(word);
    }
    if (unit->GetIpv4DstAddr(&word)) {
        json["ipv4_dst_addr"] = reversed ? Reversed(word) : Ipv4Text(word);
    }
    if (unit->GetIpv6SrcAddr(words)) {
        json["ipv6_src_addr"] = WordsText(words);
    }
    if (unit->GetIpv6DstAddr(words)) {
        json["ipv6_dst_addr"] = WordsText(words);
    }
    if (unit->GetDstPort(&half)) {
        json["dst_port"] = half;
    }
    if (unit->GetPacketId(&word)) {
        json["packet_id"] = word;
    }
    if (unit->GetMsgId(&half)) {
        PutNamed(json, "message_id", half, MessageName(half));
    }
    if (unit->GetNetworkId(&half)) {
        json["network_id"] = half;
    }
    if (unit->GetMPEG2TsId(&half)) {
        json["MPEG_2_transport_stream_id"] = half;
    }
    if (unit->GetMPEG2PID(&half)) {
        json["MPEG_2_PID"] = half;
    }
    if (unit->GetUrl(text)) {
        json["URL"] = text;
    }
    if (unit->GetPrivateLocationInfo(text)) {
        json["private_location"] = Hex({reinterpret_cast<const unsigned char*>(text.data()), text.size()});
    }
    return json;
}

/// "packet_id 5", "ipv4_dst_addr 239.1.1.1, …"; the type alone where nothing else is told.
std::string LocationText(const TJson& location)
{
    TJson fields = location;
    if (fields.size() > 1) {
        fields.erase("location_type");
        fields.erase("message_idName");
    }
    return FieldsText(fields);
}

std::string Bytes(const char* text, unsigned length)
{
    return text != nullptr ? std::string(text, length) : std::string();
}

TJson AssetIdJson(const CMMTElementAssetId& id)
{
    return {{"asset_id_scheme", FourCcText({id.AssetIdScheme(), 4})},
            {"asset_id", AssetIdText({id.AssetId(), id.AssetIdTextLength()})}};
}

TJson IdentifierJson(const CMMTElementIdentifierMapping& mapping, std::string& text)
{
    TJson json = {{"identifier_type", mapping.IdentifierType()}};
    const CIdentifierUnitBase* unit = mapping.Identifier();
    if (const auto* asset = dynamic_cast<const CIdentifierUnit0*>(unit)) {
        json.update(AssetIdJson(*asset->AssetId()));
        text = Quoted(json["asset_id"]) + " (" + Printable(json["asset_id_scheme"]) + ')';
    } else if (const auto* urls = dynamic_cast<const CIdentifierUnit1*>(unit)) {
        TJson list = TJson::array();
        for (unsigned short i = 0; i < urls->UrlCount(); ++i) {
            list.push_back(urls->Url(i));
        }
        json["URL"] = std::move(list);
        text = FieldsText({{"URL", json["URL"]}});
    } else if (const auto* regex = dynamic_cast<const CIdentifierUnit2*>(unit)) {
        json["regex"] = Bytes(regex->Regex(), regex->RegexLength());
        text = "URLs like " + Quoted(json["regex"]);
    } else if (const auto* representation = dynamic_cast<const CIdentifierUnit3*>(unit)) {
        json["representation_id"] = Bytes(representation->RepresentationId(), representation->RepresentationIdLength());
        text = "representation " + Quoted(json["representation_id"]);
    } else if (const auto* priv = dynamic_cast<const CIdentifierUnitPriv*>(unit)) {
        json["private"] = Hex({reinterpret_cast<const unsigned char*>(priv->Private()), priv->PrivateLength()});
        text = "private " + Short(json["private"]);
    }
    return json;
}

bool IsMpd(const std::string& type, const std::string& document)
{
    return type.rfind("application/dash+xml", 0) == 0 || document.find("<MPD") != std::string::npos;
}

/// The descriptors of a table or a part of one, in JSON and as lines.
template <class TOwner>
void PutDescriptors(TOwner& owner, const std::string& indent, TJson& json, std::string& text)
{
    for (int i = 0; i < owner.DescriptorCount(); ++i) {
        TJson descriptor = DescriptorJson(*owner.Descriptor(i));
        text += DescriptorText(indent, descriptor);
        Append(json, "descriptors", std::move(descriptor));
    }
}

TJson AssetJson(CMMTTblMpAsset& asset, std::string& text)
{
    std::string name;
    std::vector<std::string> locations;
    TJson json = {{"identifier", IdentifierJson(*asset.Identifier(), name)},
                  {"asset_type", FourCcText({asset.AssetType(), 4})},
                  {"default_asset_flag", asset.DefaultAssetFlag()}};
    if (asset.AssetClockRelationFlag()) {
        json["asset_clock_relation_id"] = asset.AssetClockRelationId();
    }
    if (asset.AssetTimeScaleFlag()) {
        json["asset_timescale"] = asset.AssetTimeScale();
    }
    std::string where;
    for (unsigned char i = 0; i < asset.LocationCount(); ++i) {
        TJson location = LocationJson(*asset.Location(i));
        where += std::string(k_indent) + "  at " + LocationText(location) + '\n';
        Append(json, "locations", std::move(location));
    }
    text += k_indent + ("asset " + name) + ": " +
            Joined({Printable(json["asset_type"]), asset.DefaultAssetFlag() ? "default" : "",
                    asset.AssetTimeScaleFlag() ? "timescale " + std::to_string(asset.AssetTimeScale()) : "",
                    asset.AssetClockRelationFlag() ? "clock " + std::to_string(asset.AssetClockRelationId()) : ""}) +
            '\n' + where;
    for (unsigned i = 0; i < asset.AssetDescriptorSize(); ++i) {
        TJson descriptor = DescriptorJson(*asset.AssetDescriptor(i));
        text += DescriptorText(std::string(k_indent) + "  ", descriptor);
        Append(json, "descriptors", std::move(descriptor));
    }
    return json;
}

void ReadMp(CMMTTblMp& table, SContent& content)
{
    const bool named = table.PackageId() != nullptr;
    TJson& json = content.json;
    if (named) {
        json["MMT_package_id"] = std::string(table.PackageId(), table.PackageIdLength());
    }
    content.headline =
        Joined({named ? "package " + Quoted(json["MMT_package_id"]) : "", "mode " + std::to_string(table.Mode()),
                Counted(static_cast<std::uint64_t>(table.AssetCount()), "asset")});
    json["MP_table_mode"] = table.Mode();
    PutDescriptors(table, k_indent, json, content.text);
    json["assets"] = TJson::array();
    for (int i = 0; i < table.AssetCount(); ++i) {
        Append(json, "assets", AssetJson(*table.Asset(i), content.text));
    }
}

void ReadMpi(CMMTTblMpi& table, SContent& content)
{
    TJson& json = content.json;
    content.headline = "mode " + std::to_string(table.PiMode()) + ", " + Counted(table.PiContentCount(), "content");
    json["PI_mode"] = table.PiMode();
    PutDescriptors(table, k_indent, json, content.text);
    json["contents"] = TJson::array();
    for (unsigned short i = 0; i < table.PiContentCount(); ++i) {
        CMMTTblMpiContent& entry = *table.PiContent(i);
        const std::string type = Bytes(entry.PiContentType(), entry.PiContentTypeLen());
        const std::string document = Bytes(entry.PiContent(), entry.PiContentLen());
        TJson item = {{"PI_content_type", type},
                      {"PI_content_name", Bytes(entry.PiContentName(), entry.PiContentNameLen())},
                      {"PI_content_length", document.size()}};
        content.text += k_indent + ("content " + Quoted(item["PI_content_name"])) + ": " +
                        Joined({Printable(type), Counted(document.size(), "byte")}) + '\n';
        PutDescriptors(entry, std::string(k_indent) + "  ", item, content.text);
        if (IsMpd(type, document)) {
            std::string reason;
            if (COptionalContent mpd = ReadMpd(document, reason)) {
                content.text += k_indent + ("  MPD: " + mpd->headline) + '\n' + Indented(mpd->text, k_indent);
                item["MPD"] = std::move(mpd->json);
            } else {
                content.faults.push_back("MPD did not parse: " + reason);
            }
        } else if (!document.empty()) {
            item["firstLine"] = AppDataContent(document).json["firstLine"];
        }
        Append(json, "contents", std::move(item));
    }
}

void ReadPa(CMMTTblPa& table, SContent& content)
{
    content.headline = Counted(static_cast<std::uint64_t>(table.InfoCount()), "table");
    TJson& json = content.json;
    json["tables"] = TJson::array();
    for (int i = 0; i < table.InfoCount(); ++i) {
        CMMTTblPaInfo& info = *table.Info(i);
        TJson entry = TJson::object();
        const unsigned id = info.SignallingInformationTableId();
        PutNamed(entry, "signalling_information_table_id", id, MmtTableName(id));
        entry["signalling_information_table_version"] = info.SignallingInformationTableVersion();
        entry["location"] = LocationJson(*info.Location());
        content.text += k_indent + MmtTableTitle(id) + " version " +
                        std::to_string(info.SignallingInformationTableVersion()) + ": at " +
                        LocationText(entry["location"]);
        if (info.AlternativeLocation()->Location() != nullptr) {
            entry["alternative_location"] = LocationJson(*info.AlternativeLocation());
            content.text += "; or at " + LocationText(entry["alternative_location"]);
        }
        content.text += '\n';
        Append(json, "tables", std::move(entry));
    }
}

void ReadDci(CMMTTblDci& table, SContent& content)
{
    content.headline = Counted(static_cast<std::uint64_t>(table.AssetCount()), "asset");
    content.json["assets"] = TJson::array();
    for (int i = 0; i < table.AssetCount(); ++i) {
        const CMMTTblDci::SAsset& asset = *table.Asset(i);
        TJson json = AssetIdJson(asset.assetId);
        json["mime_type"] = std::string(asset.mimeType.MimeType() != nullptr ? asset.mimeType.MimeType() : "");
        PutValue(json, "codec_complexity_flag", asset.codecComplexityFlag);
        PutValue(json, "average_bitrate", asset.averageBitrate);
        PutValue(json, "maximum_bitrate", asset.maximumBitrate);
        PutValue(json, "horizontal_resolution", asset.horizontalResolution);
        PutValue(json, "vertical_resolution", asset.verticalResolution);
        PutValue(json, "temporal_resolution", asset.temporalResolution);
        PutValue(json, "minimum_buffer_size", asset.minimumBufferSize);
        PutValue(json, "required_storage", asset.requiredStorage);
        content.text += k_indent + FieldsText(json) + '\n';
        Append(content.json, "assets", std::move(json));
    }
}

template <class TTable>
void ReadDescriptors(TTable& table, SContent& content)
{
    content.headline = Counted(static_cast<std::uint64_t>(table.DescriptorCount()), "descriptor");
    PutDescriptors(table, k_indent, content.json, content.text);
}

SContent AcContent(const CMMTMsgAc& message)
{
    SContent content;
    content.headline = Counted(message.Entries().size(), "packet id");
    content.json["entries"] = TJson::array();
    for (const CMMTMsgAc::SEntry& entry : message.Entries()) {
        TJson json = {{"packet_id", entry.packetId}};
        PutValue(json, "rtx_window_timeout", entry.windowTimeout);
        const auto* address = reinterpret_cast<const unsigned char*>(entry.serverAddress.data());
        if (entry.serverAddress.size() == 4) {
            json["arq_server_address"] = Ipv4Text(SView{address, 4}.Be32(0));
        } else if (entry.serverAddress.size() == 16) {
            json["arq_server_address"] = Ipv6Text(address);
        }
        PutValue(json, "arq_server_port", entry.serverPort);
        content.text += k_indent + FieldsText(json) + '\n';
        Append(content.json, "entries", std::move(json));
    }
    return content;
}

SContent AdcContent(const CMMTMsgAdc& message)
{
    SContent content;
    const CMMTMsgAdc::SAdc& fields = message.Fields();
    TJson& json = content.json;
    PutValue(json, "validity_start_time", fields.validityStartTime);
    PutValue(json, "validity_duration", fields.validityDuration);
    PutValue(json, "ADC_level_flag", fields.adcLevelFlag);
    PutValue(json, "flow_label_flag", fields.flowLabelFlag);
    PutValue(json, "MPU_sequence_number", fields.mpuSequenceNumber);
    PutValue(json, "ADC_packet_id", fields.packetId);
    PutValue(json, "loss_tolerance", fields.lossTolerance);
    PutValue(json, "jitter_sensitivity", fields.jitterSensitivity);
    PutValue(json, "class_of_service", fields.classOfService);
    PutValue(json, "bidirection_indicator", fields.bidirectionIndicator);
    PutValue(json, "sustainable_rate", fields.sustainableRate);
    PutValue(json, "buffer_size", fields.bufferSize);
    PutValue(json, "peak_rate", fields.peakRate);
    PutValue(json, "max_MFU_size", fields.maxMfuSize);
    PutValue(json, "MFU_period", fields.mfuPeriod);
    PutValue(json, "flow_label", fields.flowLabel);
    content.headline = fields.packetId ? "packet id " + std::to_string(*fields.packetId) : "no packet id";
    content.text = k_indent + FieldsText(json) + '\n';
    return content;
}

SContent LicenceContent(const CMMTMsgLs& message)
{
    SContent content;
    content.headline = Counted(static_cast<std::uint64_t>(message.LicenceCount()), "licence");
    content.json["licences"] = TJson::array();
    for (int i = 0; i < message.LicenceCount(); ++i) {
        const CMMTMsgLs::SLicence& licence = *message.Licence(i);
        TJson json = AssetIdJson(licence.assetId);
        if (licence.data) {
            json["licence"] = Hex({licence.data.Data(), licence.data.Length()});
        }
        content.text += k_indent + FieldsText(json) + '\n';
        Append(content.json, "licences", std::move(json));
    }
    return content;
}

SContent LdcContent(const CMMTMsgLdc& message)
{
    SContent content;
    PutLowDelay(content.json, message.Fields());
    content.headline = Counted(content.json.size(), "field");
    content.text = k_indent + FieldsText(content.json) + '\n';
    return content;
}

}  // namespace

std::string MmtTableTitle(unsigned tableId)
{
    const char* name = MmtTableName(tableId);
    return (name != nullptr ? std::string(name) + ' ' : "") + "table " + std::to_string(tableId);
}

SContent MmtTableContent(CMMTTbl& table)
{
    SContent content;
    PutNamed(content.json, "table_id", table.TableId(), MmtTableName(table.TableId()));
    content.json["version"] = table.Version();
    switch (table.ClassType()) {
        case CMMTTbl::CLASS_TYPE_PA:
            ReadPa(static_cast<CMMTTblPa&>(table), content);
            break;
        case CMMTTbl::CLASS_TYPE_MPI:
            ReadMpi(static_cast<CMMTTblMpi&>(table), content);
            break;
        case CMMTTbl::CLASS_TYPE_MP:
            ReadMp(static_cast<CMMTTblMp&>(table), content);
            break;
        case CMMTTbl::CLASS_TYPE_CRI:
            ReadDescriptors(static_cast<CMMTTblCri&>(table), content);
            break;
        case CMMTTbl::CLASS_TYPE_DCI:
            ReadDci(static_cast<CMMTTblDci&>(table), content);
            break;
        case CMMTTbl::CLASS_TYPE_SI:
            ReadDescriptors(static_cast<CMMTTblSi&>(table), content);
            break;
    }
    // Where the fields are in doubt, the bytes are not.
    if (const auto* payload = dynamic_cast<const CMMTTblPayload*>(&table)) {
        content.json["payload"] = Hex({payload->Payload(), payload->PayloadLength()});
    }
    return content;
}

SContent MmtPayloadContent(const CMMTMsgPayload& message)
{
    switch (message.ClassType()) {
        case CMMTMsg::CLASS_TYPE_AC:
            return AcContent(static_cast<const CMMTMsgAc&>(message));
        case CMMTMsg::CLASS_TYPE_ADC:
            return AdcContent(static_cast<const CMMTMsgAdc&>(message));
        case CMMTMsg::CLASS_TYPE_LS:
            return LicenceContent(static_cast<const CMMTMsgLs&>(message));
        default:
            return LdcContent(static_cast<const CMMTMsgLdc&>(message));
    }
}

void PutLowDelay(TJson& json, const CMMTDescLowDelay::SLowDelay& fields)
{
    PutValue(json, "base_presentation_time_offset", fields.basePresentationTimeOffset);
    PutValue(json, "coding_dependency_structure_flag", fields.codingDependencyStructureFlag);
    PutValue(json, "period_of_intrapicture", fields.periodOfIntrapicture);
    PutValue(json, "default_sample_duration", fields.defaultSampleDuration);
    PutValue(json, "default_sample_size", fields.defaultSampleSize);
    PutValue(json, "default_sample_flags", fields.defaultSampleFlags);
}

std::string AssetIdText(std::string_view id)
{
    const std::string text(id);
    return Printable(text) == text ? text : "0x" + Hex({reinterpret_cast<const unsigned char*>(id.data()), id.size()});
}

std::string NtpText(unsigned long long timestamp)
{
    const double seconds = static_cast<double>(NtpSeconds(static_cast<std::uint32_t>(timestamp >> 32)));
    return EpochText(seconds + static_cast<double>(timestamp & 0xFFFFFFFF) / 4294967296.0);
}

}  // namespace vyr::inspect
