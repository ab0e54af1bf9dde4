// SLS buffers: the first byte says what of the manager is used, and what follows are up to four buffers
// in a row. Everything that callbacks were handed is read again after each of them.
// Sources: src/route
#include <cstring>
#include <string>

#include "Fuzz.h"
#include "Mutate.h"
#include "common/RSAT.h"
#include "platform/Platform.h"
#include "route/SLS/EFDT.h"
#include "route/SLS/MPD.h"
#include "route/SLS/ROUTEUsbd.h"
#include "route/SLS/STSID.h"
#include "route/SLSManager.h"

namespace {

/// What is good until the next document of its kind.
struct SHeld {
    std::vector<std::pair<unsigned int, const SEFDTInfo*>> efdts;
    const SEFDTInfo* direct = nullptr;
    const SMPDInfo* mpd = nullptr;
    const CRSAT* rsat = nullptr;
    std::size_t read = 0;
};

SHeld& Held(void* user)
{
    return *static_cast<SHeld*>(user);
}

std::size_t Sum(const SEFDTInfo* info)
{
    return info
               ? info->tsi + std::strlen(info->idRef) + (info->fdtGlobal ? info->fdtGlobal->appContextIdList.size() : 0)
               : 0;
}

void OnLct(void* user, CSLSManager::SLctSession* session)
{
    Held(user).efdts.clear();
    Held(user).read += session->contentId.size() + session->aeaId.size() + Sum(session->efdtInfo);
    Require(session->bsid == 65535);
}

void OnEfdt(void* user, unsigned int tsi, SEFDTInfo* info)
{
    auto& efdts = Held(user).efdts;
    Require(efdts.empty() || efdts.back().first < tsi);
    efdts.emplace_back(tsi, info);
}

void OnUsbd(void* user, CSLSManager::SUSBDInfo* info)
{
    Held(user).read += info->globalServiceId.size();
    for (const std::string& pattern : info->basePatterns) {
        Require(!pattern.empty());
    }
}

void OnDirect(void* user, unsigned int /*sessionId*/, SEFDTInfo* info, const CSLSManager::SSessionInfo* session)
{
    Require(session != nullptr);
    Held(user).direct = info;
}

void OnMpd(void* user, const char* mpd, unsigned int length, unsigned short /*serviceId*/)
{
    Require(length <= 131071 && std::memcmp(mpd, "<MPD", 4) == 0);
    Held(user).read += static_cast<unsigned char>(mpd[length - 1]);
}

void OnMpdInfo(void* user, SMPDInfo* info)
{
    Held(user).mpd = info;
}

void OnAppData(void* user, const char* data, unsigned int length, const CSLSManager::SSessionInfo* /*session*/)
{
    Require(length > 0 && length <= 131071);
    Held(user).read += static_cast<unsigned char>(data[length - 1]);
}

void OnRsat(void* user, CRSAT* rsat)
{
    Held(user).rsat = rsat;
}

void OnRatings(void* /*user*/, const CSLSManager::TRatings& ratings)
{
    for (auto rating = ratings.begin(); std::next(rating) != ratings.end(); ++rating) {
        Require(*rating < *std::next(rating));
    }
}

void ReadAgain(SHeld& held, const CSLSManager& manager)
{
    if (manager.Stsid()) {
        for (const auto& [tsi, info] : held.efdts) {
            held.read += Sum(info);
        }
    }
    held.read += held.mpd ? held.mpd->periods.size() : 0;
    held.read += held.rsat ? static_cast<std::size_t>(held.rsat->NumOfService()) : 0;
    held.read += Sum(held.direct);
}

bool Contains(const std::vector<unsigned char>& buffer, const char* tag)
{
    return std::search(buffer.begin(), buffer.end(), tag, tag + std::strlen(tag)) != buffer.end();
}

}  // namespace

VYR_MUTATOR(MutateXml)

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    SetLogPriority(LOG_PRIORITY_SILENT);
    CScript script(data, size);
    const std::uint8_t use = script.Byte();
    SHeld held;
    const CSLSManager::SCallback callback = {&held, OnLct,     OnEfdt,    OnUsbd, OnDirect,
                                             OnMpd, OnMpdInfo, OnAppData, OnRsat, OnRatings};
    const CSLSManager::SSessionInfo session = {1, 2, 3, 4};
    CSLSManager manager;
    manager.Create(use & 1 ? nullptr : &callback);
    ForEachPart(script.Rest(), 4, [&](const std::vector<unsigned char>& buffer) {
        // What a new document of its kind may let go of.
        held.mpd = Contains(buffer, "<MPD") ? nullptr : held.mpd;
        held.rsat = Contains(buffer, "<RSAT") ? nullptr : held.rsat;
        held.direct = Contains(buffer, "<EFDT") ? nullptr : held.direct;
        if (Contains(buffer, "<S-TSID")) {
            held.efdts.clear();
        }
        manager.Parse(buffer.data(), static_cast<unsigned int>(buffer.size()), use & 2 ? nullptr : &session,
                      (use & 4) != 0);
        ReadAgain(held, manager);
    });
    manager.Destroy();
    return 0;
}
