#include "route/SLS/DeliveryMethod.h"

#include "common/XmlParser.h"
#include "platform/Log.h"

struct CDeliveryMethod::SState : vyr::SHandlers {
    SDeliveryMethod values;

    ~SState() { Clear(); }

    void Clear()
    {
        for (CBroadcastAppSvc* service : values.broadcastAppSvcs) {
            vyr::SDestroy()(service);
        }
        for (CUnicastAppSvc* service : values.unicastAppSvcs) {
            vyr::SDestroy()(service);
        }
        values.broadcastAppSvcs.clear();
        values.unicastAppSvcs.clear();
    }
};

CDeliveryMethod::CDeliveryMethod() : m(nullptr) {}

CDeliveryMethod::~CDeliveryMethod() = default;

bool CDeliveryMethod::Create()
{
    return vyr::CreateXmlParser(m, "[CDeliveryMethod::Create]", VYR_HERE, [this] { return t_CreateCallback(); });
}

bool CDeliveryMethod::t_CreateCallback()
{
    static constexpr vyr::SElementHandler<CDeliveryMethod> k_handlers[] = {
        {"BroadcastAppService", sm_CbBroadcastAppSvc},
        {"broadcastAppService", sm_CbBroadcastAppSvc},
        {"UnicastAppService", sm_CbUnicastAppSvc},
        {"unicastAppService", sm_CbUnicastAppSvc},
    };
    return vyr::AddHandlers(m->handlers, k_handlers);
}

void CDeliveryMethod::Destroy()
{
    vyr::DestroyXmlParser(*this, m, "[CDeliveryMethod::Destroy]", VYR_HERE);
}

const CDeliveryMethod::SDeliveryMethod* CDeliveryMethod::State() const
{
    return m ? &m->values : nullptr;
}

bool CDeliveryMethod::m_ProcessParse(void* root)
{
    if (!VYR_ASSERT(m, "m != nullptr")) {
        return false;
    }
    if (t_replace) {
        m->Clear();
    }
    vyr::DispatchChildren(this, m->handlers, root, vyr::LOG_HANDLED_CHILDREN,
                          "[CDeliveryMethod::m_ProcessParseDeliveryMethod] %s", VYR_HERE);
    return true;
}

void CDeliveryMethod::sm_CbBroadcastAppSvc(CDeliveryMethod* method, void* cur)
{
    static constexpr vyr::SChildSteps k_steps = {"broadcastAppSvc->Create()",
                                                 "broadcastAppSvc->Parse(root->t_xml.Doc(), cur)"};
    if (auto service = vyr::BuildXmlChild<CBroadcastAppSvc>(method->t_xml.Doc(), cur, k_steps, VYR_HERE)) {
        method->m->values.broadcastAppSvcs.push_back(service.get());
        service.release();
    }
}

void CDeliveryMethod::sm_CbUnicastAppSvc(CDeliveryMethod* method, void* cur)
{
    static constexpr vyr::SChildSteps k_steps = {"unicastAppSvc->Create()",
                                                 "unicastAppSvc->Parse(root->t_xml.Doc(), cur)"};
    if (auto service = vyr::BuildXmlChild<CUnicastAppSvc>(method->t_xml.Doc(), cur, k_steps, VYR_HERE)) {
        method->m->values.unicastAppSvcs.push_back(service.get());
        service.release();
    }
}
