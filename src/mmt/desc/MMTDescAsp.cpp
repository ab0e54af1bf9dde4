#include "mmt/desc/MMTDescAsp.h"

#include "common/Log.h"

namespace {

/// For lists whose entries are read whole at once.
template <class T>
void Nothing(T& /*entry*/)
{
}

}  // namespace

CMMTDescAsp::CMMTDescAsp() : CMMTDescPayload("CMMTDescAsp", 9) {}

void CMMTDescAsp::t_ParsePayload(SItem* payload)
{
    t_Assets(payload, m_assets, [&](SAsset& asset) { m_ParseAsset(payload, asset); });
}

void CMMTDescAsp::m_ParseAsset(SItem* payload, SAsset& asset)
{
    asset.codecCode = t_View(payload, 4);
    const unsigned int numPresentations = t_Value(payload, 8);
    const bool multiStreamInfoPresent = t_Flag(payload);
    const bool emergencyInfoTimePresent = t_Flag(payload);
    t_Value(payload, 6);
    t_Entries(
        payload, numPresentations, asset.presentations,
        [&](SPresentation& presentation) { presentation.id = static_cast<unsigned char>(t_Value(payload, 8)); },
        [&](SPresentation& presentation) { m_ParsePresentation(payload, multiStreamInfoPresent, presentation); });
    if (multiStreamInfoPresent) {
        m_ParseMultiStream(payload, asset);
    }
    if (emergencyInfoTimePresent) {
        const bool startPresent = t_Flag(payload);
        const bool endPresent = t_Flag(payload);
        t_Value(payload, 6);
        if (startPresent) {
            m_ParseTime(payload, asset.emergencyStart);
        }
        if (endPresent) {
            m_ParseTime(payload, asset.emergencyEnd);
        }
    }
}

void CMMTDescAsp::m_ParsePresentation(SItem* payload, bool multiStreamInfoPresent, SPresentation& presentation)
{
    presentation.interactivityEnabled = t_Flag(payload);
    const bool profileChannelConfigPresent = t_Flag(payload);
    const bool profileLong = t_Flag(payload);
    const bool channelConfigLong = t_Flag(payload);
    const bool audioRenderingInfoPresent = t_Flag(payload);
    const bool languagePresent = t_Flag(payload);
    const bool accessibilityRolePresent = t_Flag(payload);
    const bool labelPresent = t_Flag(payload);
    if (profileChannelConfigPresent) {
        t_Field(payload, profileLong ? 24 : 8, presentation.profileLevelIndication);
        t_Field(payload, channelConfigLong ? 24 : 8, presentation.audioChannelConfig);
    }
    if (audioRenderingInfoPresent) {
        t_Field(payload, 8, presentation.audioRenderingIndication);
    }
    unsigned int numLanguages = 0;
    if (languagePresent) {
        numLanguages = t_Value(payload, 8) + 1;
        t_Entries(
            payload, numLanguages, presentation.languages,
            [&](std::string_view& language) { language = t_CountedView(payload, 8); }, Nothing<std::string_view>);
    }
    if (accessibilityRolePresent) {
        m_ParseBytes(payload, numLanguages, presentation.accessibility);
        t_Field(payload, 8, presentation.role);
    }
    if (labelPresent) {
        presentation.label = t_CountedView(payload, 8);
    }
    if (multiStreamInfoPresent) {
        const unsigned int numPresentationAuxStreams = t_Value(payload, 8);
        m_ParseBytes(payload, numPresentationAuxStreams, presentation.auxStreamIds);
    }
}

void CMMTDescAsp::m_ParseMultiStream(SItem* payload, SAsset& asset)
{
    SMultiStream stream{};
    stream.thisIsMainStream = t_Flag(payload);
    stream.thisStreamId = static_cast<unsigned char>(t_Value(payload, 7));
    t_Value(payload, 1);
    stream.bundleId = static_cast<unsigned char>(t_Value(payload, 7));
    if (!payload->valid) {
        return;
    }
    if (stream.thisIsMainStream) {
        t_Value(payload, 1);
        const unsigned int numAuxiliaryStreams = t_Value(payload, 7);
        t_Entries(
            payload, numAuxiliaryStreams, stream.auxiliaryStreams,
            [&](SAuxiliaryStream& auxiliary) {
                auxiliary.deliveryMethod = t_Flag(payload);
                auxiliary.auxiliaryStreamId = static_cast<unsigned char>(t_Value(payload, 7));
            },
            Nothing<SAuxiliaryStream>);
    }
    asset.multiStream = std::move(stream);
}

void CMMTDescAsp::m_ParseTime(SItem* payload, std::optional<STime>& time)
{
    STime read{};
    read.seconds = t_Value(payload, 32);
    t_Value(payload, 6);
    read.milliseconds = static_cast<unsigned short>(t_Value(payload, 10));
    if (payload->valid) {
        time = read;
    }
}

void CMMTDescAsp::m_ParseBytes(SItem* payload, unsigned int count, std::vector<unsigned char>& bytes)
{
    t_Entries(
        payload, count, bytes, [&](unsigned char& byte) { byte = static_cast<unsigned char>(t_Value(payload, 8)); },
        Nothing<unsigned char>);
}

void CMMTDescAsp::Dump() const
{
    if (!vyr::LogEnabled(LOG_PRIORITY_DEBUG)) {
        return;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "******ASP Descriptor******");
    CMMTDesc::Dump();
    for (const SAsset& asset : m_assets) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "asset id[%.*s] codec[%.*s]", static_cast<int>(asset.assetId.size()),
                asset.assetId.data(), static_cast<int>(asset.codecCode.size()), asset.codecCode.data());
        for (const SPresentation& presentation : asset.presentations) {
            VYR_LOG(LOG_PRIORITY_DEBUG, "presentation[%u] channel config[%u] languages[%zu] label[%.*s]",
                    presentation.id, presentation.audioChannelConfig.value_or(0), presentation.languages.size(),
                    static_cast<int>(presentation.label.size()), presentation.label.data());
        }
        if (asset.multiStream) {
            VYR_LOG(LOG_PRIORITY_DEBUG, "stream[%u] bundle[%u]", asset.multiStream->thisStreamId,
                    asset.multiStream->bundleId);
        }
    }
}
