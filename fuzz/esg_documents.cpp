// Documents of the service guide: the first byte picks the parser, and what follows are up to four
// documents in a row on it.
// Sources: src/esg/ESGElement src/esg/ESGC*.cpp src/esg/ESGF*Base.cpp src/esg/ESGKind.h src/esg/ESGS*.cpp
// Sources: src/esg/GenreNameParse.cpp src/esg/SGDDParse.cpp src/esg/SGResponse.cpp
#include "Fuzz.h"
#include "Mutate.h"
#include "esg/ESGContentFragment.h"
#include "esg/ESGScheduleFragment.h"
#include "esg/ESGServiceFragment.h"
#include "esg/GenreNameParse.h"
#include "esg/SGResponse.h"
#include "platform/Platform.h"

namespace {

void Read(const SESGFragment& fragment, bool parsed)
{
    Require(!parsed || fragment.id);  // a failed parse leaves the last one
}

void Read(const CESGServiceFragment& service, bool parsed)
{
    Read(*service.State(), parsed);
    for (const auto& name : service.State()->names) {
        const auto& state = *name->State();
        Require(state.content &&
                (!*state.content.get() || (state.speechInfos.empty() && state.speechInfoURIs.empty())));
    }
    for (const auto& genre : service.State()->genres) {
        Require(!genre->State()->name || *genre->State()->content.get());
    }
}

void Read(const CESGContentFragment& content, bool parsed)
{
    Read(*content.State(), parsed);
    if (content.State()->contentExt) {
        for (const auto& preview : content.State()->contentExt->State()->previews) {
            Require(preview->State() != nullptr);
        }
    }
}

void Read(const CESGScheduleFragment& schedule, bool parsed)
{
    Read(*schedule.State(), parsed);
    for (const auto& reference : schedule.State()->contentRefs) {
        for (const auto& window : reference->State()->presentationWindows) {
            Require(window->State() != nullptr);
        }
    }
}

void Read(const CSGDDParse& sgdd, bool /*parsed*/)
{
    for (const auto& entry : sgdd.State()->descriptorEntries) {
        for (const auto& unit : entry->State()->deliveryUnits) {
            Require(unit->State() != nullptr);
        }
    }
}

void Read(const CSGResponse& response, bool /*parsed*/)
{
    for (const auto& version : response.State()->supportedVersions) {
        Require(version && *version.get() != 0);
    }
    for (const auto& descriptor : response.State()->descriptors) {
        Read(*descriptor, true);
    }
}

void Read(const CGenreNameParse& /*names*/, bool parsed)
{
    Require(parsed || SGenreNameParse::refMap.empty());
    for (const auto& entry : SGenreNameParse::refMap) {
        Require(entry.second != nullptr);
    }
}

template <class TParser>
void Run(const std::vector<unsigned char>& all)
{
    TParser parser;
    parser.Create();
    ForEachPart(all, 4, [&parser](const std::vector<unsigned char>& document) {
        const bool parsed =
            parser.Parse(reinterpret_cast<const char*>(document.data()), static_cast<unsigned int>(document.size()));
        Read(parser, parsed);
    });
    parser.Destroy();
}

}  // namespace

VYR_MUTATOR(MutateXml)

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    SetLogPriority(LOG_PRIORITY_SILENT);
    SetFileRoot("/nowhere");
    SGenreNameParse::refMap.clear();
    CScript script(data, size);
    const std::uint8_t kind = script.Byte() % 6;
    const std::vector<unsigned char> documents = script.Rest();
    switch (kind) {
        case 0:
            Run<CESGServiceFragment>(documents);
            break;
        case 1:
            Run<CESGContentFragment>(documents);
            break;
        case 2:
            Run<CESGScheduleFragment>(documents);
            break;
        case 3:
            Run<CSGDDParse>(documents);
            break;
        case 4:
            Run<CSGResponse>(documents);
            break;
        default:
            Run<CGenreNameParse>(documents);
            break;
    }
    return 0;
}
