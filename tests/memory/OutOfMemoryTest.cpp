// What happens when the n-th allocation fails, for every n, in every kind of entry: nothing is thrown, what
// fails says so, what was held before is held, and the object does it rightly at the next call.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>
#include <set>
#include <sstream>
#include <string>

#include "common/ChannelMap.h"
#include "common/CoreOS/PtrArray.h"
#include "common/CoreOS/StringHash.h"
#include "common/RSAT.h"
#include "common/ServiceLinkage.h"
#include "esg/ESGContentFragment.h"
#include "esg/ESGFragmentMap.h"
#include "esg/ESGScheduleFragment.h"
#include "esg/ESGServiceFragment.h"
#include "esg/GenreNameParse.h"
#include "esg/SGDUParse.h"
#include "esg/SGResponse.h"
#include "lls/LLSSMTParser.h"
#include "lls/ParseAEAT.h"
#include "lls/ParseCDT.h"
#include "lls/ParseOnscreenNoti.h"
#include "lls/ParseRRT.h"
#include "lls/ParseSLT.h"
#include "lls/ParseSystemTime.h"
#include "lls/RRTMap.h"
#include "memory/FailingAllocator.h"
#include "mmt/desc/MMTDesc.h"
#include "mmt/desc/MMTDescFactory.h"
#include "mmt/desc/MMTUsbd.h"
#include "mmt/msg/MMTMsgFactory.h"
#include "mmt/table/MMTTblFactory.h"
#include "platform/BaseParser.h"
#include "platform/Platform.h"
#include "route/SLS/DeliveryMethod.h"
#include "route/SLS/EFDT.h"
#include "route/SLS/MPD.h"
#include "route/SLS/ROUTEUsbd.h"
#include "route/SLS/STSID.h"
#include "route/SLSManager.h"
#include "support/Seed.h"

namespace {

int s_told = 0;    // lines that say so
int s_failed = 0;  // lines of what failed: libxml2 does not always tell why
std::string* s_dump = nullptr;

void Log(int /*priority*/, const char* /*tag*/, const char* format, va_list arguments)
{
    const memory::CPause pause;
    char line[1024];
    std::vsnprintf(line, sizeof line, format, arguments);
    s_told += std::string(line).find("out of memory: src/") != std::string::npos;
    s_failed += std::strstr(line, "_CHECK FAIL: src/") || std::strstr(line, "nodeDump does not exist");
    if (s_dump) {
        const std::string text = line;
        *s_dump += text.substr(std::min(text.size(), text.find(" > "))) + '\n';
    }
}

std::string Text(const char* text)
{
    return text ? text : "";
}

std::set<std::string> Lines(const std::string& text)
{
    std::set<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.insert(line);
    }
    return lines;
}

/// Whether all lines of the one stand in the other: what piles up is there, and what a failed parse left.
bool Holds(const std::string& text, const std::string& good)
{
    const std::set<std::string> all = Lines(text);
    const std::set<std::string> wanted = Lines(good);
    return std::includes(all.begin(), all.end(), wanted.begin(), wanted.end());
}

/// What is tried: `create` and `parse` while allocations fail, the rest while none does.
struct STrial {
    std::function<bool()> create;
    std::function<bool()> parse;
    std::function<std::string()> digest;  ///< of what was parsed, the same however often it was
    std::function<void()> destroy;
    /// Whether a parse that says true may have lost something, as that of a table does by its description.
    bool mayLose = false;
};

using TMake = std::function<STrial()>;

struct SKind {
    std::string name;
    TMake make;
};

void PrintTo(const SKind& kind, std::ostream* out)
{
    *out << kind.name;
}

bool FeedTo(IParse& parser, const std::string& bytes, std::size_t at = 0)
{
    const unsigned int size = static_cast<unsigned int>(bytes.size());
    IParse::SItem item = {reinterpret_cast<const unsigned char*>(bytes.data()), size, size * 8,
                          static_cast<unsigned int>(at) * 8, true};
    return parser.Parse(&item);
}

