// Growth of what an LLS table brings, and of the stores it goes to.
#include "Growth.h"

#include "common/ChannelMap.h"
#include "common/CoreOS/PtrArray.h"
#include "lls/LLSSMTParser.h"
#include "lls/ParseAEAT.h"
#include "lls/ParseCDT.h"
#include "lls/ParseOnscreenNoti.h"
#include "lls/ParseRRT.h"
#include "lls/ParseSLT.h"
#include "lls/ParseSystemTime.h"

namespace {

using namespace growth;

template <class TParser>
bool CreateLls(TParser& parser)
{
    return parser.Create();
}
bool CreateLls(CParseAEAT& parser)
{
    return parser.Create(nullptr);
}
bool CreateLls(CParseSystemTime& parser)
{
    return parser.Create(1);
}

/// A table under a header that it has not seen.
void ParseTable(TCParseLLS& parser, const std::string& input)
{
    static unsigned char version = 0;
    const std::string table = std::string("\1\1\0", 3) + static_cast<char>(++version) + input;
    IParse::SItem item = Item(table);
    parser.Parse(&item);
}

template <class TParser>
struct CLlsTarget : CTarget {
    CLlsTarget() { CreateLls(parser); }
    ~CLlsTarget() override { parser.Destroy(); }
    void Parse(const std::string& input) override { ParseTable(parser, input); }
    TParser parser;
};

template <bool TLenient>
struct CSltTarget : CTarget {
    CSltTarget()
    {
        map.Create();
        slt.Create(&map, nullptr);
        slt.SetLenient(TLenient);
    }
    ~CSltTarget() override
    {
        slt.Destroy();
        map.Destroy();
    }
    void Parse(const std::string& input) override { ParseTable(slt, input); }
    CChannelMap map;
    CParseSLT slt;
};

struct CCmsTarget : CLlsTarget<CParseCDT> {
    void Parse(const std::string& input) override
    {
        const std::string table = "\6\1\0\1" + input;
        parser.CheckCMS(reinterpret_cast<const unsigned char*>(table.data()), static_cast<int>(table.size()), xml, cms);
    }
    std::string xml;
    std::string cms;
};

std::vector<SInput> MultiTables()
{
    return {{"payloads of nothing", std::string(1, '\xFF') + std::string(255 * 4 + 2, '\0')}};
}

std::vector<SInput> SignedTexts()
{
    std::vector<SInput> inputs;
    for (const char* unit : {"<", "<CMSSignedDat", "<CMSSignedData></CMSSignedDat"}) {
        inputs.push_back({unit, Repeat(unit)});
    }
    return inputs;
}

void RegisterGrowthRows()
{
    const std::string flags = "' protected='' hidden='' broadbandAccessRequired=''";
    RegisterGrowth("slt", Make<CSltTarget<false>>, "SLT", "<Service serviceId='%" + flags + "/>");
    RegisterGrowth("slt-equal", Make<CSltTarget<false>>, "SLT", "<Service serviceId='1" + flags + "/>");
    RegisterGrowth("slt-urls", Make<CSltTarget<false>>, "SLT", "<sltInetUrl>%</sltInetUrl>");
    RegisterGrowth("aeat", Make<CLlsTarget<CParseAEAT>>, "AEAT", "<AEA aeaId='%'/>");
    RegisterGrowth("aeat-media", Make<CLlsTarget<CParseAEAT>>, "AEAT>AEA", "<Media url='%'/>");
    RegisterGrowth("rrt", Make<CLlsTarget<CParseRRT>>, "RatingRegionTables>RatingRegionTable>Dimension",
                   "<Rating ratingValue='%'/>");
    RegisterGrowth("onscreen", Make<CLlsTarget<CParseOnscreenNoti>>, "OnscreenMessageNotification",
                   "<KeepScreenClear bsid='%'/>");
    RegisterGrowth("cdt", Make<CLlsTarget<CParseCDT>>, "CertificationData>ToBeSignedData",
                   "<Certificates>%</Certificates>");
    RegisterGrowth("array", [](benchmark::State& state, int n) {
        for (auto _ : state) {
            CCPtrArray array(CCPtrArray::DummyCallback, nullptr);
            for (int i = 0; i < n; ++i) {
                array.Add(&array);
            }
        }
    });
    RegisterGrowth("map", [](benchmark::State& state, int n) {
        CChannelMap map;
        map.Create();
        std::vector<void*> services(static_cast<std::size_t>(n));
        for (auto _ : state) {
            for (int i = 0; i < n; ++i) {
                services[static_cast<std::size_t>(i)] = map.AddService(nullptr, 1, i, 1, 1, 0, 0, 0, false, nullptr);
            }
            for (void* service : services) {
                map.RemoveService(service);
            }
        }
        map.Destroy();
    });
}

const bool g_registered = [] {
    RegisterGrowthRows();
    RegisterAttack("slt", Make<CSltTarget<false>>, [] {
        return Documents({{"SLT", "Service", "Service protected='' hidden='' broadbandAccessRequired=''", "sltInetUrl"},
                          {"SLT>Service protected='' hidden='' broadbandAccessRequired=''", "SimulcastTSID",
                           "BroadcastSvcSignaling", "SvcInetUrl"}});
    });
    RegisterAttack("slt-lenient", Make<CSltTarget<true>>, [] {
        std::vector<SInput> inputs = Documents({{"SLT", "Service", "sltInetUrl"}});
        std::string services;
        for (int i = 0; services.size() < k_size; ++i) {
            services += "<Service serviceId='" + std::to_string(i) + "'/>";
        }
        inputs.push_back({"different services", "<SLT>" + services + "</SLT>"});
        return inputs;
    });
    RegisterAttack("aeat", Make<CLlsTarget<CParseAEAT>>, [] {
        return Documents({{"AEAT", "AEA", "Header", "LiveMedia"},
                          {"AEAT>AEA", "Header", "EventCode", "EventDesc", "Location", "AEAText", "LiveMedia", "Media"},
                          {"AEAT>AEA>LiveMedia", "ServiceName"}});
    });
    RegisterAttack("rrt", Make<CLlsTarget<CParseRRT>>, [] {
        return Documents({{"RatingRegionTables", "RatingRegionTable", "RegionIdText", "Rating"},
                          {"RatingRegionTables>RatingRegionTable", "RegionIdText", "Dimension"},
                          {"RatingRegionTables>RatingRegionTable>Dimension", "DimensionTitle", "Rating"},
                          {"RatingRegionTables>RatingRegionTable>Dimension>Rating", "RatingValueAbbrev"}});
    });
    RegisterAttack("onscreen", Make<CLlsTarget<CParseOnscreenNoti>>, [] {
        return Documents({{"OnscreenMessageNotification", "KeepScreenClear"}});
    });
    RegisterAttack("cdt", Make<CLlsTarget<CParseCDT>>, [] {
        return Documents({{"CertificationData", "ToBeSignedData", "Certificates", "CMSSignedData", "CertReplacement"},
                          {"CertificationData>ToBeSignedData", "Certificates", "OCSPResponse", "OCSPRefresh",
                           "CertReplacement NextCertFrom='2020-01-01T00:00:00Z'"}});
    });
    RegisterAttack("system-time", Make<CLlsTarget<CParseSystemTime>>, [] { return Documents({{"SystemTime", "a"}}); });
    RegisterAttack("cms", Make<CCmsTarget>, SignedTexts);
    RegisterAttack("multi-table", Make<CItemTarget<CLLSSMTParser>>, MultiTables);
    return true;
}();

}  // namespace
