// Documents of ROUTE service-layer signalling: the first byte picks the parser, and what follows are up
// to four documents in a row on it.
// Sources: src/route/SLS/[!M]*.cpp src/route/SLS/MediaInfo.cpp src/common/RSAT.cpp src/common/ServiceLinkage.cpp
#include <string>

#include "Fuzz.h"
#include "Mutate.h"
#include "common/RSAT.h"
#include "common/ServiceLinkage.h"
#include "platform/Platform.h"
#include "route/SLS/DeliveryMethod.h"
#include "route/SLS/EFDT.h"
#include "route/SLS/ROUTEUsbd.h"
#include "route/SLS/STSID.h"

namespace {

void Read(const CRSAT& rsat)
{
    SRSATServiceInfo service;
    SRSATUpdateInfo update;
    for (int i = 0; i < rsat.NumOfService(); ++i) {
        Require(rsat.GetServiceInfo(i, &service) && static_cast<int>(service.updates.size()) == rsat.NumOfUpdate(i));
        Require(rsat.NumOfUpdate(i) == 0 || rsat.GetUpdateInfo(i, rsat.NumOfUpdate(i) - 1, &update));
    }
    Require(!rsat.GetServiceInfo(rsat.NumOfService(), &service));
}

void Read(const CServiceLinkage& linkage)
{
    Require(linkage.LinkServiceId() == linkage.State()->serviceId);
    linkage.Dump();
}

void Read(const CDeliveryMethod& method)
{
    for (const CBroadcastAppSvc* service : method.State()->broadcastAppSvcs) {
        for (const std::string& pattern : service->State()->basePatterns) {
            Require(!pattern.empty());
        }
    }
}

void Read(const CEFDT& efdt)
{
    const SEFDTInfo* info = efdt.GetEFDTInfo();
    if (info && info->fdtGlobal) {
        Require(info->idRef != nullptr);
        for (int i = 0; i < info->fdtGlobal->files.Size(); ++i) {
            Require(info->fdtGlobal->files.Data(i) != nullptr);
        }
    }
}

void Read(const CROUTEUsbd& usbd)
{
    Require((usbd.State()->serviceLinkage == nullptr) == (usbd.LinkServiceId() == -1));
    for (int i = 0; i < usbd.State()->languages.Size(); ++i) {
        Require(*static_cast<const char*>(usbd.State()->languages.Data(i)) != 0);
    }
}

void Read(const CSTSID& stsid)
{
    std::string text;
    for (int i = 0; i < stsid.NumberOfRouteSessions(); ++i) {
        Require(stsid.BsId(i) == 65535);
        for (int j = 0; j < stsid.NumberOfLctSessions(i); ++j) {
            unsigned int tsi = 0;
            Require(stsid.GetTSI(i, j, &tsi));
            stsid.GetContentId(i, j, text);
            const SEFDTInfo* efdt = stsid.GetEFDTInfo(i, j);
            Require(!efdt || efdt->idRef);
            const int ratings = stsid.NumberOfContentRatings(i, j);
            Require(ratings == 0 || stsid.GetContentRating(i, j, ratings - 1, text));
            Require(!stsid.GetContentRating(i, j, ratings, text));
        }
    }
}

template <class TParser>
void Run(const std::vector<unsigned char>& all)
{
    TParser parser;
    parser.Create();
    ForEachPart(all, 4, [&parser](const std::vector<unsigned char>& document) {
        static_cast<XMLBase&>(parser).Parse(reinterpret_cast<const char*>(document.data()),
                                            static_cast<unsigned int>(document.size()), false);
        Read(parser);
    });
    parser.Destroy();
}

}  // namespace

VYR_MUTATOR(MutateXml)

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    SetLogPriority(LOG_PRIORITY_SILENT);
    CScript script(data, size);
    const std::uint8_t kind = script.Byte() % 6;
    const std::vector<unsigned char> documents = script.Rest();
    switch (kind) {
        case 0:
            Run<CRSAT>(documents);
            break;
        case 1:
            Run<CServiceLinkage>(documents);
            break;
        case 2:
            Run<CDeliveryMethod>(documents);
            break;
        case 3:
            Run<CEFDT>(documents);
            break;
        case 4:
            Run<CROUTEUsbd>(documents);
            break;
        default:
            Run<CSTSID>(documents);
            break;
    }
    return 0;
}
