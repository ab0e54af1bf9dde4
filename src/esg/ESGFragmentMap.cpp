#include "esg/ESGFragmentMap.h"

#include <memory>
#include <mutex>

#include "common/OutOfMemory.h"
#include "platform/Log.h"

CESGFragmentMapST SESGFragmentMap::refMap;
int SESGFragmentMap::refMapCnt = 0;

/// A handle has nothing of its own but the fact that it is created.
struct CESGFragmentMap::SHandle {};

// Store and count belong to all handles, on whatever thread. Recursive: log and assertion sink may call back.
static std::recursive_mutex s_mutex;
using TLock = std::lock_guard<std::recursive_mutex>;

CESGFragmentMap::CESGFragmentMap() : m(nullptr) {}

CESGFragmentMap::~CESGFragmentMap()
{
    VYR_ASSERT(!m, "!m");
}

bool CESGFragmentMap::Create()
try {
    const TLock lock(s_mutex);
    if (!VYR_ASSERT(!m, "!m")) {
        return false;
    }
    auto handle = std::make_unique<SHandle>();
    if (SESGFragmentMap::refMapCnt == 0 && !SESGFragmentMap::refMap.Create()) {
        return false;
    }
    m = handle.release();
    ++SESGFragmentMap::refMapCnt;
    return true;
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

void CESGFragmentMap::Destroy()
{
    const TLock lock(s_mutex);
    if (!VYR_ASSERT(m, "m")) {
        return;
    }
    if (--SESGFragmentMap::refMapCnt == 0) {
        SESGFragmentMap::refMap.Destroy();
    }
    delete m;
    m = nullptr;
}

bool CESGFragmentMap::Add(const char* id)
{
    const TLock lock(s_mutex);
    return VYR_ASSERT(m, "m") && SESGFragmentMap::refMap.Add(id);
}

bool CESGFragmentMap::Remove(const char* id)
{
    const TLock lock(s_mutex);
    return VYR_ASSERT(m, "m") && SESGFragmentMap::refMap.Remove(id);
}

bool CESGFragmentMap::isExisted(const char* id) const
{
    const TLock lock(s_mutex);
    return VYR_ASSERT(m, "m") && SESGFragmentMap::refMap.isExisted(id);
}
