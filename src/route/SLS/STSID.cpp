#include "route/SLS/STSID.h"

#include "common/XmlParser.h"
#include "platform/Log.h"
#include "route/SLS/RS.h"

namespace {

struct SState : vyr::TXmlState<CSTSID::SSTSID> {
    CLS::SCallback callback{};

    bool m_ProcessParse(void* root) override;
};

void sm_CbRS(SState* m, void* node)
{
    vyr::AddChild(m->values.routeSessions, *m, node, {"rs->Create()", "rs->Parse(root->t_xml.Doc(), cur)"},
                  [m](CRS& rs) { return rs.SetCallback(&m->callback); });
}

constexpr vyr::SElementHandler<SState> k_handlers[] = {{"RS", sm_CbRS}};

bool SState::m_ProcessParse(void* root)
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CSTSID::m_ProcessParseSTSID] process STSID");
    vyr::Renew(*this);
    vyr::DispatchChildren(this, k_handlers, root);
    return true;
}

/// A ROUTE session; an index without one is asserted by the array: null.
const CRS::SRS* Rs(const CSTSID::SSTSID* values, int i, VYR_CALLER)
{
    const CRS* rs = values || vyr::AssertFailed(here, "m") ? values->routeSessions.At(i) : nullptr;
    return rs ? rs->State() : nullptr;
}

/// An LCT session of it, likewise.
const CLS* Ls(const CSTSID::SSTSID* values, int i, int j, VYR_CALLER)
{
    const CRS::SRS* rs = Rs(values, i, here);
    return rs ? rs->ls.At(j) : nullptr;
}

}  // namespace

bool CSTSID::SetCallback(const CLS::SCallback* callback)
{
    return vyr::SetCallback(t_State<SState>(), callback);
}

int CSTSID::NumberOfRouteSessions() const
{
    return VYR_ASSERT(State(), "m") ? State()->routeSessions.Size() : 0;
}

int CSTSID::NumberOfLctSessions(int i) const
{
    const CRS::SRS* rs = Rs(State(), i);
    return rs ? rs->ls.Size() : 0;
}

unsigned short CSTSID::BsId(int i) const
{
    const CRS::SRS* rs = Rs(State(), i);
    return rs ? rs->bsid : static_cast<unsigned short>(0);
}

unsigned int CSTSID::SIpAddr(int i) const
{
    const CRS::SRS* rs = Rs(State(), i);
    return rs ? rs->sIpAddr : 0;
}

unsigned int CSTSID::DIpAddr(int i) const
{
    const CRS::SRS* rs = Rs(State(), i);
    return rs ? rs->dIpAddr : 0;
}

unsigned short CSTSID::DPort(int i) const
{
    const CRS::SRS* rs = Rs(State(), i);
    return rs ? rs->dPort : static_cast<unsigned short>(0);
}

bool CSTSID::GetTSI(int i, int j, unsigned int* tsi) const
{
    const CRS::SRS* rs = Rs(State(), i);
    const CLS* ls = rs ? rs->ls.Get(j) : nullptr;
    if (!ls || !VYR_ASSERT(tsi, "tsi")) {
        return false;
    }
    *tsi = ls->TSI();
    return true;
}

bool CSTSID::GetContentId(int i, int j, std::string& out) const
{
    if (const CLS* ls = Ls(State(), i, j)) {
        return ls->GetContentId(out);
    }
    out.clear();
    return false;
}

std::string CSTSID::GetAEAId(int i, int j) const
try {
    const CLS* ls = Ls(State(), i, j);
    return ls ? ls->GetAEAId() : std::string();
} catch (...) {
    return vyr::OutOfMemory<std::string>(VYR_HERE);
}

bool CSTSID::GetRT(int i, int j) const
{
    const CLS* ls = Ls(State(), i, j);
    return ls && ls->GetRT();
}

int CSTSID::NumberOfContentRatings(int i, int j) const
{
    const CLS* ls = Ls(State(), i, j);
    return ls ? ls->NumberOfContentRatings() : 0;
}

bool CSTSID::GetContentRating(int i, int j, int k, std::string& out) const
{
    const CLS* ls = Ls(State(), i, j);
    return ls && ls->GetContentRating(k, out);
}

SEFDTInfo* CSTSID::GetEFDTInfo(int i, int j) const
{
    const CLS* ls = Ls(State(), i, j);
    return ls ? ls->GetEFDTInfo() : nullptr;
}

vyr::SXmlKind CSTSID::t_Kind() const
{
    return vyr::XmlKind<SState>("CSTSID");
}
