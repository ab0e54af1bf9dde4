#include "route/SLS/UnicastAppSvc.h"

#include "common/XmlParser.h"
#include "platform/Log.h"

using vyr::CNodeText;

struct CUnicastAppSvc::SState : vyr::SHandlers {
    SAppSvc values;
};

CUnicastAppSvc::CUnicastAppSvc() : m(nullptr) {}

CUnicastAppSvc::~CUnicastAppSvc() = default;

bool CUnicastAppSvc::Create()
{
    return vyr::CreateXmlParser(m, "[CUnicastAppSvc::Create]", VYR_HERE, [this] { return t_CreateCallback(); });
}

bool CUnicastAppSvc::t_CreateCallback()
{
    static constexpr vyr::SElementHandler<CUnicastAppSvc> k_handlers[] = {{"BasePattern", sm_CbBasePattern},
                                                                          {"basePattern", sm_CbBasePattern}};
    return vyr::AddHandlers(m->handlers, k_handlers);
}

void CUnicastAppSvc::Destroy()
{
    vyr::DestroyXmlParser(*this, m, "[CUnicastAppSvc::Destroy]", VYR_HERE);
}

const SAppSvc* CUnicastAppSvc::State() const
{
    return m ? &m->values : nullptr;
}

bool CUnicastAppSvc::m_ProcessParse(void* root)
{
    if (!VYR_ASSERT(m, "m != nullptr")) {
        return false;
    }
    vyr::Renew(t_replace, m->values);
    vyr::DispatchChildren(this, m->handlers, root, vyr::LOG_HANDLED_CHILDREN,
                          "[CUnicastAppSvc::m_ProcessParseUnicastAppSvc] %s", VYR_HERE);
    return true;
}

void CUnicastAppSvc::sm_CbBasePattern(CUnicastAppSvc* service, void* node)
{
    const CNodeText pattern = CNodeText::Content(node);
    if (!pattern.HasText()) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CUnicastAppSvc::sm_CbBasePattern] basePattern value is not exist !!!");
        return;
    }
    service->m->values.basePatterns.emplace_back(pattern.Text());
}
