#include <numeric>
#include <set>

#include "common/RSAT.h"
#include "common/ServiceLinkage.h"
#include "entries/Entries.h"
#include "route/SLS/DeliveryMethod.h"
#include "route/SLS/EFDT.h"
#include "route/SLS/MPD.h"
#include "route/SLS/ROUTEUsbd.h"
#include "route/SLS/STSID.h"
#include "route/SLSManager.h"

namespace {

std::string Digest(const CSTSID& stsid)
{
    std::set<std::string> sessions;
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
        sessions.insert(rs + "\n");
    }
    return std::accumulate(sessions.begin(), sessions.end(), std::string());
}

bool CreateWithCallback(CSTSID& stsid, const TBytes& /*input*/)
{
    const CLS::SCallback callback = {nullptr, [](void*, unsigned int, SEFDTInfo*) {}};
    return stsid.Create() && stsid.SetCallback(&callback);
}

std::string Digest(const CROUTEUsbd& usbd)
{
    const auto* method =
        static_cast<const CDeliveryMethod*>(usbd.State()->deliveryMethods.Data(usbd.NumOfDeliveryMethod() - 1));
    return TextOf(usbd.GlobalServiceId()) + std::to_string(method ? method->State()->unicastAppSvcs.Size() : -1) +
           TextOf(usbd.ActivationTime());
}

std::string Digest(const CEFDT& efdt)
{
    const SFDTGlobal* global = efdt.GetEFDTInfo()->fdtGlobal;
    return global ? TextOf(global->contentType) + std::to_string(global->files.Size()) : "";
}

std::string Digest(const CRSAT& rsat)
{
    SRSATServiceInfo service;
    SRSATUpdateInfo update;
    rsat.GetServiceInfo(rsat.NumOfService() - 1, &service);
    rsat.GetUpdateInfo(rsat.NumOfService() - 1, 0, &update);
    return service.frequency + std::to_string(service.updates.size()) + update.validFrom;
}

std::string Digest(const CServiceLinkage& linkage)
{
    return TextOf(linkage.ActivationTime()) + TextOf(linkage.State()->linkageData);
}

std::string Digest(const CMPD& mpd)
{
    const SMPDInfo* info = mpd.GetMPDInfo();
    return info && !info->periods.empty()
               ? std::to_string(info->periods.size()) + std::to_string(info->periods.back().adaptationSets.size())
               : "";
}

bool CreateWithCallback(CMPD& mpd, const TBytes& /*input*/)
{
    const CMPD::SCallback callback = {nullptr, [](void*, SMPDInfo*) {}, [](void*, const CMPD::TRatings&) {}};
    return mpd.Create() && mpd.SetCallback(&callback);
}

/// The manager, and which of its callbacks were called.
struct SManager {
    template <int TBit, class... T>
    static void Tell(void* user, T... /*arguments*/)
    {
        static_cast<SManager*>(user)->told |= TBit;
    }
    bool Create()
    {
        const CSLSManager::SCallback callback = {this,    Tell<1>, Tell<2>,  Tell<4>,  nullptr,
                                                 nullptr, Tell<8>, Tell<16>, Tell<32>, Tell<64>};
        return manager.Create(&callback);
    }
    void Destroy() { manager.Destroy(); }

    CSLSManager manager;
    int told = 0;
};

bool Parse(SManager& manager, TBytes& package)
{
    manager.told = 0;
    manager.manager.Parse(reinterpret_cast<const unsigned char*>(package.data()),
                          static_cast<unsigned int>(package.size()), nullptr, false);
    return manager.told == 127;
}

std::string Digest(const SManager& manager)
{
    return std::to_string(manager.told);
}

}  // namespace

TEntryKinds RouteEntries()
{
    SEntryKind manager = EntryKind<SManager>("sls_manager/every-kind", 1, CreatePlainly<SManager>, Parse, Digest);
    manager.make = [of = manager.makeOf] {
        return of(Seed("sls_manager/every-kind", 1) + "\n" + Seed("route_documents/stsid", 1));
    };
    TEntryKinds kinds = {
        DocumentKind<CSTSID>("route_documents/stsid", 1, Digest, CreateWithCallback),
        DocumentKind<CSTSID>("route_documents/stsid-ratings", 1, Digest),
        DocumentKind<CROUTEUsbd>("route_documents/usbd", 1, Digest),
        DocumentKind<CEFDT>("route_documents/real-fdt", 1, Digest),
        DocumentKind<CRSAT>("route_documents/rsat", 1, Digest),
        DocumentKind<CServiceLinkage>("route_documents/service-linkage", 1, Digest),
        manager,
    };
    for (const char* seed : {"mpd/template-timeline", "mpd/protection", "mpd/segment-list-ranges"}) {
        kinds.push_back(DocumentKind<CMPD>(seed, 0, Digest, CreateWithCallback));
    }
    return kinds;
}
