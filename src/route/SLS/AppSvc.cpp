#include "route/SLS/AppSvc.h"

#include "common/Log.h"
#include "common/XmlParser.h"

using vyr::CNodeText;

struct CAppSvc::SState : vyr::SHandlers {
    SAppSvc values;
};

CAppSvc::CAppSvc(const char* name) : m_name(name), m(nullptr) {}

CAppSvc::~CAppSvc() = default;

bool CAppSvc::Create()
{
    const std::string message = std::string("[C") + m_name + "::Create]";
    return vyr::CreateXmlParser(m, message.c_str(), VYR_HERE, [this] { return t_CreateCallback(); });
}

bool CAppSvc::t_CreateCallback()
{
    static constexpr vyr::SElementHandler<CAppSvc> k_handlers[] = {{"BasePattern", sm_CbBasePattern},
                                                                   {"basePattern", sm_CbBasePattern}};
    return vyr::AddHandlers(m->handlers, k_handlers);
}

void CAppSvc::Destroy()
{
    const std::string message = std::string("[C") + m_name + "::Destroy]";
    vyr::DestroyXmlParser(*this, m, message.c_str(), VYR_HERE);
}

const CAppSvc::SAppSvc* CAppSvc::State() const
{
    return m ? &m->values : nullptr;
}

bool CAppSvc::m_ProcessParse(void* root)
{
    if (!VYR_ASSERT(m, "m != nullptr")) {
        return false;
    }
    vyr::Renew(t_replace, m->values);
    const std::string format = std::string("[C") + m_name + "::m_ProcessParse" + m_name + "] %s";
    vyr::DispatchChildren(this, m->handlers, root, vyr::LOG_HANDLED_CHILDREN, format.c_str(), VYR_HERE);
    return true;
}

void CAppSvc::sm_CbBasePattern(CAppSvc* service, void* node)
{
    const CNodeText pattern = CNodeText::Content(node);
    if (!pattern.HasText()) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[C%s::sm_CbBasePattern] basePattern value is not exist !!!", service->m_name);
        return;
    }
    service->m->values.basePatterns.emplace_back(pattern.Text());
}
