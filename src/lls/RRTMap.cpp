#include "lls/RRTMap.h"

#include "common/Log.h"
#include "lls/RRTMapST.h"

struct CRRTMap::SHandle {
    bool replace = false;
};

CRRTMap::CRRTMap() : m(nullptr) {}

CRRTMap::~CRRTMap()
{
    VYR_ASSERT(!m, "!m");
}

bool CRRTMap::Create()
{
    if (!VYR_ASSERT(!m, "!m")) {
        return false;
    }
    m = new SHandle;
    if (SRRTMap::rrtMapCnt++ == 0) {
        SRRTMap::rrtMap = std::make_unique<CRRTMapST>();
    }
    return true;
}

void CRRTMap::Destroy()
{
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
{
    return VYR_ASSERT(m, "m") && SRRTMap::rrtMap->Add(key, regionIdentifier, m->replace);
}

bool CRRTMap::Remove(unsigned char key)
{
    return VYR_ASSERT(m, "m") && SRRTMap::rrtMap->Remove(key);
}

bool CRRTMap::SetRegionIdText(unsigned char key, char* first, char* second)
{
    return VYR_ASSERT(m, "m") && SRRTMap::rrtMap->SetRegionIdText(key, first, second);
}

bool CRRTMap::SetDimension(unsigned char key, unsigned int index, bool flag)
{
    return VYR_ASSERT(m, "m") && SRRTMap::rrtMap->SetDimension(key, index, flag);
}

bool CRRTMap::SetDimTitle(unsigned char key, char* first, char* second)
{
    return VYR_ASSERT(m, "m") && SRRTMap::rrtMap->SetDimTitle(key, first, second);
}

bool CRRTMap::SetRatingVal(unsigned char key, unsigned int value)
{
    return VYR_ASSERT(m, "m") && SRRTMap::rrtMap->SetRatingVal(key, value);
}

bool CRRTMap::SetRatingValAbbrev(unsigned char key, char* first, char* second)
{
    return VYR_ASSERT(m, "m") && SRRTMap::rrtMap->SetRatingValAbbrev(key, first, second);
}

bool CRRTMap::SetRatingValStr(unsigned char key, char* first, char* second)
{
    return VYR_ASSERT(m, "m") && SRRTMap::rrtMap->SetRatingValStr(key, first, second);
}

bool CRRTMap::GetProgramRating(unsigned int key, unsigned int dimension, char* first, char* second,
                               void (*fn)(void* userData, char* text), void* userData)
{
    return VYR_ASSERT(m, "m") && SRRTMap::rrtMap->GetProgramRating(key, dimension, first, second, fn, userData);
}