/// A parser of XML documents.
template <class T>
SKind Xml(const std::string& seed, std::size_t skip, std::string (*digest)(const T&), void (*prepare)(T&) = nullptr)
{
    return {seed, [=] {
                const auto parser = std::make_shared<T>();
                const std::string text = Seed(seed, skip);
                return STrial{[=] {
                                  const bool created = parser->Create();
                                  if (created && prepare) {
                                      prepare(*parser);
                                  }
                                  return created;
                              },
                              [=] {
                                  XMLBase& base = *parser;
                                  return base.Parse(text.data(), static_cast<unsigned int>(text.size()), true);
                              },
                              [=] { return digest(*parser); }, [=] { parser->Destroy(); }};
            }};
}

/// A parser of LLS tables, whose Parse says true of every new header.
template <class T>
SKind Table(
    const std::string& seed, bool (*create)(T&), std::string (*digest)(const T&),
    const std::function<void()>& destroy = [] {})
{
    return {seed, [=] {
                const auto parser = std::make_shared<T>();
                const auto bytes = std::make_shared<std::string>(Seed(seed, 1));
                STrial trial{[=] { return create(*parser); },
                             [=] {
                                 ++(*bytes)[3];
                                 return FeedTo(*parser, *bytes);
                             },
                             [=] { return digest(*parser); },
                             [=] {
                                 parser->Destroy();
                                 destroy();
                             }};
                trial.mayLose = true;
                return trial;
            }};
}

/// A binary object that `make` gives for the bytes.
SKind Binary(const std::string& seed, std::size_t skip,
             const std::function<std::shared_ptr<IParse>(const std::string&)>& make, void (*dump)(const IParse&))
{
    return {seed, [=] {
                const auto object = std::make_shared<std::shared_ptr<IParse>>();
                const std::string bytes = Seed(seed, skip);
                STrial trial{[=] { return (*object = make(bytes)) != nullptr; },
                             [=] { return FeedTo(**object, bytes); },
                             [=] {
                                 std::string text;
                                 s_dump = &text;
                                 dump(**object);
                                 s_dump = nullptr;
                                 return text;
                             },
                             [=] { object->reset(); }};
                trial.mayLose = true;  // a descriptor loop ends at the first that does not parse
                return trial;
            }};
}

/// An entry that needs no more than a call.
SKind Call(const std::string& name, const std::function<bool()>& create, const std::function<bool()>& call,
           const std::function<std::string()>& digest, const std::function<void()>& destroy)
{
    return {name, [=] { return STrial{create, call, digest, destroy}; }};
}

template <class TFragment>
SKind Fragment(const std::string& seed)
{
    return {seed, [=] {
                const auto fragment = std::make_shared<TFragment>();
                const std::string text = Seed(seed, 1);
                return STrial{[=] { return fragment->Create(); },
                              [=] { return fragment->Parse(text.data(), static_cast<unsigned int>(text.size())); },
                              [=] { return Text(fragment->State()->id.get()); }, [=] { fragment->Destroy(); }};
            }};
}

CChannelMap s_map;
CRRTMap s_ratings;
CESGFragmentMap s_fragments;
CXML s_xml;

std::string Services()
{
    std::set<std::string> all;
    s_map.GetServiceList(
        [](void* user, void* service) {
            unsigned char name[64];
            unsigned short length = sizeof name;
            std::string id, url, drm;
            s_map.GetServiceName(service, name, length);
            s_map.GetGlobalServiceId(service, id);
            s_map.GetSvcInetUrl(service, url);
            s_map.GetDrmSystemID(service, drm);
            static_cast<std::set<std::string>*>(user)->insert(std::string(name, name + length) + id + url + drm);
        },
        &all);
    std::string text;
    for (const std::string& service : all) {
        text += service + "\n";
    }
    return text;
}

void DumpMessage(const IParse& message)
{
    static_cast<const CMMTMsg&>(message).Dump();
}

std::shared_ptr<IParse> MakeMessage(const std::string& bytes)
{
    return CMMTMsgFactory::CreateMessage(reinterpret_cast<const unsigned char*>(bytes.data()),
                                         static_cast<unsigned int>(bytes.size()));
}

template <class T, T* (*TGenerate)(IParse::SItem*)>
std::shared_ptr<IParse> Generate(const std::string& bytes)
{
    IParse::SItem item = {reinterpret_cast<const unsigned char*>(bytes.data()), 8, 64, 0, true};
    T* object = TGenerate(&item);
    const memory::CPause pause;
    return std::shared_ptr<IParse>(object);
}

SKind Message(const std::string& seed)
{
    return Binary("mmt_message/" + seed, 0, MakeMessage, DumpMessage);
}

