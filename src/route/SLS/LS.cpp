#include "route/SLS/LS.h"

#include "common/ATSC3TimeUtility.h"
#include "common/XmlNode.h"
#include "common/XmlParser.h"
#include "platform/Log.h"
#include "route/SLS/SrcFlow.h"

using vyr::CNodeText;

CLS::SLS::SLS()
    : tsi(0xFFFFFFFF), bw(0xFFFFFFFF), startTime(-1), endTime(-1), srcFlows(vyr::RemoveChild<CSrcFlow>, nullptr)
{
}

struct CLS::SState : vyr::SHandlers {
    SLS values;
    SCallback callback{};
};

CLS::CLS() : m(nullptr) {}

CLS::~CLS() = default;

bool CLS::Create()
{
    return vyr::CreateXmlParser(m, "[CLS::Create]", VYR_HERE, [this] { return t_CreateCallback(); });
}

bool CLS::t_CreateCallback()
{
    static constexpr vyr::SElementHandler<CLS> k_handlers[] = {{"SrcFlow", sm_CbSrcFlow}};
    return vyr::AddHandlers(m->handlers, k_handlers);
}

void CLS::Destroy()
{
    vyr::DestroyXmlParser(*this, m, "[CLS::Destroy]", VYR_HERE);
}

bool CLS::SetCallback(const SCallback* callback)
{
    return vyr::SetCallback(m, callback, VYR_HERE);
}

bool CLS::m_ProcessParse(void* root)
{
    if (!VYR_ASSERT(m, "m != nullptr")) {
        return false;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CLS::m_ProcessParseLS] process LS");
    vyr::Renew(t_replace, m->values);
    SLS& values = m->values;
    values.tsi = static_cast<unsigned int>(CNodeText::Attribute(root, "tsi").Int(-1));
    values.bw = static_cast<unsigned int>(CNodeText::Attribute(root, "bw").Int(-1));
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CLS::m_ProcessParseLS] tsi[%d] maxBw[%d]", static_cast<int>(values.tsi),
            static_cast<int>(values.bw));
    const CNodeText startTime = CNodeText::Attribute(root, "startTime");
    if (startTime.Found()) {
        values.startTime = TimeUtility::ConvertDateTime2Epoch(startTime.Text());
    }
    const CNodeText endTime = CNodeText::Attribute(root, "endTime");
    if (endTime.Found()) {
        values.endTime = TimeUtility::ConvertDateTime2Epoch(endTime.Text());
    }
    vyr::DispatchChildren(this, m->handlers, root, vyr::LOG_NO_CHILDREN, "%s", VYR_HERE);
    return true;
}

void CLS::sm_CbSrcFlow(CLS* ls, void* cur)
{
    static constexpr vyr::SChildSteps k_steps = {"srcFlow->Create()", "srcFlow->Parse(root->t_xml.Doc(), cur)"};
    const SEFDTInfoCallback cb = {ls, sm_CbEFDTInfo};
    auto srcFlow = vyr::BuildXmlChild<CSrcFlow>(ls->t_xml.Doc(), cur, k_steps, VYR_HERE, [&cb](CSrcFlow& fresh) {
        return VYR_CHECK(fresh.SetCallback(&cb), "srcFlow->SetCallback(&cb)");
    });
    if (srcFlow) {
        vyr::Append(ls->m->values.srcFlows, std::move(srcFlow));
    }
}

void CLS::sm_CbEFDTInfo(void* context, SEFDTInfo* info)
{
    const CLS* ls = static_cast<const CLS*>(context);
    if (ls && ls->m->callback.fn) {
        ls->m->callback.fn(ls->m->callback.context, ls->m->values.tsi, info);
    }
}

const CSrcFlow* CLS::m_SrcFlow() const
{
    void* srcFlow = nullptr;
    if (VYR_ASSERT(m, "m")) {
        m->values.srcFlows.GetAt(m->values.srcFlows.Size() - 1, &srcFlow);
    }
    return static_cast<const CSrcFlow*>(srcFlow);
}

unsigned int CLS::TSI() const
{
    return VYR_ASSERT(m, "m") ? m->values.tsi : 0;
}

bool CLS::GetContentId(std::string& out) const
{
    const CSrcFlow* srcFlow = m_SrcFlow();
    if (!srcFlow) {
        out.clear();
        return false;
    }
    return srcFlow->GetContentId(out);
}

std::string CLS::GetAEAId() const
try {
    const CSrcFlow* srcFlow = m_SrcFlow();
    return srcFlow ? srcFlow->GetAEAId() : std::string();
} catch (...) {
    return vyr::OutOfMemory<std::string>(VYR_HERE);
}

bool CLS::GetRT() const
{
    const CSrcFlow* srcFlow = m_SrcFlow();
    return srcFlow && srcFlow->GetRT();
}

int CLS::NumberOfContentRatings() const
{
    const CSrcFlow* srcFlow = m_SrcFlow();
    return srcFlow ? srcFlow->NumberOfContentRatings() : 0;
}

bool CLS::GetContentRating(int index, std::string& out) const
{
    const CSrcFlow* srcFlow = m_SrcFlow();
    return srcFlow && srcFlow->GetContentRating(index, out);
}

SEFDTInfo* CLS::GetEFDTInfo() const
{
    const CSrcFlow* srcFlow = m_SrcFlow();
    return srcFlow ? srcFlow->GetEFDTInfo() : nullptr;
}

const CLS::SLS* CLS::State() const
{
    return m ? &m->values : nullptr;
}
