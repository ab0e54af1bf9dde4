// A loop of MMT descriptors: the first two bytes are how much shorter than the input the loop's length is.
// Sources: src/mmt/desc/MMTDesc*.cpp
#include <string_view>

#include "Fuzz.h"
#include "MmtWalk.h"
#include "Mutate.h"
#include "mmt/desc/MMTDescFactory.h"
#include "mmt/desc/MMTDescs.h"

namespace {

/// Bytes of a record must lie in the descriptor's own.
void Read(const CMMTDescPayload& desc, std::string_view bytes)
{
    const char* raw = reinterpret_cast<const char*>(desc.RawData());
    Require(bytes.empty() || (bytes.data() >= raw && bytes.data() + bytes.size() <= raw + desc.RawLength()));
}

void Read(const CMMTDescMpuTimestamp& desc)
{
    Require(desc.Timestamps().size() == desc.RawLength() / 12);
}

void Read(const CMMTDescDependency& desc)
{
    for (const auto& asset : desc.Assets()) {
        Require(asset.scheme.size() == 4);
        Read(desc, asset.assetId);
    }
}

void Read(const CMMTDescSi& desc)
{
    for (const auto& system : desc.Systems()) {
        Require(system.systemId.size() == 16);
        Read(desc, system.data);
        for (const std::string_view& keyId : system.keyIds) {
            Require(keyId.size() == 16);
        }
    }
}

void Read(const CMMTDescVsp& desc)
{
    for (const auto& asset : desc.Assets()) {
        Read(desc, asset.assetId);
        Read(desc, asset.codecCode);
        Require(asset.pictureRates.size() <= 63 && asset.bitRates.size() <= 63);
        if (asset.colour) {
            Read(desc, asset.colour->eotfInfo);
        }
        Require(!asset.profileTierLevel || asset.profileTierLevel->subLayers.size() <= 6);
    }
}

void Read(const CMMTDescCaption& desc)
{
    for (const auto& asset : desc.Assets()) {
        Read(desc, asset.assetId);
        Read(desc, asset.language);
        Require(!asset.support3d || asset.role);
    }
}

void Read(const CMMTDescAsp& desc)
{
    for (const auto& asset : desc.Assets()) {
        Read(desc, asset.assetId);
        Read(desc, asset.codecCode);
        for (const auto& presentation : asset.presentations) {
            Read(desc, presentation.label);
            Require(presentation.accessibility.size() <= presentation.languages.size());
            for (const std::string_view& language : presentation.languages) {
                Read(desc, language);
            }
        }
        Require(!asset.multiStream || asset.multiStream->thisIsMainStream ||
                asset.multiStream->auxiliaryStreams.empty());
    }
}

void Read(const CMMTDescSp& desc)
{
    for (const auto& asset : desc.Assets()) {
        Read(desc, asset.assetId);
        Read(desc, asset.schemeCode);
        Read(desc, asset.defaultKeyId);
        for (const auto& system : asset.systems) {
            Read(desc, system.data);
        }
        for (const auto& license : asset.licenseUrls) {
            Read(desc, license.url);
        }
        Require(asset.systems.empty() || asset.licenseUrls.empty());
    }
}

void Read(const CMMTDescLowDelay& desc)
{
    Require(!desc.Fields().defaultSampleFlags || desc.Fields().basePresentationTimeOffset);
}

/// A look at everything in the descriptor when it is of one of those classes.
template <class... TDescs>
void ReadAny(const CMMTDesc& desc)
{
    ((dynamic_cast<const TDescs*>(&desc) ? Read(static_cast<const TDescs&>(desc)) : void()), ...);
}

void Remove(void* /*context*/, void* element)
{
    delete static_cast<CMMTDesc*>(element);
}

}  // namespace

VYR_MUTATOR(MutateBinary)

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    SetLogging(true);
    CScript script(data, size);
    const std::uint32_t shorter = script.Word();
    const std::vector<unsigned char> bytes = script.Rest();
    if (bytes.empty()) {
        return 0;
    }
    const auto length = static_cast<std::uint32_t>(bytes.size());
    IParse::SItem item = {bytes.data(), length, length * 8, 0, true};
    CCPtrArray array(Remove, nullptr);
    const bool whole =
        CMMTDescFactory::ParseDescriptors(&item, static_cast<int>(length - std::min(shorter, length)), &array);
    Require(item.bitpos <= item.bitsize && (!whole || item.valid));
    for (int i = 0; i < array.Size(); ++i) {
        const CMMTDesc& desc = *static_cast<CMMTDesc*>(array.Data(i));
        const auto* payload = dynamic_cast<const CMMTDescPayload*>(&desc);
        Require(payload ? payload->RawData() && payload->RawLength() == payload->Length()
                        : dynamic_cast<const CMMTDescCri*>(&desc) != nullptr);
        ReadAny<CMMTDescMpuTimestamp, CMMTDescDependency, CMMTDescSi, CMMTDescVsp, CMMTDescCaption, CMMTDescAsp,
                CMMTDescSp, CMMTDescLowDelay>(desc);
        desc.Dump();
    }
    return 0;
}
