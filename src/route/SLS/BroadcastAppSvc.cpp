#include "route/SLS/BroadcastAppSvc.h"

#include "common/XmlParser.h"
#include "platform/Log.h"

using vyr::CNodeText;

struct CBroadcastAppSvc::SState : vyr::SHandlers {
    SAppSvc values;
};

CBroadcastAppSvc::CBroadcastAppSvc() : m(nullptr) {}

CBroadcastAppSvc::~CBroadcastAppSvc() = default;

bool CBroadcastAppSvc::Create()
{
    return vyr::CreateXmlParser(m, "[CBroadcastAppSvc::Create]", VYR_HERE, [this] { return t_CreateCallback(); });
}

bool CBroadcastAppSvc::t_CreateCallback()
{
    static constexpr vyr::SElementHandler<CBroadcastAppSvc> k_handlers[] = {{"BasePattern", sm_CbBasePattern},
                                                                            {"basePattern", sm_CbBasePattern}};
    return vyr::AddHandlers(m->handlers, k_handlers);
}

void CBroadcastAppSvc::Destroy()
{
    vyr::DestroyXmlParser(*this, m, "[CBroadcastAppSvc::Destroy]", VYR_HERE);
}

const SAppSvc* CBroadcastAppSvc::State() const
{
    return m ? &m->values : nullptr;
}

bool CBroadcastAppSvc::m_ProcessParse(void* root)
{
    if (!VYR_ASSERT(m, "m != nullptr")) {
        return false;
    }
    vyr::Renew(t_replace, m->values);
    vyr::DispatchChildren(this, m->handlers, root, vyr::LOG_HANDLED_CHILDREN,
                          "[CBroadcastAppSvc::m_ProcessParseBroadcastAppSvc] %s", VYR_HERE);
    return true;
}

void CBroadcastAppSvc::sm_CbBasePattern(CBroadcastAppSvc* service, void* node)
{
    const CNodeText pattern = CNodeText::Content(node);
    if (!pattern.HasText()) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CBroadcastAppSvc::sm_CbBasePattern] basePattern value is not exist !!!");
        return;
    }
    service->m->values.basePatterns.emplace_back(pattern.Text());
}