SKind MmtTable(const std::string& seed)
{
    return Binary("mmt_table/" + seed, 0, Generate<CMMTTbl, CMMTTblFactory::GenerateTbl>,
                  [](const IParse& table) { static_cast<const CMMTTbl&>(table).Dump(); });
}

SKind Descriptor(const std::string& seed)
{
    return Binary("mmt_descriptors/" + seed, 2, Generate<CMMTDesc, CMMTDescFactory::GenerateDesc>,
                  [](const IParse& descriptor) { static_cast<const CMMTDesc&>(descriptor).Dump(); });
}

std::string ReadStsid(const CSTSID& stsid)
{
    std::set<std::string> all;
    for (int i = 0; i < stsid.NumberOfRouteSessions(); ++i) {
        std::string rs;
        for (int j = 0; j < stsid.NumberOfLctSessions(i); ++j) {
            unsigned int tsi = 0;
            stsid.GetTSI(i, j, &tsi);
            std::string content;
            stsid.GetContentId(i, j, content);
            const SEFDTInfo* efdt = stsid.GetEFDTInfo(i, j);
            rs += std::to_string(tsi) + content + (efdt && efdt->fdtGlobal ? "e " : " ");
        }
        all.insert(rs);
    }
    std::string text;
    for (const std::string& rs : all) {
        text += rs + "\n";
    }
    return text;
}

std::string ReadSgdd(const CSGDDParse& sgdd)
{
    const auto& entries = sgdd.State()->descriptorEntries;
    return Text(sgdd.State()->id.get()) +
           (entries.empty() ? "" : std::to_string(entries.back()->State()->deliveryUnits.size()));
}

