#include "esg/ESGFragmentMap.h"

#include "common/Log.h"

CESGFragmentMapST SESGFragmentMap::refMap;
int SESGFragmentMap::refMapCnt = 0;

/// A handle has nothing of its own but the fact that it is created.
struct CESGFragmentMap::SHandle {};

CESGFragmentMap::CESGFragmentMap() : m(nullptr) {}

CESGFragmentMap::~CESGFragmentMap()
{
    VYR_ASSERT(!m, "!m");
}

bool CESGFragmentMap::Create()
{
    if (!VYR_ASSERT(!m, "!m")) {
        return false;
    }
    if (SESGFragmentMap::refMapCnt == 0 && !SESGFragmentMap::refMap.Create()) {
        return false;
    }
    m = new SHandle;
    ++SESGFragmentMap::refMapCnt;
    return true;
}

void CESGFragmentMap::Destroy()
{
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
    return VYR_ASSERT(m, "m") && SESGFragmentMap::refMap.Add(id);
}

bool CESGFragmentMap::Remove(const char* id)
{
    return VYR_ASSERT(m, "m") && SESGFragmentMap::refMap.Remove(id);
}

bool CESGFragmentMap::isExisted(const char* id) const
{
    return VYR_ASSERT(m, "m") && SESGFragmentMap::refMap.isExisted(id);
}
