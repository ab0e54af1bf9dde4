// Up to four MMT user service bundle descriptions in a row on one parser, compressed or not.
// Sources: src/mmt/desc/MMTUsbd.cpp src/common/Usbd.cpp
#include <cstring>
#include <string>

#include "Fuzz.h"
#include "Mutate.h"
#include "mmt/desc/MMTChannel.h"
#include "mmt/desc/MMTContentAdvisoryRatings.h"
#include "mmt/desc/MMTMpuComponent.h"
#include "mmt/desc/MMTName.h"
#include "mmt/desc/MMTUsbd.h"
#include "platform/BaseParser.h"
#include "platform/Platform.h"

/// Only a component without its protected flag may be asserted.
void _TCParserAssert(const char* expression, const char* /*file*/, unsigned /*line*/)
{
    Require(std::strcmp(expression, "tempComponentProtectedFlag != nullptr") == 0);
}

namespace {

void Read(const CMMTUsbd& usbd)
{
    const CMMTUsbd::SMMTUsbd& state = *usbd.State();
    std::string text;
    unsigned int address = 0;
    unsigned short port = 0;
    unsigned char number = 0;
    Require(usbd.GetsTSIDUri(text) == usbd.CheckRouteComponent());
    Require(usbd.GetRouteComponentDestIp(address) == usbd.GetRouteComponentSrcIp(address));
    Require(usbd.GetRouteComponentDestPort(port) == usbd.CheckRouteComponent());
    Require(usbd.GetFullMPDUri(text) == usbd.CheckBroadbandComponent());
    for (int i = 0; i < usbd.ComponentInfoSize(); ++i) {
        Require(usbd.GetComponentType(i, number) && usbd.GetComponentRole(i, number) && usbd.GetComponentId(i, text) &&
                usbd.GetComponentName(i, text));
        usbd.ComponentProtectedFlag(i);
    }
    Require(!usbd.GetComponentId(usbd.ComponentInfoSize(), text));
    for (int i = 0; i < usbd.LanguageSize(); ++i) {
        char* language = nullptr;
        Require(usbd.GetLanguageInfo(i, &language) && *language != 0);
    }
    for (int i = 0; i < state.names.Size(); ++i) {
        Require(static_cast<CMMTName*>(state.names.Data(i))->State() != nullptr);
    }
    Require((state.serviceLinkage == nullptr) == (usbd.LinkServiceId() == -1));
    Require(state.serviceLinkage || (usbd.ServiceCategory() == -1 && usbd.LinkageType() == -1));
    Require(!usbd.ActivationTime() || std::strlen(usbd.ActivationTime()) < 1u << 20);
    Require(!usbd.DeActivationTime() || std::strlen(usbd.DeActivationTime()) < 1u << 20);
    Require(!usbd.GlobalServiceId() || std::strlen(usbd.GlobalServiceId()) < 1u << 20);
    Require(!state.mpuComponent || state.mpuComponent->State());
    Require(!state.channel || state.channel->State());
    std::vector<std::string> ratings;
    Require(usbd.GetRatingStringTable(ratings) == (state.contentAdvisoryRatings.Size() > 0));
    Require(static_cast<int>(ratings.size()) == state.contentAdvisoryRatings.Size());
}

}  // namespace

VYR_MUTATOR(MutateXml)

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    SetLogPriority(LOG_PRIORITY_SILENT);
    CScript script(data, size);
    const bool compressed = script.Byte() % 2 != 0;
    CMMTUsbd usbd;
    usbd.Create();
    ForEachPart(script.Rest(), 4, [&usbd, compressed](const std::vector<unsigned char>& document) {
        usbd.Parse(reinterpret_cast<const char*>(document.data()), static_cast<unsigned int>(document.size()),
                   compressed);
        Read(usbd);
    });
    usbd.Destroy();
    return 0;
}
