#include "mmt/desc/MMTDescAsp.h"

#include "common/BitReader.h"
#include "platform/Log.h"

namespace {

void ParseBytes(vyr::CBitReader& reader, unsigned int count, std::vector<unsigned char>& bytes)
{
    reader.Entries(count, bytes, [&](unsigned char& byte) { reader.Field(8, byte); });
}

void ParseTime(vyr::CBitReader& reader, std::optional<CMMTDescAsp::STime>& time)
{
    CMMTDescAsp::STime read{};
    read.seconds = reader.Value(32);
    reader.Value(6);
    reader.Field(10, read.milliseconds);
    if (reader.Valid()) {
        time = read;
    }
}

void ParsePresentation(vyr::CBitReader& reader, bool multiStreamInfoPresent, CMMTDescAsp::SPresentation& presentation)
{
    presentation.interactivityEnabled = reader.Flag();
    const bool profileChannelConfigPresent = reader.Flag();
    const bool profileLong = reader.Flag();
    const bool channelConfigLong = reader.Flag();
    const bool audioRenderingInfoPresent = reader.Flag();
    const bool languagePresent = reader.Flag();
    const bool accessibilityRolePresent = reader.Flag();
    const bool labelPresent = reader.Flag();
    if (profileChannelConfigPresent) {
        reader.Field(profileLong ? 24 : 8, presentation.profileLevelIndication);
        reader.Field(channelConfigLong ? 24 : 8, presentation.audioChannelConfig);
    }
    if (audioRenderingInfoPresent) {
        reader.Field(8, presentation.audioRenderingIndication);
    }
    unsigned int numLanguages = 0;
    if (languagePresent) {
        numLanguages = reader.Value(8) + 1;
        reader.Entries(numLanguages, presentation.languages,
                       [&](std::string_view& language) { language = reader.CountedView(8); });
    }
    if (accessibilityRolePresent) {
        ParseBytes(reader, numLanguages, presentation.accessibility);
        reader.Field(8, presentation.role);
    }
    if (labelPresent) {
        presentation.label = reader.CountedView(8);
    }
    if (multiStreamInfoPresent) {
        const unsigned int numPresentationAuxStreams = reader.Value(8);
        ParseBytes(reader, numPresentationAuxStreams, presentation.auxStreamIds);
    }
}

void ParseMultiStream(vyr::CBitReader& reader, CMMTDescAsp::SAsset& asset)
{
    CMMTDescAsp::SMultiStream stream{};
    stream.thisIsMainStream = reader.Flag();
    reader.Field(7, stream.thisStreamId);
    reader.Value(1);
    reader.Field(7, stream.bundleId);
    if (!reader.Valid()) {
        return;
    }
    if (stream.thisIsMainStream) {
        reader.Value(1);
        const unsigned int numAuxiliaryStreams = reader.Value(7);
        reader.Entries(numAuxiliaryStreams, stream.auxiliaryStreams, [&](CMMTDescAsp::SAuxiliaryStream& auxiliary) {
            auxiliary.deliveryMethod = reader.Flag();
            reader.Field(7, auxiliary.auxiliaryStreamId);
        });
    }
    asset.multiStream = std::move(stream);
}

void ParseAsset(vyr::CBitReader& reader, CMMTDescAsp::SAsset& asset)
{
    asset.codecCode = reader.View(4);
    const unsigned int numPresentations = reader.Value(8);
    const bool multiStreamInfoPresent = reader.Flag();
    const bool emergencyInfoTimePresent = reader.Flag();
    reader.Value(6);
    reader.Entries(
        numPresentations, asset.presentations,
        [&](CMMTDescAsp::SPresentation& presentation) { reader.Field(8, presentation.id); },
        [&](CMMTDescAsp::SPresentation& presentation) {
            ParsePresentation(reader, multiStreamInfoPresent, presentation);
        });
    if (multiStreamInfoPresent) {
        ParseMultiStream(reader, asset);
    }
    if (emergencyInfoTimePresent) {
        const bool startPresent = reader.Flag();
        const bool endPresent = reader.Flag();
        reader.Value(6);
        if (startPresent) {
            ParseTime(reader, asset.emergencyStart);
        }
        if (endPresent) {
            ParseTime(reader, asset.emergencyEnd);
        }
    }
}

}  // namespace

void CMMTDescAsp::t_ParsePayload(vyr::CBitReader& reader)
{
    reader.Assets(m_assets, [&](SAsset& asset) { ParseAsset(reader, asset); });
}

void CMMTDescAsp::Dump() const
{
    if (!vyr::LogEnabled(LOG_PRIORITY_DEBUG)) {
        return;
    }
    VYR_DUMP("******ASP Descriptor******");
    CMMTDesc::Dump();
    for (const SAsset& asset : m_assets) {
        VYR_DUMP("asset id[%.*s] codec[%.*s]", static_cast<int>(asset.assetId.size()), asset.assetId.data(),
                 static_cast<int>(asset.codecCode.size()), asset.codecCode.data());
        for (const SPresentation& presentation : asset.presentations) {
            VYR_DUMP("presentation[%u] channel config[%u] languages[%zu] label[%.*s]", presentation.id,
                     presentation.audioChannelConfig.value_or(0), presentation.languages.size(),
                     static_cast<int>(presentation.label.size()), presentation.label.data());
        }
        if (asset.multiStream) {
            VYR_DUMP("stream[%u] bundle[%u]", asset.multiStream->thisStreamId, asset.multiStream->bundleId);
        }
    }
}
