#include "route/SLS/AppSvc.h"

#include "common/Log.h"
#include "common/XmlParser.h"

using vyr::CNodeText;

struct CAppSvc::SState : vyr::SHandlers {
    SAppSvc values;
};

CAppSvc::CAppSvc(const STexts& texts) : m_texts(texts), m(nullptr) {}

CAppSvc::~CAppSvc() = default;

bool CAppSvc::Create()
{
    return vyr::CreateXmlParser(m, m_texts.create, VYR_HERE, [this] { return t_CreateCallback(); });
}

bool CAppSvc::t_CreateCallback()
{
    static constexpr vyr::SElementHandler<CAppSvc> k_handlers[] = {{"BasePattern", sm_CbBasePattern},
                                                                   {"basePattern", sm_CbBasePattern}};
    return vyr::AddHandlers(m->handlers, k_handlers);
}

void CAppSvc::Destroy()
{
    vyr::DestroyXmlParser(*this, m, m_texts.destroy, VYR_HERE);
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
    vyr::DispatchChildren(this, m->handlers, root, vyr::LOG_HANDLED_CHILDREN, m_texts.child, VYR_HERE);
    return true;
}

void CAppSvc::sm_CbBasePattern(CAppSvc* service, void* node)
{
    const CNodeText pattern = CNodeText::Content(node);
    if (!pattern.HasText()) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "%s", service->m_texts.noPattern);
        return;
    }
    service->m->values.basePatterns.emplace_back(pattern.Text());
}