std::vector<SKind> Kinds()
{
    const auto plain = [](auto& parser) { return parser.Create(); };
    std::vector<SKind> kinds;
    for (const char* seed : {"lls_slt/strict-gzip", "lls_slt/lenient-plain"}) {
        kinds.push_back(Table<CParseSLT>(
            seed,
            [](CParseSLT& slt) {
                const bool created = s_map.Create() && slt.Create(&s_map, nullptr);
                const CChannelMap::SCallback callback = {nullptr, [](void*, void*) {}};
                if (!created || !s_map.SetCallback(&callback) || !slt.AddLLSGroupId(1)) {
                    const memory::CPause pause;
                    if (slt.GetServiceInfo(0) || created) {
                        slt.Destroy();
                    }
                    s_map.Destroy();
                    return false;
                }
                slt.SetLenient(true);
                return true;
            },
            [](const CParseSLT& slt) {
                std::string text;
                slt.GetSltCapability(text);
                return Services() + text + "\n" + std::to_string(slt.Bsid());
            },
            [] { s_map.Destroy(); }));
    }
    kinds.push_back(Table<CParseSystemTime>(
        "lls_tables/system-time", [](CParseSystemTime& time) { return time.Create(1); },
        [](const CParseSystemTime& time) { return std::to_string(time.CurrUtcOffset()); }));
    kinds.push_back(Table<CParseRRT>("lls_tables/rrt", plain, [](const CParseRRT& rrt) {
        std::string text;
        const unsigned int last = rrt.numOfRatingRegionTable();
        rrt.GetRatingValueString(last - 1, 0, 0, text);
        return text;
    }));
    kinds.push_back(Table<CParseAEAT>(
        "lls_tables/aeat", [](CParseAEAT& aeat) { return aeat.Create(nullptr); },
        [](const CParseAEAT& aeat) {
            const SParseAEAT::SAEAInfo* alert = aeat.GetAEA(aeat.AEACount() - 1);
            return alert && !alert->eventDescs.empty() && !alert->media.empty()
                       ? alert->aeaId + alert->eventDescs.back().text + alert->media.back().mediaDesc
                       : "";
        }));
    kinds.push_back(Table<CParseCDT>("lls_tables/cdt", plain, [](const CParseCDT& cdt) {
        std::string text, cms;
        std::list<std::string> certificates;
        cdt.GetToBeSignedData(text);
        cdt.GetCMSSignedData(cms);
        cdt.GetCertificates(certificates);
        return text + cms + std::to_string(certificates.size());
    }));
    kinds.push_back(Table<CParseOnscreenNoti>("lls_tables/onscreen", plain, [](const CParseOnscreenNoti& noti) {
        const unsigned int count = noti.KSCCount();
        return count ? noti.GetKSC(count - 1)->notificationDuration : "";
    }));
    kinds.push_back({"lls_tables/signed-multi-table", [] {
                         const auto parser = std::make_shared<CLLSSMTParser>();
                         const std::string bytes = Seed("lls_tables/signed-multi-table", 1);
                         return STrial{[=] { return parser->Create(); },
                                       [=] { return FeedTo(*parser, bytes) && parser->PayloadCount() > 0; },
                                       [=] {
                                           unsigned int length = 0;
                                           unsigned int signature = 0;
                                           parser->GetSignedBlockLength(length);
                                           parser->GetSignatureLength(signature);
                                           return std::to_string(length) + " " + std::to_string(signature);
                                       },
                                       [=] { parser->Destroy(); }};
                     }});

    kinds.push_back(Xml<CSTSID>("route_documents/stsid", 1, ReadStsid, [](CSTSID& stsid) {
        const CLS::SCallback callback = {nullptr, [](void*, unsigned int, SEFDTInfo*) {}};
        stsid.SetCallback(&callback);
    }));
    kinds.push_back(Xml<CSTSID>("route_documents/stsid-ratings", 1, ReadStsid));
    kinds.push_back(Xml<CROUTEUsbd>("route_documents/usbd", 1, [](const CROUTEUsbd& usbd) {
        const CDeliveryMethod* method =
            static_cast<const CDeliveryMethod*>(usbd.State()->deliveryMethods.Data(usbd.NumOfDeliveryMethod() - 1));
        return Text(usbd.GlobalServiceId()) + std::to_string(method->State()->unicastAppSvcs.Size()) +
               Text(usbd.ActivationTime());
    }));
    kinds.push_back(Xml<CEFDT>("route_documents/real-fdt", 1, [](const CEFDT& efdt) {
        const SFDTGlobal* global = efdt.GetEFDTInfo()->fdtGlobal;
        return global ? Text(global->contentType) + std::to_string(global->files.Size()) : "";
    }));
    kinds.push_back(Xml<CRSAT>("route_documents/rsat", 1, [](const CRSAT& rsat) {
        SRSATServiceInfo service;
        SRSATUpdateInfo update;
        rsat.GetServiceInfo(rsat.NumOfService() - 1, &service);
        rsat.GetUpdateInfo(rsat.NumOfService() - 1, 0, &update);
        return service.frequency + std::to_string(service.updates.size()) + update.validFrom;
    }));
    kinds.push_back(Xml<CServiceLinkage>("route_documents/service-linkage", 1, [](const CServiceLinkage& linkage) {
        return Text(linkage.ActivationTime()) + Text(linkage.State()->linkageData);
    }));
    for (const char* seed : {"mpd/template-timeline", "mpd/protection", "mpd/segment-list-ranges"}) {
        kinds.push_back(Xml<CMPD>(
            seed, 0,
            [](const CMPD& mpd) {
                const SMPDInfo* info = mpd.GetMPDInfo();
                return info ? std::to_string(info->periods.size()) +
                                  std::to_string(info->periods.back().adaptationSets.size())
                            : "";
            },
            [](CMPD& mpd) {
                const CMPD::SCallback callback = {nullptr, [](void*, SMPDInfo*) {},
                                                  [](void*, const CMPD::TRatings&) {}};
                mpd.SetCallback(&callback);
            }));
    }
    kinds.push_back({"sls_manager/every-kind", [] {
                         const auto manager = std::make_shared<CSLSManager>();
                         const auto told = std::make_shared<std::set<std::string>>();
                         const std::string text =
                             Seed("sls_manager/every-kind", 1) + "\n" + Seed("route_documents/stsid", 1);
                         CSLSManager::SCallback callback{};
                         callback.pUserData = told.get();
#define TELL(name) memory::CPause(), static_cast<std::set<std::string>*>(user)->insert(name), void()
                         callback.cbUSBDInfo = [](void* user, CSLSManager::SUSBDInfo*) { TELL("usbd"); };
                         callback.cbLctSession = [](void* user, CSLSManager::SLctSession*) { TELL("session"); };
                         callback.cbEFDTInfo = [](void* user, unsigned int tsi, SEFDTInfo* info) {
                             TELL(std::to_string(tsi) + (info->fdtGlobal ? "efdt" : ""));
                         };
                         callback.cbMPDInfo = [](void* user, SMPDInfo*) { TELL("mpd"); };
                         callback.cbAppData = [](void* user, const char*, unsigned int,
                                                 const CSLSManager::SSessionInfo*) { TELL("data"); };
                         callback.cbRSAT = [](void* user, CRSAT*) { TELL("rsat"); };
                         callback.cbRatingInfo = [](void* user, const CSLSManager::TRatings&) { TELL("rating"); };
#undef TELL
                         const auto digest = [=] {
                             std::string all;
                             for (const std::string& name : *told) {
                                 all += name + "\n";
                             }
                             return all;
                         };
                         return STrial{[=] { return manager->Create(&callback); },
                                       [=] {
                                           {
                                               const memory::CPause pause;
                                               told->clear();
                                           }
                                           manager->Parse(reinterpret_cast<const unsigned char*>(text.data()),
                                                          static_cast<unsigned int>(text.size()), nullptr, false);
                                           return told->size() == 8;
                                       },
                                       digest, [=] { manager->Destroy(); }};
                     }});

    for (const char* seed : {"pa", "mpi-with-mp", "mpt", "dci", "cri", "ac", "ls", "adc", "ldc", "signed-mpt",
                             "atsc-usbd-gzip", "atsc-rsat", "atsc-video"}) {
        kinds.push_back(Message(seed));
    }
    for (const char* seed : {"pa-every-location", "mp-every-identifier", "mp-every-descriptor", "mpi", "si"}) {
        kinds.push_back(MmtTable(seed));
    }
    for (const char* seed : {"video", "audio", "security", "captions", "dependencies", "mpu-timestamps"}) {
        kinds.push_back(Descriptor(seed));
    }
    kinds.push_back(Xml<CMMTUsbd>("mmt_usbd/every-element", 1, [](const CMMTUsbd& usbd) {
        std::string uri, name;
        std::vector<std::string> ratings;
        usbd.GetsTSIDUri(uri);
        usbd.GetComponentName(usbd.ComponentInfoSize() - 1, name);
        usbd.GetRatingStringTable(ratings);
        return Text(usbd.GlobalServiceId()) + uri + name + (ratings.empty() ? "" : ratings.back());
    }));

    for (const char* seed : {"esg_sgdu/gzip", "esg_sgdu/whole-fragments"}) {
        kinds.push_back({seed, [=] {
                             const auto unit = std::make_shared<CSGDUParse>();
                             const std::string bytes = Seed(seed, 1);
                             STrial trial{[=] { return unit->Create(); },
                                          [=] {
                                              unit->SetCompress(bytes[0] == '\x1F');
                                              return FeedTo(*unit, bytes);
                                          },
                                          [=] {
                                              const auto& all = unit->State()->arrayFragment;
                                              return all.empty()
                                                         ? std::string()
                                                         : Text(reinterpret_cast<const char*>(all.back()->data.get()));
                                          },
                                          [=] { unit->Destroy(); }};
                             trial.mayLose = true;  // a fragment that does not parse is dropped
                             return trial;
                         }});
    }
    kinds.push_back(Fragment<CESGServiceFragment>("esg_documents/service"));
    kinds.push_back(Fragment<CESGContentFragment>("esg_documents/content"));
    kinds.push_back(Fragment<CESGScheduleFragment>("esg_documents/schedule"));
    kinds.push_back(Xml<CSGDDParse>("esg_documents/sgdd", 1, ReadSgdd));
    kinds.push_back(Xml<CSGResponse>("esg_documents/response", 1, [](const CSGResponse& response) {
        return ReadSgdd(*response.State()->descriptors.back()) + Text(response.State()->privateExt.get());
    }));
    kinds.push_back({"esg_documents/genre-scheme", [] {
                         const auto names = std::make_shared<CGenreNameParse>();
                         const std::string text = Seed("esg_documents/genre-scheme", 1);
                         SGenreNameParse::refMap.clear();
                         return STrial{
                             [=] { return names->Create(); },
                             [=] { return names->Parse(text.data(), static_cast<unsigned int>(text.size())); },
                             [] { return std::to_string(SGenreNameParse::refMap.size()); },
                             [=] {
                                 names->Destroy();
                                 SGenreNameParse::refMap.clear();
                             }};
                     }});

    static const std::string k_long(100, 'x');
    kinds.push_back(Call(
        "channel map", [] { return s_map.Create(); },
        [] {
            const CChannelMap::SCallback callback = {nullptr, [](void*, void*) {}};
            std::string id, url, drm;
            void* clone = nullptr;
            void* service = s_map.AddService(nullptr, 1, 2, 3, 4, 5, 6, 7, true, nullptr);
            const bool done =
                s_map.SetCallback(&callback) && service && s_map.SetServiceName(service, k_long.data(), 50) &&
                s_map.SetGlobalServiceId(service, k_long.data(), 60) && s_map.SetSvcInetUrl(service, k_long.c_str()) &&
                s_map.GetGlobalServiceId(service, id) && s_map.GetSvcInetUrl(service, url) &&
                s_map.GetDrmSystemID(service, drm) && (clone = s_map.CloneService(service)) != nullptr;
            return (!clone || s_map.DeleteClonedService(clone)) && done;
        },
        Services, [] { s_map.Destroy(); }));
    kinds.push_back(Call(
        "rating map", [] { return s_ratings.Create(); },
        [] {
            char* text = const_cast<char*>(k_long.c_str());
            return s_ratings.Add(1, 2) && s_ratings.SetRegionIdText(1, text, text) &&
                   s_ratings.SetDimension(1, 3, true) && s_ratings.SetDimTitle(1, text, text) &&
                   s_ratings.SetRatingVal(1, 4) && s_ratings.SetRatingValAbbrev(1, text, text) &&
                   s_ratings.SetRatingValStr(1, text, text);
        },
        [] {
            std::string found;
            char* text = const_cast<char*>(k_long.c_str());
            s_ratings.GetProgramRating(
                1, 3, text, text,
                [](void* user, char* abbreviation) { *static_cast<std::string*>(user) = abbreviation; }, &found);
            return found;
        },
        [] { s_ratings.Destroy(); }));
    kinds.push_back(Call(
        "fragment map", [] { return s_fragments.Create(); }, [] { return s_fragments.Add(k_long.c_str()); },
        [] { return std::to_string(s_fragments.isExisted(k_long.c_str())); }, [] { s_fragments.Destroy(); }));
    static const std::string k_document =
        "<!DOCTYPE r [<!ENTITY e 'entity'>]><r a='1&e;'><b xmlns='urn:b'>text<c/>&e;</b></r>";
    kinds.push_back(Call(
        "CXML", [] { return s_xml.Create(k_document.data(), static_cast<int>(k_document.size()), false); },
        [] {
            void* root = nullptr;
            int size = 0;
            const bool moved = s_xml.MoveRoot(&root);
            const std::unique_ptr<char[]> text(moved ? s_xml.Content(root, nullptr) : nullptr);
            const std::unique_ptr<char[]> all(s_xml.Dump(s_xml.Doc(), &size));
            const std::unique_ptr<char[]> ns(moved ? s_xml.Ns(s_xml.MoveChild(root), nullptr) : nullptr);
            return text && all && ns;
        },
        [] {
            void* root = nullptr;
            s_xml.MoveRoot(&root);
            return s_xml.getStringContent(root, nullptr) + s_xml.getStringProp(root, "a", nullptr);
        },
        [] { s_xml.Destroy(); }));
    kinds.push_back(Call(
        "CheckCMS", [] { return true; },
        [] {
            static CParseSystemTime s_time;
            static const std::string k_table = "0123<r><CMSSignedData>" + k_long + "</CMSSignedData>" + k_long + "</r>";
            std::string xml, cms;
            return s_time.CheckCMS(reinterpret_cast<const unsigned char*>(k_table.data()),
                                   static_cast<int>(k_table.size()), xml, cms);
        },
        [] { return ""; }, [] {}));
    kinds.push_back({"containers", [] {
                         const auto array = std::make_shared<CCPtrArray>(CCPtrArray::DummyCallback, nullptr);
                         const auto hash = std::make_shared<CCStringHash>();
                         return STrial{
                             [=] { return hash->Create(7, 0xFFFFFFFF); },
                             [=] {
                                 for (int i = array->Size(); i < 40; ++i) {
                                     if (!array->Insert(0, array.get()) ||
                                         (!hash->Find(k_long.c_str() + i) && !hash->Add(k_long.c_str() + i, ""))) {
                                         return false;
                                     }
                                 }
                                 return array->Set(50, array.get()) && array->Add(nullptr);
                             },
                             [=] { return std::to_string(array->Size()); },
                             [=] {
                                 while (hash->SetPosition(CCStringHash::POS_HEAD, 0)) {
                                     hash->Remove();
                                 }
                                 hash->Destroy();
                                 array->RemoveAll();
                             }};
                     }});
    return kinds;
}

