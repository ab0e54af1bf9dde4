#include "route/SLS/ServiceName.h"

#include <memory>

#include "common/Log.h"
#include "common/XmlNode.h"

struct CServiceName::SState {
    std::unique_ptr<char[]> lang;
};

CServiceName::CServiceName() : m(nullptr) {}

CServiceName::~CServiceName() = default;

bool CServiceName::Create()
{
    if (!VYR_ASSERT(!m, "!m")) {
        return false;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CServiceName::Create]");
    m = new SState;
    return true;
}

void CServiceName::Destroy()
{
    if (!VYR_ASSERT(m, "m")) {
        return;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CServiceName::Destroy]");
    XMLBase::Destroy();
    delete m;
    m = nullptr;
}

const char* CServiceName::Lang() const
{
    return VYR_ASSERT(m, "m") ? m->lang.get() : nullptr;
}

bool CServiceName::m_ProcessParse(void* root)
{
    if (!VYR_ASSERT(m, "m != nullptr")) {
        return false;
    }
    const bool given = vyr::CNodeText::Attribute(root, "lang").Found();
    m->lang.reset(given ? t_xml.PropStr(root, "lang", nullptr) : nullptr);
    return true;
}
