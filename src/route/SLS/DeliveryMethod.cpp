#include "route/SLS/DeliveryMethod.h"

#include "common/XmlParser.h"

namespace {

struct SState : vyr::TXmlState<CDeliveryMethod::SDeliveryMethod> {
    bool m_ProcessParse(void* root) override;
};

void sm_CbBroadcastAppSvc(SState* m, void* node)
{
    vyr::AddChild(m->values.broadcastAppSvcs, *m, node,
                  {"broadcastAppSvc->Create()", "broadcastAppSvc->Parse(root->t_xml.Doc(), cur)"});
}

void sm_CbUnicastAppSvc(SState* m, void* node)
{
    vyr::AddChild(m->values.unicastAppSvcs, *m, node,
                  {"unicastAppSvc->Create()", "unicastAppSvc->Parse(root->t_xml.Doc(), cur)"});
}

constexpr vyr::SElementHandler<SState> k_handlers[] = {
    {"BroadcastAppService", sm_CbBroadcastAppSvc},
    {"broadcastAppService", sm_CbBroadcastAppSvc},
    {"UnicastAppService", sm_CbUnicastAppSvc},
    {"unicastAppService", sm_CbUnicastAppSvc},
};

bool SState::m_ProcessParse(void* root)
{
    vyr::Renew(*this);
    vyr::DispatchChildren(this, k_handlers, root, "[CDeliveryMethod::m_ProcessParseDeliveryMethod] %s");
    return true;
}

}  // namespace

vyr::SXmlKind CDeliveryMethod::t_Kind() const
{
    return vyr::XmlKind<SState>("CDeliveryMethod");
}