class OutOfMemoryTest : public testing::TestWithParam<SKind> {
  protected:
    void SetUp() override
    {
        memory::Install();
        const SPlatform platform = {Log, nullptr};
        SetPlatform(&platform);
        SetLogPriority(LOG_PRIORITY_DEBUG);
        SetFileRoot("/nowhere");
    }
};

TEST_P(OutOfMemoryTest, TheNthAllocationFails)
{
    const TMake& make = GetParam().make;
    std::string good;
    for (int i = 0; i < 2; ++i) {  // what is made once in a process is made in the first
        const STrial whole = make();
        ASSERT_TRUE(whole.create() && whole.parse());
        good = whole.digest();
        memory::Arm(1, true);
        whole.destroy();
        EXPECT_EQ(memory::Disarm(), 0) << "Destroy allocates";
    }
    s_told = 0;
    long failed = 0;
    for (const bool all : {false, true}) {
        for (long n = 1;; ++n) {
            SCOPED_TRACE(testing::Message() << "allocation " << n << (all ? " and all behind it" : ""));
            const STrial trial = make();
            bool created = false;
            bool parsed = false;
            const int told = s_told + s_failed;
            memory::Arm(n, all);
            try {
                created = trial.create();
                parsed = created && trial.parse();
            } catch (...) {
                memory::Disarm();
                FAIL() << "an exception came out";
            }
            const long hit = memory::Disarm();
            failed += hit > 0 && !parsed;
            if (hit == 0) {
                EXPECT_TRUE(parsed);
            } else if (parsed && !Holds(trial.digest(), good)) {
                EXPECT_GT(s_told + s_failed, told) << "lost without a word";
            }
            if (!created) {
                created = trial.create();
                ASSERT_TRUE(created) << "not to be created any more";
            }
            if (n % 4 != 0) {
                const bool whole = parsed && (hit == 0 || !trial.mayLose || Holds(trial.digest(), good));
                ASSERT_TRUE(whole || trial.parse()) << "not to be parsed any more";
                ASSERT_TRUE(Holds(trial.digest(), good)) << trial.digest() << " is not " << good;
            }
            trial.destroy();
            if (hit == 0) {
                break;
            }
        }
    }
    EXPECT_GT(failed, 1);
    EXPECT_GT(s_told, 0);
}

