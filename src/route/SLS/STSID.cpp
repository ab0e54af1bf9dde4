#include "route/SLS/STSID.h"

#include "common/XmlParser.h"
#include "platform/Log.h"
#include "route/SLS/RS.h"

CSTSID::SSTSID::SSTSID() : routeSessions(vyr::RemoveChild<CRS>, nullptr) {}

struct CSTSID::SState : vyr::SHandlers {
    SSTSID values;
    CLS::SCallback callback{};

    /// An index without a session is asserted by the array: null.
    const CRS::SRS* Rs(int i) const
    {
        const auto* rs = static_cast<const CRS*>(values.routeSessions.Data(i));
        return rs ? rs->State() : nullptr;
    }
};

CSTSID::CSTSID() : m(nullptr)
{
    t_keepsDocument = false;
}

CSTSID::~CSTSID() = default;

bool CSTSID::Create()
{
    return vyr::CreateXmlParser(m, "[CSTSID::Create]", VYR_HERE, [this] { return t_CreateCallback(); });
}

bool CSTSID::t_CreateCallback()
{
    static constexpr vyr::SElementHandler<CSTSID> k_handlers[] = {{"RS", sm_CbRS}};
    return vyr::AddHandlers(m->handlers, k_handlers);
}

void CSTSID::Destroy()
{
    vyr::DestroyXmlParser(*this, m, "[CSTSID::Destroy]", VYR_HERE);
}

bool CSTSID::SetCallback(const CLS::SCallback* callback)
{
    return vyr::SetCallback(m, callback, VYR_HERE);
}

bool CSTSID::m_ProcessParse(void* root)
{
    if (!VYR_ASSERT(m, "m != nullptr")) {
        return false;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CSTSID::m_ProcessParseSTSID] process STSID");
    vyr::Renew(t_replace, m->values);
    vyr::DispatchChildren(this, m->handlers, root, vyr::LOG_NO_CHILDREN, "%s", VYR_HERE);
    return true;
}

void CSTSID::sm_CbRS(CSTSID* stsid, void* cur)
{
    static constexpr vyr::SChildSteps k_steps = {"rs->Create()", "rs->Parse(root->t_xml.Doc(), cur)"};
    auto rs = vyr::BuildXmlChild<CRS>(stsid->t_xml.Doc(), cur, k_steps, VYR_HERE,
                                      [stsid](CRS& fresh) { return fresh.SetCallback(&stsid->m->callback); });
    if (rs) {
        vyr::Append(stsid->m->values.routeSessions, std::move(rs));
    }
}

const CLS* CSTSID::m_Ls(int i, int j) const
{
    const CRS::SRS* rs = VYR_ASSERT(m, "m") ? m->Rs(i) : nullptr;
    return rs ? static_cast<const CLS*>(rs->ls.Data(j)) : nullptr;
}

int CSTSID::NumberOfRouteSessions() const
{
    return VYR_ASSERT(m, "m") ? m->values.routeSessions.Size() : 0;
}

int CSTSID::NumberOfLctSessions(int i) const
{
    const CRS::SRS* rs = VYR_ASSERT(m, "m") ? m->Rs(i) : nullptr;
    return rs ? rs->ls.Size() : 0;
}

unsigned short CSTSID::BsId(int i) const
{
    const CRS::SRS* rs = VYR_ASSERT(m, "m") ? m->Rs(i) : nullptr;
    return rs ? rs->bsid : static_cast<unsigned short>(0);
}

unsigned int CSTSID::SIpAddr(int i) const
{
    const CRS::SRS* rs = VYR_ASSERT(m, "m") ? m->Rs(i) : nullptr;
    return rs ? rs->sIpAddr : 0;
}

unsigned int CSTSID::DIpAddr(int i) const
{
    const CRS::SRS* rs = VYR_ASSERT(m, "m") ? m->Rs(i) : nullptr;
    return rs ? rs->dIpAddr : 0;
}

unsigned short CSTSID::DPort(int i) const
{
    const CRS::SRS* rs = VYR_ASSERT(m, "m") ? m->Rs(i) : nullptr;
    return rs ? rs->dPort : static_cast<unsigned short>(0);
}

bool CSTSID::GetTSI(int i, int j, unsigned int* tsi) const
{
    const CRS::SRS* rs = VYR_ASSERT(m, "m") ? m->Rs(i) : nullptr;
    void* ls = nullptr;
    if (!rs || !rs->ls.GetAt(j, &ls) || !VYR_ASSERT(tsi, "tsi")) {
        return false;
    }
    *tsi = static_cast<const CLS*>(ls)->TSI();
    return true;
}

bool CSTSID::GetContentId(int i, int j, std::string& out) const
{
    if (const CLS* ls = m_Ls(i, j)) {
        return ls->GetContentId(out);
    }
    out.clear();
    return false;
}

std::string CSTSID::GetAEAId(int i, int j) const
try {
    const CLS* ls = m_Ls(i, j);
    return ls ? ls->GetAEAId() : std::string();
} catch (...) {
    return vyr::OutOfMemory<std::string>(VYR_HERE);
}

bool CSTSID::GetRT(int i, int j) const
{
    const CLS* ls = m_Ls(i, j);
    return ls && ls->GetRT();
}

int CSTSID::NumberOfContentRatings(int i, int j) const
{
    const CLS* ls = m_Ls(i, j);
    return ls ? ls->NumberOfContentRatings() : 0;
}

bool CSTSID::GetContentRating(int i, int j, int k, std::string& out) const
{
    const CLS* ls = m_Ls(i, j);
    return ls && ls->GetContentRating(k, out);
}

SEFDTInfo* CSTSID::GetEFDTInfo(int i, int j) const
{
    const CLS* ls = m_Ls(i, j);
    return ls ? ls->GetEFDTInfo() : nullptr;
}

const CSTSID::SSTSID* CSTSID::State() const
{
    return m ? &m->values : nullptr;
}
