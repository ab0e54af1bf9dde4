// Growth of the service guide.
#include "Growth.h"

#include "esg/ESGContentFragment.h"
#include "esg/ESGFragmentMap.h"
#include "esg/ESGScheduleFragment.h"
#include "esg/ESGServiceFragment.h"
#include "esg/SGDUParse.h"
#include "esg/SGResponse.h"

namespace {

using namespace growth;

std::string Unit(const std::vector<std::string>& fragments, unsigned int type)
{
    std::string unit = Bytes(0, 6) + Bytes(static_cast<unsigned int>(fragments.size()), 3);
    unsigned int offset = 0;
    for (const std::string& fragment : fragments) {
        unit += Bytes(1, 4) + Bytes(1, 4) + Bytes(offset, 4);
        offset += static_cast<unsigned int>(fragment.size()) + 2;
    }
    for (const std::string& fragment : fragments) {
        unit += Bytes(type, 2) + fragment;
    }
    return unit;
}

std::vector<SInput> Units()
{
    std::vector<SInput> inputs;
    for (const char* text :
         {"<a/>", "<", "<Service/>", "<Service id=''/>", "<Service id='1'><Genre>1</Genre></Service>"}) {
        const std::vector<std::string> fragments(k_size / (std::char_traits<char>::length(text) + 14), text);
        inputs.push_back({text, Unit(fragments, 1)});
        inputs.push_back({std::string(text) + " type 9", Unit(fragments, 9)});
    }
    for (const SInput& input : Documents({{"Service id=''", "Genre", "Name", "PrivateExt"}})) {
        inputs.push_back({input.name, Unit({input.bytes}, 1)});
    }
    std::string other = Bytes(0, 6) + Bytes(2000, 3);
    for (int i = 0; i < 2000; ++i) {
        other += Bytes(0, 12);
    }
    inputs.push_back({"other encoding", other + std::string(2000, '\1')});
    return inputs;
}

void RegisterGrowthRows()
{
    RegisterGrowth("esg-genres", Make<CXmlTarget<CESGServiceFragment>>, "Service id=''", "<Genre>:%</Genre>");
    RegisterGrowth("esg-schedule", Make<CXmlTarget<CESGScheduleFragment>>, "Schedule id=''",
                   "<ContentReference idRef='%'/>");
    RegisterGrowth("sgdd", Make<CXmlTarget<CSGDDParse>>,
                   "ServiceGuideDeliveryDescriptor>DescriptorEntry>ServiceGuideDeliveryUnit", "<Fragment id='%'/>");
    RegisterGrowth("sg-response", Make<CXmlTarget<CSGResponse>>, "SGResponse xmlns='n'",
                   "<ServiceGuideDeliveryDescriptor id='%'/>");
    RegisterGrowth("sgdu", [](benchmark::State& state, int n) {
        Grow(state, Make<CItemTarget<CSGDUParse>>,
             Unit(std::vector<std::string>(static_cast<std::size_t>(n), "<Service id='1'/>"), 1));
    });
    RegisterGrowth("fragment-map", [](benchmark::State& state, int n) {
        CESGFragmentMap map;
        map.Create();
        for (auto _ : state) {
            for (int i = 0; i < n; ++i) {
                map.Add(std::to_string(i).c_str());
            }
            for (int i = n; i-- > 0;) {
                map.Remove(std::to_string(i).c_str());
            }
        }
        map.Destroy();
    });
}

const bool g_registered = [] {
    RegisterGrowthRows();
    RegisterAttack("esg-service", Make<CXmlTarget<CESGServiceFragment>>, [] {
        const std::string service = "Service id=''";
        return Documents({{service, "ServiceType", "Name", "Description", "AudioLanguage", "TextLanguage",
                           "ContentAdvisoryRatings", "TargetUserProfile", "Genre", "BroadcastArea", "PrivateExt"},
                          {service + ">ContentAdvisoryRatings", "RatingDescription", "RatingDimVal", "RatingDimension",
                           "RatingValueString"},
                          {service + ">BroadcastArea", "TargetArea", "ZipCode", "CellTargetArea"},
                          {service + ">PrivateExt>ATSC3ServiceExtension", "Icon"}});
    });
    RegisterAttack("esg-content", Make<CXmlTarget<CESGContentFragment>>, [] {
        const std::string content = "Content id=''";
        return Documents({{content, "Name", "Genre", "TermsOfUse", "Length", "Popularity", "Freshness", "PrivateExt"},
                          {content + ">PrivateExt", "ContentIcon", "Preview", "Components", "Capabilities"},
                          {content + ">PrivateExt>Components", "VideoComponent"},
                          {content + ">TermsOfUse", "Country", "Language", "PreviewDataIDRef", "TermsOfUseText"}});
    });
    RegisterAttack("esg-schedule", Make<CXmlTarget<CESGScheduleFragment>>, [] {
        const std::string schedule = "Schedule id=''";
        return Documents({{schedule, "ServiceReference", "ContentReference", "TermsOfUse"},
                          {schedule + ">ContentReference", "PresentationWindow", "DistributionWindow"}});
    });
    RegisterAttack("sgdu", Make<CItemTarget<CSGDUParse>>, Units);
    RegisterAttack("sgdd", Make<CXmlTarget<CSGDDParse>>, [] {
        const std::string sgdd = "ServiceGuideDeliveryDescriptor";
        return Documents({{sgdd, "DescriptorEntry"},
                          {sgdd + ">DescriptorEntry", "GroupingCriteria", "Transport", "AlternativeAccessURL",
                           "ServiceGuideDeliveryUnit"},
                          {sgdd + ">DescriptorEntry>ServiceGuideDeliveryUnit", "Fragment"},
                          {sgdd + ">DescriptorEntry>GroupingCriteria", "ServiceCriteria", "GenreGroupingCriteria"}});
    });
    RegisterAttack("sg-response", Make<CXmlTarget<CSGResponse>>, [] {
        return Documents(
            {{"SGResponse", "SupportedVersion", "ServiceGuideDeliveryDescriptor", "ResponseValidity", "PrivateExt"}});
    });
    return true;
}();

}  // namespace
