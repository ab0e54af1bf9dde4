#include "route/SLS/RS.h"

#include "common/Ipv4.h"
#include "common/XmlNode.h"
#include "common/XmlParser.h"
#include "platform/Log.h"

using vyr::CNodeText;

CRS::SRS::SRS()
    : bsid(65535), sIpAddr(0xFFFFFFFF), dIpAddr(0xFFFFFFFF), dPort(65535), ls(vyr::RemoveChild<CLS>, nullptr)
{
}

struct CRS::SState : vyr::SHandlers {
    SRS values;
    CLS::SCallback callback{};
};

CRS::CRS() : m(nullptr) {}

CRS::~CRS() = default;

bool CRS::Create()
{
    return vyr::CreateXmlParser(m, "[CRS::Create]", VYR_HERE, [this] { return t_CreateCallback(); });
}

bool CRS::t_CreateCallback()
{
    static constexpr vyr::SElementHandler<CRS> k_handlers[] = {{"LS", sm_CbLS}};
    return vyr::AddHandlers(m->handlers, k_handlers);
}

void CRS::Destroy()
{
    vyr::DestroyXmlParser(*this, m, "[CRS::Destroy]", VYR_HERE);
}

bool CRS::SetCallback(const CLS::SCallback* callback)
{
    return vyr::SetCallback(m, callback, VYR_HERE);
}

bool CRS::m_ProcessParse(void* root)
{
    if (!VYR_ASSERT(m, "m != nullptr")) {
        return false;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CRS::m_ProcessParseRS] process RS");
    vyr::Renew(t_replace, m->values);
    SRS& values = m->values;
    const CNodeText source = CNodeText::Attribute(root, "sIpAddr");
    if (source.Found()) {
        values.sIpAddr = vyr::Ipv4Address(source.Text());
    }
    const CNodeText destination = CNodeText::Attribute(root, "dIpAddr");
    if (destination.Found()) {
        values.dIpAddr = vyr::Ipv4Address(destination.Text());
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CRS::m_ProcessParseRS] dest ip = [%s]", destination.Text());
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CRS::m_ProcessParseRS] dest ip = [%u]", values.dIpAddr);
    }
    const int lowerCasePort = CNodeText::Attribute(root, "dport").Int(values.dPort);
    values.dPort = static_cast<unsigned short>(CNodeText::Attribute(root, "dPort").Int(lowerCasePort));
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CRS::m_ProcessParseRS] dest port = [%d]", values.dPort);
    vyr::DispatchChildren(this, m->handlers, root, vyr::LOG_NO_CHILDREN, "%s", VYR_HERE);
    return true;
}

void CRS::sm_CbLS(CRS* rs, void* cur)
{
    static constexpr vyr::SChildSteps k_steps = {"ls->Create()", "ls->Parse(root->t_xml.Doc(), cur)"};
    auto ls = vyr::BuildXmlChild<CLS>(rs->t_xml.Doc(), cur, k_steps, VYR_HERE, [rs](CLS& fresh) {
        return VYR_CHECK(fresh.SetCallback(&rs->m->callback), "ls->SetCallback(&m->callback)");
    });
    if (ls) {
        vyr::Append(rs->m->values.ls, std::move(ls));
    }
}

const CRS::SRS* CRS::State() const
{
    return m ? &m->values : nullptr;
}
