#include "content/MmtDescriptors.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "base/Json.h"
#include "base/Text.h"
#include "content/MmtContent.h"
#include "mmt/desc/MMTDescs.h"

namespace vyr::inspect {

namespace {

constexpr char k_tag[] = "descriptor_tag";
constexpr char k_payload[] = "payload";

SView BytesOf(std::string_view bytes)
{
    return {reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()};
}

std::string HexOf(std::string_view bytes)
{
    return Hex(BytesOf(bytes));
}

void PutHex(TJson& json, const char* key, std::string_view bytes)
{
    PutText(json, key, HexOf(bytes));
}

/// A list with one object for each entry, which `fill(entry, object)` fills.
template <class TList, class TFill>
void PutObjects(TJson& json, const char* key, const TList& list, TFill fill)
{
    PutEach(json, key, list, [&](const auto& entry) {
        TJson object = TJson::object();
        fill(entry, object);
        return object;
    });
}

/// The assets of a descriptor, each with its id.
template <class TDescriptor, void (*TPut)(const typename TDescriptor::SAsset& asset, TJson& entry)>
void PutAssets(TJson& json, const CMMTDesc& descriptor)
{
    PutObjects(json, "assets", static_cast<const TDescriptor&>(descriptor).Assets(),
               [](const auto& asset, TJson& entry) {
                   entry["asset_id"] = AssetIdText(asset.assetId);
                   TPut(asset, entry);
               });
}

void PutClock(TJson& json, const CMMTDescCri& clock)
{
    json["clock_relation_id"] = clock.ClockRelationId();
    json["STC_sample"] = clock.STCSample();
    json["NTP_timestamp_sample"] = clock.NTPTimestampSample();
}

void PutTimestamps(TJson& json, const CMMTDescMpuTimestamp& descriptor)
{
    PutObjects(json, "timestamps", descriptor.Timestamps(),
               [](const CMMTDescMpuTimestamp::STimestamp& timestamp, TJson& entry) {
                   entry["mpu_sequence_number"] = timestamp.mpuSequenceNumber;
                   entry["mpu_presentation_time"] = NtpText(timestamp.presentationTime);
               });
}

void PutDependency(const CMMTDescDependency::SAsset& asset, TJson& json)
{
    json["asset_id_scheme"] = FourCcText(BytesOf(asset.scheme));
}

void PutSecurity(TJson& json, const CMMTDescSi& descriptor)
{
    PutObjects(json, "systems", descriptor.Systems(), [](const CMMTDescSi::SSystem& system, TJson& entry) {
        entry["system_id"] = HexOf(system.systemId);
        for (const std::string_view key : system.keyIds) {
            Append(entry, "key_ids", HexOf(key));
        }
        PutHex(entry, "data", system.data);
    });
}

void PutProfile(TJson& json, const CMMTDescVsp::SProfile& profile)
{
    json["profile_space"] = profile.profileSpace;
    json["tier_flag"] = profile.tierFlag;
    json["profile_idc"] = profile.profileIdc;
    json["profile_compatibility_flags"] = profile.compatibilityFlags;
    json["progressive_source_flag"] = profile.progressiveSourceFlag;
    json["interlaced_source_flag"] = profile.interlacedSourceFlag;
    json["non_packed_constraint_flag"] = profile.nonPackedConstraintFlag;
    json["frame_only_constraint_flag"] = profile.frameOnlyConstraintFlag;
    json["constraint_flags"] = profile.constraintFlags;
}

void PutLevels(const CMMTDescVsp::SAsset& asset, TJson& json)
{
    if (!asset.profileTierLevel) {
        return;
    }
    TJson& levels = json["profile_tier_level"];
    PutProfile(levels, asset.profileTierLevel->profile);
    levels["level_idc"] = asset.profileTierLevel->levelIdc;
    PutObjects(levels, "sub_layers", asset.profileTierLevel->subLayers,
               [](const CMMTDescVsp::SSubLayer& layer, TJson& entry) {
                   if (layer.profile) {
                       PutProfile(entry, *layer.profile);
                   }
                   PutValue(entry, "level_idc", layer.levelIdc);
               });
}

void PutVideo(const CMMTDescVsp::SAsset& asset, TJson& json)
{
    json["codec_code"] = std::string(asset.codecCode);
    if (asset.temporalScalability) {
        const CMMTDescVsp::STemporalScalability& layers = *asset.temporalScalability;
        json["max_sub_layers_instream"] = layers.maxSubLayersInstream;
        json["tid_max"] = layers.tidMax;
        json["tid_min"] = layers.tidMin;
        PutValue(json, "tfweight", layers.tfweight);
    }
    PutValue(json, "asset_layer_id", asset.assetLayerId);
    if (asset.multiview) {
        json["multiview"] = {{"view_nuh_layer_id", asset.multiview->viewNuhLayerId},
                             {"view_pos", asset.multiview->viewPos},
                             {"min_disp_with_offset", asset.multiview->minDispWithOffset},
                             {"max_disp_range", asset.multiview->maxDispRange}};
    }
    if (asset.resolution) {
        const CMMTDescVsp::SResolution& resolution = *asset.resolution;
        json["width"] = resolution.width;
        json["height"] = resolution.height;
        json["chroma_format_idc"] = resolution.chromaFormatIdc;
        PutValue(json, "separate_colour_plane_flag", resolution.separateColourPlaneFlag);
        json["video_still_present"] = resolution.videoStillPresent;
        json["video_24hr_pic_present"] = resolution.video24hrPicPresent;
        json["bit_depth_luma_minus8"] = resolution.bitDepthLumaMinus8;
        json["bit_depth_chroma_minus8"] = resolution.bitDepthChromaMinus8;
    }
    PutObjects(json, "picture_rates", asset.pictureRates, [](const CMMTDescVsp::SPictureRate& rate, TJson& entry) {
        entry["picture_rate_code"] = rate.code;
        PutValue(entry, "average_picture_rate", rate.average);
    });
    PutObjects(json, "bit_rates", asset.bitRates, [](const CMMTDescVsp::SBitRate& rate, TJson& entry) {
        entry["average_bitrate"] = rate.average;
        entry["maximum_bitrate"] = rate.maximum;
    });
    if (asset.colour) {
        const CMMTDescVsp::SColour& colour = *asset.colour;
        json["colour_primaries"] = colour.colourPrimaries;
        json["transfer_characteristics"] = colour.transferCharacteristics;
        json["matrix_coeffs"] = colour.matrixCoeffs;
        PutValue(json, "cg_compatibility", colour.cgCompatibility);
        PutHex(json, "eotf_info", colour.eotfInfo);
    }
    PutLevels(asset, json);
}

void PutPresentation(const CMMTDescAsp::SPresentation& presentation, TJson& json)
{
    json["presentation_id"] = presentation.id;
    json["interactivity_enabled"] = presentation.interactivityEnabled;
    PutValue(json, "profile_level_indication", presentation.profileLevelIndication);
    PutValue(json, "audio_channel_config", presentation.audioChannelConfig);
    PutValue(json, "audio_rendering_indication", presentation.audioRenderingIndication);
    for (const std::string_view language : presentation.languages) {
        Append(json, "languages", std::string(language));
    }
    for (const unsigned accessibility : presentation.accessibility) {
        Append(json, "accessibility", accessibility);
    }
    PutValue(json, "role", presentation.role);
    PutText(json, "label", std::string(presentation.label));
    for (const unsigned id : presentation.auxStreamIds) {
        Append(json, "presentation_aux_streams", id);
    }
}

void PutTime(TJson& json, const char* key, const std::optional<CMMTDescAsp::STime>& time)
{
    if (time) {
        json[key] = {{"seconds", time->seconds}, {"milliseconds", time->milliseconds}};
    }
}

void PutAudio(const CMMTDescAsp::SAsset& asset, TJson& json)
{
    json["codec_code"] = std::string(asset.codecCode);
    PutObjects(json, "presentations", asset.presentations, PutPresentation);
    if (asset.multiStream) {
        json["this_is_main_stream"] = asset.multiStream->thisIsMainStream;
        json["this_stream_id"] = asset.multiStream->thisStreamId;
        json["bundle_id"] = asset.multiStream->bundleId;
        PutObjects(json, "auxiliary_streams", asset.multiStream->auxiliaryStreams,
                   [](const CMMTDescAsp::SAuxiliaryStream& stream, TJson& entry) {
                       entry["delivery_method"] = stream.deliveryMethod;
                       entry["auxiliary_stream_id"] = stream.auxiliaryStreamId;
                   });
    }
    PutTime(json, "emergency_start", asset.emergencyStart);
    PutTime(json, "emergency_end", asset.emergencyEnd);
}

void PutCaption(const CMMTDescCaption::SAsset& asset, TJson& json)
{
    json["language"] = std::string(asset.language);
    PutValue(json, "role", asset.role);
    PutValue(json, "aspect_ratio", asset.aspectRatio);
    PutValue(json, "easy_reader", asset.easyReader);
    PutValue(json, "profile", asset.profile);
    PutValue(json, "3d_support", asset.support3d);
}

void PutProtection(const CMMTDescSp::SAsset& asset, TJson& json)
{
    PutText(json, "scheme_code", std::string(asset.schemeCode));
    PutHex(json, "default_key_id", asset.defaultKeyId);
    PutObjects(json, "systems", asset.systems, [](const CMMTDescSp::SSystem& system, TJson& entry) {
        entry["system_id"] = HexOf(system.systemId);
        PutHex(entry, "data", system.data);
    });
    PutObjects(json, "licence_servers", asset.licenseUrls, [](const CMMTDescSp::SLicenseUrl& server, TJson& entry) {
        entry["type"] = server.type;
        entry["url"] = std::string(server.url);
    });
}

void PutDelay(TJson& json, const CMMTDescLowDelay& descriptor)
{
    PutLowDelay(json, descriptor.Fields());
}

template <class TDescriptor, auto TPut>
void Put(TJson& json, const CMMTDesc& descriptor)
{
    TPut(json, static_cast<const TDescriptor&>(descriptor));
}

struct SDescriptorKind {
    unsigned tag;
    const char* name;
    void (*put)(TJson& json, const CMMTDesc& descriptor);
};

constexpr SDescriptorKind k_descriptors[] = {
    {CMMTDescCri::k_tag, "clock relation", Put<CMMTDescCri, PutClock>},
    {CMMTDescMpuTimestamp::k_tag, "MPU timestamp", Put<CMMTDescMpuTimestamp, PutTimestamps>},
    {CMMTDescDependency::k_tag, "dependency", PutAssets<CMMTDescDependency, PutDependency>},
    {CMMTDescSi::k_tag, "security information", Put<CMMTDescSi, PutSecurity>},
    {CMMTDescVsp::k_tag, "video stream properties", PutAssets<CMMTDescVsp, PutVideo>},
    {CMMTDescCaption::k_tag, "caption assets", PutAssets<CMMTDescCaption, PutCaption>},
    {CMMTDescAsp::k_tag, "audio stream properties", PutAssets<CMMTDescAsp, PutAudio>},
    {CMMTDescSp::k_tag, "security properties", PutAssets<CMMTDescSp, PutProtection>},
    {CMMTDescSp::k_licenseUrlTag, "licence servers", PutAssets<CMMTDescSp, PutProtection>},
    {CMMTDescLowDelay::k_tag, "low delay", Put<CMMTDescLowDelay, PutDelay>},
};

/// Null: no class of the library has the tag.
const SDescriptorKind* Find(unsigned tag)
{
    const auto* kind = std::find_if(std::begin(k_descriptors), std::end(k_descriptors),
                                    [tag](const SDescriptorKind& each) { return each.tag == tag; });
    return kind != std::end(k_descriptors) ? kind : nullptr;
}

}  // namespace

TJson DescriptorJson(const CMMTDesc& descriptor)
{
    TJson json = TJson::object();
    const SDescriptorKind* kind = Find(descriptor.Tag());
    PutNamed(json, k_tag, descriptor.Tag(), kind ? kind->name : nullptr);
    if (kind) {
        kind->put(json, descriptor);
    }
    // Where the fields are in doubt, the bytes are not.
    if (const auto* payload = dynamic_cast<const CMMTDescPayload*>(&descriptor)) {
        json[k_payload] = Hex({payload->RawData(), payload->RawLength()});
    }
    return json;
}

std::string DescriptorText(const std::string& indent, const TJson& descriptor)
{
    const unsigned tag = descriptor[k_tag];
    const SDescriptorKind* kind = Find(tag);
    TJson fields = TJson::object();
    for (const auto& [key, value] : descriptor.items()) {
        if (key.rfind(k_tag, 0) != 0 && key != k_payload) {
            fields[key] = value;
        }
    }
    return indent + "descriptor " + (kind ? std::string(kind->name) + ' ' : "") + '(' + std::to_string(tag) +
           "): " + FieldsText(fields) + '\n';
}

}  // namespace vyr::inspect
