#include "entries/Entries.h"
#include "lls/LLSSMTParser.h"
#include "lls/ParseAEAT.h"
#include "lls/ParseCDT.h"
#include "lls/ParseOnscreenNoti.h"
#include "lls/ParseRRT.h"
#include "lls/ParseSLT.h"
#include "lls/ParseSystemTime.h"

namespace {

/// The parser of services with the map that they are for.
struct SSlt {
    bool Create()
    {
        const CChannelMap::SCallback callback = {nullptr, [](void*, void*) {}};
        const bool created = map.Create() && slt.Create(&map, nullptr);
        if (created && map.SetCallback(&callback) && slt.AddLLSGroupId(1)) {
            slt.SetLenient(true);
            return true;
        }
        if (created) {
            slt.Destroy();
        }
        map.Destroy();
        return false;
    }
    operator IParse&() { return slt; }
    void Destroy()
    {
        slt.Destroy();
        map.Destroy();
    }

    CChannelMap map;
    CParseSLT slt;
};

/// Copies out what is long; false: memory was out.
template <class T>
bool CopyOut(const T& /*parser*/)
{
    return true;
}

template <>
bool CopyOut(const CParseCDT& cdt)
{
    std::string current, next, cms, text;
    long from = 0, until = 0;
    std::list<std::string> certificates, responses;
    return cdt.GetCurrentCert(current) && cdt.GetCertReplacement(next, from, until) && cdt.GetCMSSignedData(cms) &&
           cdt.GetToBeSignedData(text) && cdt.GetCertificates(certificates) && cdt.GetOCSPResponse(responses);
}

/// A parser of tables, whose Parse says true of every new header.
template <class T>
SEntryKind TableKind(const std::string& seed, std::string (*digest)(const T&),
                     bool (*create)(T&, const TBytes&) = CreatePlainly<T>)
{
    const auto parse = [](T& parser, TBytes& bytes) {
        if (bytes.size() > 3) {
            ++bytes[3];
        }
        return FeedItem(parser, bytes) && CopyOut(parser);
    };
    return EntryKind<T>(seed, 1, create, parse, digest, true);
}

std::string Digest(const SSlt& slt)
{
    std::string text;
    slt.slt.GetSltCapability(text);
    return Services(slt.map) + text + "\n" + std::to_string(slt.slt.Bsid());
}

std::string Digest(const CParseRRT& rrt)
{
    std::string text;
    rrt.GetRatingValueString(rrt.numOfRatingRegionTable() - 1, 0, 0, text);
    return text;
}

std::string Digest(const CParseAEAT& aeat)
{
    const SParseAEAT::SAEAInfo* alert = aeat.GetAEA(aeat.AEACount() - 1);
    return alert && !alert->eventDescs.empty() && !alert->media.empty()
               ? alert->aeaId + alert->eventDescs.back().text + alert->media.back().mediaDesc
               : "";
}

std::string Digest(const CParseCDT& cdt)
{
    std::string text, cms;
    std::list<std::string> certificates;
    cdt.GetToBeSignedData(text);
    cdt.GetCMSSignedData(cms);
    cdt.GetCertificates(certificates);
    return text + cms + std::to_string(certificates.size());
}

std::string Digest(const CParseOnscreenNoti& noti)
{
    return noti.KSCCount() ? noti.GetKSC(noti.KSCCount() - 1)->notificationDuration : "";
}

std::string Digest(const CParseSystemTime& time)
{
    return std::to_string(time.CurrUtcOffset());
}

std::string Digest(const CLLSSMTParser& parser)
{
    unsigned int length = 0, signature = 0;
    parser.GetSignedBlockLength(length);
    parser.GetSignatureLength(signature);
    return std::to_string(length) + " " + std::to_string(signature);
}

}  // namespace

TEntryKinds LlsEntries()
{
    return {
        TableKind<SSlt>("lls_slt/strict-gzip", Digest),
        TableKind<SSlt>("lls_slt/lenient-plain", Digest),
        TableKind<CParseSystemTime>("lls_tables/system-time", Digest,
                                    [](CParseSystemTime& time, const TBytes&) { return time.Create(1); }),
        TableKind<CParseRRT>("lls_tables/rrt", Digest),
        TableKind<CParseAEAT>("lls_tables/aeat", Digest,
                              [](CParseAEAT& aeat, const TBytes&) { return aeat.Create(nullptr); }),
        TableKind<CParseCDT>("lls_tables/cdt", Digest),
        TableKind<CParseOnscreenNoti>("lls_tables/onscreen", Digest),
        EntryKind<CLLSSMTParser>(
            "lls_tables/signed-multi-table", 1, CreatePlainly<CLLSSMTParser>,
            [](CLLSSMTParser& parser, TBytes& bytes) { return FeedItem(parser, bytes) && parser.PayloadCount() > 0; },
            Digest),
    };
}
