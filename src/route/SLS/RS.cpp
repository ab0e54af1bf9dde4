#include "route/SLS/RS.h"

#include "common/XmlParser.h"
#include "common/XmlRead.h"
#include "platform/Log.h"

using vyr::CNodeText;

namespace {

struct SState : vyr::TXmlState<CRS::SRS> {
    CLS::SCallback callback{};
    CRS::SGiven given;

    bool m_ProcessParse(void* root) override;
};

void sm_CbLS(SState* m, void* node)
{
    vyr::AddChild(m->values.ls, *m, node, {"ls->Create()", "ls->Parse(root->t_xml.Doc(), cur)"},
                  [m](CLS& ls) { return VYR_CHECK(ls.SetCallback(&m->callback), "ls->SetCallback(&m->callback)"); });
}

constexpr vyr::SElementHandler<SState> k_handlers[] = {{"LS", sm_CbLS}};

bool SState::m_ProcessParse(void* root)
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CRS::m_ProcessParseRS] process RS");
    vyr::Renew(*this);
    vyr::ReadAttribute(root, "bsid", given.bsid);
    vyr::ReadIpv4(CNodeText::Attribute(root, "sIpAddr"), values.sIpAddr);
    const CNodeText destination = CNodeText::Attribute(root, "dIpAddr");
    if (vyr::ReadIpv4(destination, values.dIpAddr)) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CRS::m_ProcessParseRS] dest ip = [%s]", destination.Text());
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CRS::m_ProcessParseRS] dest ip = [%u]", values.dIpAddr);
    }
    vyr::ReadAttribute(root, "dport", values.dPort, values.dPort);
    vyr::ReadAttribute(root, "dPort", values.dPort, values.dPort);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CRS::m_ProcessParseRS] dest port = [%d]", values.dPort);
    vyr::DispatchChildren(this, k_handlers, root);
    return true;
}

}  // namespace

bool CRS::SetCallback(const CLS::SCallback* callback)
{
    return vyr::SetCallback(t_State<SState>(), callback);
}

const CRS::SGiven* CRS::Given() const
{
    const SState* state = t_State<SState>();
    return state ? &state->given : nullptr;
}

vyr::SXmlKind CRS::t_Kind() const
{
    return vyr::XmlKind<SState>("CRS");
}
