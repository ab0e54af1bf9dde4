#include "route/SLS/ServiceName.h"

#include <memory>

#include "common/XmlNode.h"
#include "common/XmlParser.h"
#include "platform/Log.h"

struct CServiceName::SState {
    std::unique_ptr<char[]> lang;
};

CServiceName::CServiceName() : m(nullptr) {}

CServiceName::~CServiceName() = default;

bool CServiceName::Create()
{
    return vyr::CreateXmlParser(m, "[CServiceName::Create]", VYR_HERE);
}

void CServiceName::Destroy()
{
    vyr::DestroyXmlParser(*this, m, "[CServiceName::Destroy]", VYR_HERE);
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
    m->lang.reset(given ? vyr::Allocated(t_xml.PropStr(root, "lang", nullptr)) : nullptr);
    return true;
}
