#include "lls/RRTMap.h"

#include <mutex>

#include "common/OutOfMemory.h"
#include "lls/RRTMapST.h"
#include "platform/Log.h"

struct CRRTMap::SHandle {
    bool replace = false;
};

// Store and count belong to all handles, on whatever thread. Recursive: log and assertion sink may call back.
static std::recursive_mutex s_mutex;
using TLock = std::lock_guard<std::recursive_mutex>;

CRRTMap::CRRTMap() : m(nullptr) {}

CRRTMap::~CRRTMap()
{
    VYR_ASSERT(!m, "!m");
}

bool CRRTMap::Create()
try {
    const TLock lock(s_mutex);
    if (!VYR_ASSERT(!m, "!m")) {
        return false;
    }
    auto handle = std::make_unique<SHandle>();
    if (SRRTMap::rrtMapCnt == 0) {
        SRRTMap::rrtMap = std::make_unique<CRRTMapST>();
    }
    ++SRRTMap::rrtMapCnt;
    m = handle.release();
    return true;
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

void CRRTMap::Destroy()
{
    const TLock lock(s_mutex);
    if (!VYR_ASSERT(m, "m")) {
        return;
    }
    if (--SRRTMap::rrtMapCnt == 0) {
        SRRTMap::rrtMap.reset();
    }
    delete m;
    m = nullptr;
}

void CRRTMap::SetReplace(bool replace)
{
    if (VYR_ASSERT(m, "m")) {
        m->replace = replace;
    }
}

bool CRRTMap::Add(unsigned char key, unsigned int regionIdentifier)
try {
    const TLock lock(s_mutex);
    return VYR_ASSERT(m, "m") && SRRTMap::rrtMap->Add(key, regionIdentifier, m->replace);
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

bool CRRTMap::Remove(unsigned char key)
{
    const TLock lock(s_mutex);
    return VYR_ASSERT(m, "m") && SRRTMap::rrtMap->Remove(key);
}

bool CRRTMap::SetRegionIdText(unsigned char key, char* first, char* second)
try {
    const TLock lock(s_mutex);
    return VYR_ASSERT(m, "m") && SRRTMap::rrtMap->SetRegionIdText(key, first, second);
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

bool CRRTMap::SetDimension(unsigned char key, unsigned int index, bool flag)
try {
    const TLock lock(s_mutex);
    return VYR_ASSERT(m, "m") && SRRTMap::rrtMap->SetDimension(key, index, flag);
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

bool CRRTMap::SetDimTitle(unsigned char key, char* first, char* second)
try {
    const TLock lock(s_mutex);
    return VYR_ASSERT(m, "m") && SRRTMap::rrtMap->SetDimTitle(key, first, second);
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

bool CRRTMap::SetRatingVal(unsigned char key, unsigned int value)
try {
    const TLock lock(s_mutex);
    return VYR_ASSERT(m, "m") && SRRTMap::rrtMap->SetRatingVal(key, value);
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

bool CRRTMap::SetRatingValAbbrev(unsigned char key, char* first, char* second)
try {
    const TLock lock(s_mutex);
    return VYR_ASSERT(m, "m") && SRRTMap::rrtMap->SetRatingValAbbrev(key, first, second);
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

bool CRRTMap::SetRatingValStr(unsigned char key, char* first, char* second)
try {
    const TLock lock(s_mutex);
    return VYR_ASSERT(m, "m") && SRRTMap::rrtMap->SetRatingValStr(key, first, second);
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

bool CRRTMap::GetProgramRating(unsigned int key, unsigned int dimension, char* first, char* second,
                               void (*fn)(void* userData, char* text), void* userData)
{
    // The callback comes outside the lock.
    char* text = nullptr;
    const auto take = [](void* out, char* found) { *static_cast<char**>(out) = found; };
    {
        const TLock lock(s_mutex);
        if (!VYR_ASSERT(m, "m") ||
            !SRRTMap::rrtMap->GetProgramRating(key, dimension, first, second, fn ? +take : nullptr, &text)) {
            return false;
        }
    }
    fn(userData, text);
    return true;
}
