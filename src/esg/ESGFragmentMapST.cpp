#include "esg/ESGFragmentMapST.h"

#include <algorithm>

#include "common/Log.h"
#include "common/OutOfMemory.h"

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
    m = new std::vector<std::string>;
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
    m->emplace_back(id);
    return true;
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

bool CESGFragmentMapST::Remove(const char* id)
{
    if (!VYR_ASSERT(m, "m") || !id) {
        return false;
    }
    const auto found = std::find(m->begin(), m->end(), id);
    if (found == m->end()) {
        return false;
    }
    m->erase(found);
    return true;
}

bool CESGFragmentMapST::isExisted(const char* id) const
{
    return VYR_ASSERT(m, "m != nullptr") && id && std::find(m->begin(), m->end(), id) != m->end();
}
