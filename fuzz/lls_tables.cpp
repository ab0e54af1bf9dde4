// Every LLS table but the SLT: the first byte picks the parser, and what follows are up to eight tables
// in a row on it, each looked at through every getter.
// Sources: src/lls/LLSSMTParser.cpp src/lls/ParseA*.cpp src/lls/ParseC*.cpp src/lls/ParseLLS.cpp src/lls/ParseO*.cpp
// Sources: src/lls/ParseR*.cpp src/lls/ParseSystemTime.cpp src/lls/*.h
#include <list>
#include <string>

#include "Fuzz.h"
#include "Mutate.h"
#include "lls/LLSSMTParser.h"
#include "lls/ParseAEAT.h"
#include "lls/ParseCDT.h"
#include "lls/ParseOnscreenNoti.h"
#include "lls/ParseRRT.h"
#include "lls/ParseSystemTime.h"
#include "platform/Platform.h"

namespace {

/// Of a class whose getters promise nothing in particular.
template <class TTable>
void Read(const TTable& /*parser*/)
{
}

void Read(const CParseSystemTime& time)
{
    const CParseSystemTime::SSystemTime& t = *time.State();
    Require(t.dsDayOfMonth >= 0 && t.dsDayOfMonth <= 31 && t.dsHour >= 0 && t.dsHour <= 24);
    Require(time.CurrUtcOffset() == t.currentUtcOffset && time.UtcLocalOffset() == t.utcLocalOffset);
}

void Read(const CParseRRT& rrt)
{
    unsigned int number = 0;
    bool flag = false;
    std::string text;
    for (unsigned int r = 0; r < rrt.numOfRatingRegionTable(); ++r) {
        Require(rrt.GetRegionIdentifier(r, number) && rrt.GetRegionIdText(r, text));
        for (unsigned int d = 0; d < rrt.numOfDimension(r); ++d) {
            Require(rrt.GetDimensionLevels(r, d, number) && rrt.GetDimensionGraduated(r, d, flag) &&
                    rrt.GetDimensionTitle(r, d, text));
            for (unsigned int k = 0; k < rrt.numOfRating(r, d); ++k) {
                Require(rrt.GetRatingValue(r, d, k, number) && rrt.GetRatingValueAbbrev(r, d, k, text) &&
                        rrt.GetRatingValueString(r, d, k, text));
            }
            Require(!rrt.GetRatingValue(r, d, rrt.numOfRating(r, d), number));
        }
    }
}

void Read(const CParseAEAT& aeat)
{
    std::string a, b;
    EAEAAudience audience{};
    EAEAType type{};
    for (int i = 0; i < aeat.AEACount(); ++i) {
        Require(aeat.GetAEAId(i, a, b) && aeat.GetAEAIssuer(i, a) && aeat.GetAEAAudience(i, audience) &&
                aeat.GetAEAType(i, type) && aeat.GetAEATimeInfo(i, a, b) && aeat.GetAEAEventCode(i, a, b));
        Require(audience >= 0 && audience <= 3 && type >= 0 && type <= 3);
        for (const SParseAEAT::SMedia& media : aeat.GetAEA(i)->media) {
            Require(media.mediaType.empty());
        }
    }
    Require(!aeat.GetAEA(aeat.AEACount()));
}

void Read(const CParseOnscreenNoti& noti)
{
    for (unsigned int i = 0; i < noti.KSCCount(); ++i) {
        Require(noti.GetKSC(i)->bsid == noti.Bsid(i) && noti.GetKSC(i)->serviceId == noti.ServiceId(i));
    }
}

void Read(const CParseCDT& cdt)
{
    std::string text;
    std::list<std::string> list;
    long from = 0;
    long until = 0;
    int refresh = 0;
    Require(cdt.GetCurrentCert(text) && cdt.GetCertReplacement(text, from, until) && cdt.GetOCSPRefresh(refresh) &&
            cdt.GetCMSSignedData(text) && cdt.GetCertificates(list) && cdt.GetOCSPResponse(list));
    Require(cdt.GetToBeSignedData(text) && (text.empty() || (text.front() == '<' && text.back() == '>')));
}

void Read(const CLLSSMTParser& smt)
{
    unsigned int length = 0;
    unsigned int id = 0;
    for (int i = 0; i < smt.PayloadCount() && smt.GetPayloadLength(i, length); ++i) {
        std::vector<unsigned char> payload(length);
        Require(smt.GetPayload(i, id, payload.data()));
    }
    Require(smt.GetSignatureLength(length));
    std::vector<unsigned char> bytes(length);
    smt.GetSignatureData(bytes.data());
    Require(smt.GetSignedBlockLength(length));
    bytes.resize(length);
    smt.GetSignedBlock(bytes.data());
}

void Create(CParseSystemTime& time)
{
    time.Create(1);
}

void Create(CParseAEAT& aeat)
{
    aeat.Create(nullptr);
}

template <class TTable>
void Create(TTable& parser)
{
    parser.Create();
}

/// SetReplace, where the class has it.
template <class TTable>
auto Replace(TTable* parser, bool replace) -> decltype(parser->SetReplace(replace))
{
    parser->SetReplace(replace);
}

void Replace(void* /*parser*/, bool /*replace*/) {}

template <class TTable>
void Run(const std::vector<unsigned char>& all, bool replace)
{
    TTable parser;
    Create(parser);
    Replace(&parser, replace);
    ForEachPart(all, 8, [&parser](const std::vector<unsigned char>& table) {
        const unsigned int size = static_cast<unsigned int>(table.size());
        IParse::SItem item = {table.data(), size, size * 8, 0, true};
        parser.Parse(&item);
        Read(parser);
    });
    parser.Destroy();
}

template <class... TTables>
void RunOne(std::uint8_t first, const std::vector<unsigned char>& tables)
{
    std::size_t skip = first % sizeof...(TTables);
    ((skip-- == 0 ? Run<TTables>(tables, first >= 128) : void()), ...);
}

}  // namespace

VYR_MUTATOR(MutateXml)

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    SetLogPriority(LOG_PRIORITY_SILENT);
    CScript script(data, size);
    const std::uint8_t first = script.Byte();
    RunOne<CParseSystemTime, CParseRRT, CParseAEAT, CParseOnscreenNoti, CParseCDT, CLLSSMTParser>(first, script.Rest());
    return 0;
}
