#include "route/SLS/LS.h"

#include "common/ATSC3TimeUtility.h"
#include "common/EpochTime.h"
#include "common/XmlParser.h"
#include "common/XmlRead.h"
#include "common/XsTime.h"
#include "platform/Log.h"
#include "route/SLS/SrcFlow.h"

using vyr::CNodeText;

namespace {

struct SState : vyr::TXmlState<CLS::SLS> {
    CLS::SCallback callback{};

    bool m_ProcessParse(void* root) override;
};

void sm_CbEFDTInfo(void* context, SEFDTInfo* info)
{
    const SState* m = static_cast<const SState*>(context);
    if (m->callback.fn) {
        m->callback.fn(m->callback.context, m->values.tsi, info);
    }
}

void sm_CbSrcFlow(SState* m, void* node)
{
    const SEFDTInfoCallback cb = {m, sm_CbEFDTInfo};
    vyr::AddChild(
        m->values.srcFlows, *m, node, {"srcFlow->Create()", "srcFlow->Parse(root->t_xml.Doc(), cur)"},
        [&cb](CSrcFlow& srcFlow) { return VYR_CHECK(srcFlow.SetCallback(&cb), "srcFlow->SetCallback(&cb)"); });
}

constexpr vyr::SElementHandler<SState> k_handlers[] = {{"SrcFlow", sm_CbSrcFlow}};

bool SState::m_ProcessParse(void* root)
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CLS::m_ProcessParseLS] process LS");
    vyr::Renew(*this);
    vyr::ReadAttribute(root, "tsi", values.tsi, -1);
    vyr::ReadAttribute(root, "bw", values.bw, -1);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CLS::m_ProcessParseLS] tsi[%d] maxBw[%d]", static_cast<int>(values.tsi),
            static_cast<int>(values.bw));
    const CNodeText startTime = CNodeText::Attribute(root, "startTime");
    if (startTime.Found()) {
        values.startTime = vyr::LocalEpoch(startTime.Text(), TimeUtility::ConvertDateTime2Epoch);
        values.givenStartTime = std::make_unique<SGivenTime>(*vyr::GivenTime(startTime, vyr::ReadDateTime));
    }
    const CNodeText endTime = CNodeText::Attribute(root, "endTime");
    if (endTime.Found()) {
        values.endTime = vyr::LocalEpoch(endTime.Text(), TimeUtility::ConvertDateTime2Epoch);
        values.givenEndTime = std::make_unique<SGivenTime>(*vyr::GivenTime(endTime, vyr::ReadDateTime));
    }
    vyr::DispatchChildren(this, k_handlers, root);
    return true;
}

/// The source flow that counts; null: none.
const CSrcFlow* SrcFlow(const CLS::SLS* values, VYR_CALLER)
{
    return values || vyr::AssertFailed(here, "m") ? values->srcFlows.Last() : nullptr;
}

}  // namespace

bool CLS::SetCallback(const SCallback* callback)
{
    return vyr::SetCallback(t_State<SState>(), callback);
}

unsigned int CLS::TSI() const
{
    return VYR_ASSERT(State(), "m") ? State()->tsi : 0;
}

bool CLS::GetContentId(std::string& out) const
{
    const CSrcFlow* srcFlow = SrcFlow(State());
    if (!srcFlow) {
        out.clear();
        return false;
    }
    return srcFlow->GetContentId(out);
}

std::string CLS::GetAEAId() const
try {
    const CSrcFlow* srcFlow = SrcFlow(State());
    return srcFlow ? srcFlow->GetAEAId() : std::string();
} catch (...) {
    return vyr::OutOfMemory<std::string>(VYR_HERE);
}

bool CLS::GetRT() const
{
    const CSrcFlow* srcFlow = SrcFlow(State());
    return srcFlow && srcFlow->GetRT();
}

int CLS::NumberOfContentRatings() const
{
    const CSrcFlow* srcFlow = SrcFlow(State());
    return srcFlow ? srcFlow->NumberOfContentRatings() : 0;
}

bool CLS::GetContentRating(int index, std::string& out) const
{
    const CSrcFlow* srcFlow = SrcFlow(State());
    return srcFlow && srcFlow->GetContentRating(index, out);
}

SEFDTInfo* CLS::GetEFDTInfo() const
{
    const CSrcFlow* srcFlow = SrcFlow(State());
    return srcFlow ? srcFlow->GetEFDTInfo() : nullptr;
}

vyr::SXmlKind CLS::t_Kind() const
{
    return vyr::XmlKind<SState>("CLS");
}