INSTANTIATE_TEST_SUITE_P(Every, OutOfMemoryTest, testing::ValuesIn(Kinds()),
                         [](const testing::TestParamInfo<SKind>& kind) {
                             std::string name = kind.param.name;
                             for (char& c : name) {
                                 c = std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
                             }
                             return name;
                         });

/// A description that cannot be read for want of memory leaves an id that can.
template <class T>
void ReadIdAgain(const std::string& root)
{
    memory::Install();
    T usbd;
    ASSERT_TRUE(usbd.Create());
    XMLBase& base = usbd;
    const std::string begin = '<' + root + "><UserServiceDescription globalServiceI", end = "/></" + root + '>';
    const std::string first = begin + "D='the first of them'" + end, second = begin + "d='the second of them'" + end;
    for (long n = 1, hit = 1; hit > 0; ++n) {
        ASSERT_TRUE(base.Parse(first.data(), static_cast<unsigned int>(first.size()), false));
        memory::Arm(n, false);
        const bool parsed = base.Parse(second.data(), static_cast<unsigned int>(second.size()), false);
        hit = memory::Disarm();
        const std::string id = Text(usbd.GlobalServiceId());
        EXPECT_TRUE(id == "the second of them" || (!parsed && id == "the first of them")) << n << ": " << id;
    }
    usbd.Destroy();
}

TEST(OutOfMemoryAgainTest, IdsOfDescriptionsStayReadable)
{
    ReadIdAgain<CROUTEUsbd>("BundleDescriptionROUTE");
    ReadIdAgain<CMMTUsbd>("BundleDescriptionMMT");
}

}  // namespace

/// Assertions are no failure here: what stands behind a failed creation is asserted.
void _TCParserAssert(const char* /*expression*/, const char* /*file*/, unsigned /*line*/) {}
