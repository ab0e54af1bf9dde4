#include "esg/ESGFragmentMapST.h"

#include "common/OutOfMemory.h"
#include "platform/Log.h"

CESGFragmentMapST::CESGFragmentMapST() : m(nullptr) {}

CESGFragmentMapST::~CESGFragmentMapST()
{
    VYR_ASSERT(!m, "!m");
}

bool CESGFragmentMapST::Create()
try {
    if (!VYR_ASSERT(!m, "!m")) {
        return false;
    }
    m = new TIds;
    return true;
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

void CESGFragmentMapST::Destroy()
{
    if (VYR_ASSERT(m, "m")) {
        delete m;
        m = nullptr;
    }
}

bool CESGFragmentMapST::Add(const char* id)
try {
    if (!VYR_ASSERT(m, "m") || !id) {
        return false;
    }
    m->emplace(id);
    return true;
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

bool CESGFragmentMapST::Remove(const char* id)
{
    if (!VYR_ASSERT(m, "m") || !id) {
        return false;
    }
    const auto found = m->find(id);
    if (found == m->end()) {
        return false;
    }
    m->erase(found);
    return true;
}

bool CESGFragmentMapST::isExisted(const char* id) const
{
    return VYR_ASSERT(m, "m != nullptr") && id && m->find(id) != m->end();
}
