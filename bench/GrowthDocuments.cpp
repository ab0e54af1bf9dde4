// Growth of the documents of a service, ROUTE and MMT, and of MMT messages.
#include "Growth.h"

#include "common/RSAT.h"
#include "mmt/desc/MMTUsbd.h"
#include "mmt/msg/MMTMsgFactory.h"
#include "route/SLS/EFDT.h"
#include "route/SLS/MPD.h"
#include "route/SLS/ROUTEUsbd.h"
#include "route/SLS/STSID.h"
#include "route/SLSManager.h"
#include "support/MmtWriter.h"

namespace {

using namespace growth;

struct CSlsTarget : CTarget {
    CSlsTarget() { parser.Create(nullptr); }
    ~CSlsTarget() override { parser.Destroy(); }
    void Parse(const std::string& input) override
    {
        const CSLSManager::SSessionInfo session{1, 2, 3, 4};
        parser.Parse(reinterpret_cast<const unsigned char*>(input.data()), static_cast<unsigned int>(input.size()),
                     &session, false);
    }
    CSLSManager parser;
};

/// A message on an object of its own, as the factory makes them, which takes the place of the last.
struct CMmtTarget : CTarget {
    void Parse(const std::string& input) override
    {
        message = CMMTMsgFactory::CreateMessage(reinterpret_cast<const unsigned char*>(input.data()), 2);
        IParse::SItem item = Item(input);
        message->Parse(&item);
    }
    std::shared_ptr<CMMTMsg> message;
};

std::string Message(unsigned int id, unsigned int bits, const std::string& payload)
{
    return CMmtBuilder().Put(16, id).Put(8, 1).Open(bits).Put(payload).Close().Bytes();
}

std::string Table(unsigned int id, const std::string& body)
{
    return CMmtBuilder().Put(8, id).Put(8, 1).Open(16).Put(body).Close().Bytes();
}

std::string Asset(const std::string& locations, unsigned int count, const std::string& descriptors)
{
    return CMmtBuilder()
        .Put(8, 0)
        .Put("urn ")
        .Put(32, 0)
        .Put("hev1")
        .Put(8, 0xFC)
        .Put(8, count)
        .Put(locations)
        .Open(16)
        .Put(descriptors)
        .Close()
        .Bytes();
}

std::string Descriptor(unsigned int tag, const std::string& body)
{
    return CMmtBuilder().Put(16, tag).Open(16).Put(body).Close().Bytes();
}

std::string Content(unsigned int type, const std::string& content)
{
    return Message(
        0x8100, 32,
        CMmtBuilder().Put(16, 1).Put(16, type).Put(8, 1).Put(8, 0).Put(8, 0).Open(32).Put(content).Close().Bytes());
}

std::vector<SInput> Messages()
{
    std::vector<SInput> inputs;
    const auto mpt = [&inputs](const std::string& name, const std::string& asset) {
        std::string body = std::string("\xFF\0\0\0", 4);
        const std::size_t assets = std::min<std::size_t>(255, 60000 / asset.size());
        body += static_cast<char>(assets);
        for (std::size_t i = 0; i < assets; ++i) {
            body += asset;
        }
        inputs.push_back({"MPT " + name, Message(0x11, 16, Table(0x20, body))});
    };
    mpt("empty assets", Asset("", 0, ""));
    for (const int type : {0, 1, 5, 7, 8}) {
        const int size[] = {2, 12, 0, 0, 0, 1, 0, 0, 2};
        std::string locations;
        for (int i = 0; i < 255; ++i) {
            locations +=
                static_cast<char>(type) + std::string(static_cast<std::size_t>(size[type]), type == 5 ? '\0' : '\1');
        }
        mpt("locations of type " + std::to_string(type), Asset(locations, 255, ""));
    }
    for (const unsigned int tag : {0u, 1u, 2u, 4u, 5u, 8u, 9u, 12u, 13u, 14u, 0x8001u}) {
        for (const std::size_t size : {0u, 1u, 12u, 60u}) {
            for (const char fill : {'\0', '\1', '\xFF'}) {
                const std::string one = Descriptor(tag, std::string(size, fill));
                inputs.push_back({"descriptors " + std::to_string(tag) + " of " + std::to_string(size) + "x" +
                                      std::to_string(static_cast<unsigned char>(fill)),
                                  Content(9, Repeat(one))});
            }
        }
        mpt("loops of " + std::to_string(tag), Asset("", 0, Descriptor(tag, std::string(19, '\0'))));
    }
    // Assets of nothing, in every descriptor that lists them; presentations of two bytes.
    for (const unsigned int tag : {5u, 8u, 9u, 12u, 13u}) {
        for (const char fill : {'\0', '\1'}) {
            std::string body(1, '\xFF');
            body += std::string(8000, fill);
            inputs.push_back({"assets in " + std::to_string(tag) + "x" + std::to_string(fill),
                              Content(9, Repeat(Descriptor(tag, body)))});
        }
    }
    const std::string presentations =
        std::string(1, '\x1') + Bytes(0, 4) + "ac-4" + '\xFF' + '\0' + std::string(510, '\0');
    inputs.push_back({"presentations", Content(9, Repeat(Descriptor(9, presentations)))});
    const std::string some = std::string(1, '\x1') + Bytes(0, 4) + "ac-4" + '\x81' + '\0' + std::string(258, '\0');
    inputs.push_back({"129 presentations", Content(9, Repeat(Descriptor(9, some)))});
    const std::string languages = std::string(1, '\x1') + Bytes(0, 4) + "ac-4" + '\xFF' + '\0' +
                                  Repeat(std::string("\1\4\xFF", 3) + std::string(256, '\0'), 60000);
    inputs.push_back({"languages", Content(9, Descriptor(9, languages))});
    const std::string urls = std::string(1, '\xFF') + Repeat(Bytes(0, 4) + '\xFF' + std::string(510, '\0'), 60000);
    inputs.push_back({"licence urls", Content(9, Descriptor(13, urls))});
    const std::string vsp = std::string(1, '\xFF') + Repeat(Bytes(0, 4) + "hev1" + '\0' + std::string(13, '\0'), 60000);
    inputs.push_back({"video assets", Content(9, Descriptor(5, vsp))});
    std::string pa(1, '\xFF');
    for (int i = 0; i < 255; ++i) {
        pa += Bytes(0, 4);
    }
    inputs.push_back({"PA of empty tables", Message(0, 32, pa + Repeat(Table(0, std::string(2, '\0')), 1530))});
    for (const unsigned int id : {0x200u, 0x201u, 0x206u, 0x20Bu, 0x20Eu, 0x1u}) {
        for (const char fill : {'\0', '\1', '\xFF'}) {
            for (const unsigned int bits : {16u, 32u}) {
                inputs.push_back(
                    {"message " + std::to_string(id) + "x" + std::to_string(static_cast<unsigned char>(fill)),
                     Message(id, bits, std::string(16000, fill))});
            }
        }
    }
    for (const char fill : {'\0', '\1', '\xFF'}) {
        for (const unsigned int id : {0x10u, 0x21u, 0x22u, 0x23u}) {
            inputs.push_back({"table " + std::to_string(id) + "x" + std::to_string(static_cast<unsigned char>(fill)),
                              Message(0, 32, std::string("\1") + Bytes(0, 4) + Table(id, std::string(16000, fill)))});
        }
    }
    for (const SInput& usbd :
         Documents({{"BundleDescriptionMMT>UserServiceDescription", "Name", "ServiceLanguage",
                     "ComponentInfo componentProtectedFlag=''", "ComponentInfo", "ContentAdvisoryRatings"}})) {
        inputs.push_back({"USBD " + usbd.name, Content(1, usbd.bytes)});
    }
    std::string nested = Message(0x8100, 32, std::string(8000, '\0'));
    for (int i = 0; i < 5; ++i) {
        nested = Message(0x8101, 32, CMmtBuilder().Put(16, 1).Open(32).Put(nested).Close().Put(16, 0).Bytes());
    }
    inputs.push_back({"signed in signed", nested});
    return inputs;
}

void RegisterGrowthRows()
{
    RegisterGrowth("rsat", Make<CXmlTarget<CRSAT>>, "RSAT timestamp=''", "<Service frequency='%'/>");
    RegisterGrowth("stsid-sessions", Make<CXmlTarget<CSTSID>>, "S-TSID>RS", "<LS tsi='%'/>");
    RegisterGrowth("stsid-ratings", Make<CXmlTarget<CSTSID>>, "S-TSID>RS>LS>SrcFlow>ContentInfo>MediaInfo",
                   "<ContentRating value='%'/>");
    RegisterGrowth("efdt", Make<CXmlTarget<CEFDT>>, "EFDT>FDT-Instance", "<File TOI='%'/>");
    RegisterGrowth("usbd", Make<CXmlTarget<CROUTEUsbd>>, "BundleDescriptionROUTE>UserServiceDescription",
                   "<ServiceLanguage>%</ServiceLanguage>");
    RegisterGrowth("usbd-patterns", Make<CXmlTarget<CROUTEUsbd>>,
                   "BundleDescriptionROUTE>UserServiceDescription>DeliveryMethod>UnicastAppService",
                   "<BasePattern>%</BasePattern>");
    RegisterGrowth("mpd-timeline", Make<CXmlTarget<CMPD>>, "MPD>Period>SegmentTemplate>SegmentTimeline", "<S d='%'/>");
    RegisterGrowth("mpd-representations", Make<CXmlTarget<CMPD>>, "MPD>Period>AdaptationSet codecs='c'",
                   "<Representation id='%'/>");
    RegisterGrowth("mmt-usbd", Make<CXmlTarget<CMMTUsbd>>, "BundleDescriptionMMT>UserServiceDescription",
                   "<ComponentInfo componentProtectedFlag='' componentId='%'/>");
    RegisterGrowth("mmt-descriptors", [](benchmark::State& state, int n) {
        Grow(state, Make<CMmtTarget>,
             Content(9, Repeat(Descriptor(9, std::string(4, '\0')), static_cast<std::size_t>(8 * n))));
    });
    RegisterGrowth("rsat-getter", [](benchmark::State& state, int n) {
        CXmlTarget<CRSAT> rsat;
        rsat.Parse("<RSAT timestamp=''><Service>" + Repeat("<Update/>", static_cast<std::size_t>(9 * n)) +
                   "</Service></RSAT>");
        SRSATUpdateInfo info;
        for (auto _ : state) {
            for (int i = 0; i < n; ++i) {
                benchmark::DoNotOptimize(rsat.parser.GetUpdateInfo(0, i, &info));
            }
        }
    });
}

const bool g_registered = [] {
    RegisterGrowthRows();
    RegisterAttack("rsat", Make<CXmlTarget<CRSAT>>, [] {
        return Documents({{"RSAT timestamp=''", "Service", "Update"}, {"RSAT timestamp=''>Service", "Update"}});
    });
    const auto stsid = [] {
        return Documents({{"S-TSID", "RS"},
                          {"S-TSID>RS", "LS", "LS startTime='2020-01-01T00:00:00Z'"},
                          {"S-TSID>RS>LS", "SrcFlow"},
                          {"S-TSID>RS>LS>SrcFlow", "ContentInfo", "EFDT"},
                          {"S-TSID>RS>LS>SrcFlow>EFDT", "FDT-Instance", "FileTemplate"},
                          {"S-TSID>RS>LS>SrcFlow>EFDT>FDT-Instance", "File", "FDT-Instance"},
                          {"S-TSID>RS>LS>SrcFlow>ContentInfo", "MediaInfo", "AEAMedia"},
                          {"S-TSID>RS>LS>SrcFlow>ContentInfo>MediaInfo", "ContentRating"}});
    };
    RegisterAttack("stsid", Make<CXmlTarget<CSTSID>>, stsid);
    RegisterAttack("efdt", Make<CXmlTarget<CEFDT>>, [] {
        std::vector<SInput> inputs =
            Documents({{"EFDT", "FDT-Instance", "FileTemplate"}, {"EFDT>FDT-Instance", "File"}});
        inputs.push_back({"spaces", "<EFDT><FDT-Instance appContextIdList='" + Repeat(" ") + "'/></EFDT>"});
        inputs.push_back({"tokens", "<EFDT><FDT-Instance appContextIdList='" + Repeat("a ") + "'/></EFDT>"});
        return inputs;
    });
    const auto usbd = [] {
        return Documents(
            {{"BundleDescriptionROUTE>UserServiceDescription", "Name", "ServiceLanguage", "DeliveryMethod",
              "ServiceLinkage", "UserServiceDescription"},
             {"BundleDescriptionROUTE>UserServiceDescription>DeliveryMethod", "BroadcastAppService",
              "UnicastAppService"},
             {"BundleDescriptionROUTE>UserServiceDescription>DeliveryMethod>UnicastAppService", "BasePattern"}});
    };
    RegisterAttack("usbd", Make<CXmlTarget<CROUTEUsbd>>, usbd);
    const auto mpd = [] {
        return Documents({{"MPD", "Period", "BaseURL", "EssentialProperty", "Rating"},
                          {"MPD>Period", "AdaptationSet", "Preselection", "EventStream", "SegmentTemplate",
                           "SegmentList", "BaseURL", "Period start='PT1S'"},
                          {"MPD>Period>AdaptationSet", "Representation", "ContentProtection", "Role", "Rating"},
                          {"MPD>Period>AdaptationSet>Representation", "SegmentTemplate", "SegmentList", "Role"},
                          {"MPD>Period>SegmentTemplate>SegmentTimeline", "S"},
                          {"MPD>Period>SegmentList", "SegmentURL", "Initialization", "SegmentTimeline"},
                          {"MPD>Period>AdaptationSet>ContentProtection", "pssh", "Laurl"}});
    };
    RegisterAttack("mpd", Make<CXmlTarget<CMPD>>, mpd);
    RegisterAttack("sls-manager", Make<CSlsTarget>, [] {
        std::vector<SInput> inputs = Documents({{"S-TSID>RS", "LS"}});
        const char* tags[] = {"BundleDescriptionROUTE", "S-TSID",         "MPD", "HELD",
                              "RSAT timestamp=''",      "ApplicationList"};
        std::string nested = Repeat("x<a/>");
        for (const char* tag : tags) {
            nested = Open(tag) + nested + Close(tag);
        }
        inputs.push_back({"documents in documents", nested});
        inputs.push_back({"<S-TSI", Repeat("<S-TSI")});
        inputs.push_back({"<", Repeat("<")});
        return inputs;
    });
    RegisterAttack("mmt-usbd", Make<CXmlTarget<CMMTUsbd>>, [] {
        const std::string usd = "BundleDescriptionMMT>UserServiceDescription";
        return Documents(
            {{usd, "Name", "ServiceLanguage", "Channel", "MPUComponent", "ROUTEComponent", "BroadbandComponent",
              "ComponentInfo componentProtectedFlag=''", "ServiceLinkage", "ContentAdvisoryRatings"},
             {usd + ">ContentAdvisoryRatings", "RatingDescription", "RatingDimVal", "RegionIdentifier"},
             {usd + ">ContentAdvisoryRatings>RatingDimVal", "RatingValueString"}});
    });
    RegisterAttack("mmt-message", Make<CMmtTarget>, Messages);
    return true;
}();

}  // namespace
