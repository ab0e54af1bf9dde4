#include "route/SLS/SrcFlow.h"

#include <cstring>

#include "common/Give.h"
#include "common/XmlParser.h"
#include "common/XmlRead.h"
#include "platform/Log.h"
#include "route/SLS/ContentInfo.h"

using vyr::CNodeText;

namespace {

struct SState : vyr::TXmlState<CSrcFlow::SSrcFlow> {
    SEFDTInfoCallback callback{};

    bool m_ProcessParse(void* root) override;
};

void sm_CbContentInfo(SState* m, void* node)
{
    CSrcFlow::SSrcFlow& values = m->values;
    TOwned<CContentInfo> contentInfo = vyr::BuildXmlChild<CContentInfo>(
        *m, node, {"contentInfo->Create()", "contentInfo->Parse(root->t_xml.Doc(), cur)"});
    if (contentInfo) {
        values.contentId = contentInfo->State()->contentId;
        values.aeaId = contentInfo->State()->aeaId;
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CSrcFlow::sm_CbContentInfo] contentInfo[%s]", values.contentId.c_str());
        values.contentInfo = std::move(contentInfo);
    }
}

void sm_CbEFDT(SState* m, void* node)
{
    vyr::AddChild(
        m->values.efdts, *m, node, {"efdt->Create()", "efdt->Parse(root->t_xml.Doc(), cur)"},
        [m](CEFDT& efdt) { return VYR_CHECK(efdt.SetCallback(&m->callback), "efdt->SetCallback(&m->callback)"); });
}

void sm_CbPayload(SState* m, void* node)
{
    CSrcFlow::SPayload payload;
    vyr::ReadAttribute(node, "codePoint", payload.codePoint);
    vyr::ReadAttribute(node, "formatId", payload.formatId);
    vyr::ReadAttribute(node, "frag", payload.frag);
    vyr::ReadAttribute(node, "order", payload.order);
    vyr::ReadAttribute(node, "srcFecPayloadId", payload.srcFecPayloadId);
    m->values.payloads.push_back(payload);
}

constexpr vyr::SElementHandler<SState> k_handlers[] = {
    {"ContentInfo", sm_CbContentInfo}, {"EFDT", sm_CbEFDT}, {"Payload", sm_CbPayload}};

bool SState::m_ProcessParse(void* root)
{
    vyr::Renew(*this);
    const CNodeText rt = CNodeText::Attribute(root, "rt");
    if (rt.Found()) {
        vyr::Read(rt, values.givenRt);
        values.rt = std::strcmp(rt.Text(), "true") == 0;
    }
    vyr::ReadAttribute(root, "minBuffSize", values.minBuffSize, -1);
    vyr::DispatchChildren(this, k_handlers, root);
    return true;
}

}  // namespace

bool CSrcFlow::SetCallback(const SEFDTInfoCallback* callback)
{
    return vyr::SetCallback(t_State<SState>(), callback);
}

bool CSrcFlow::GetContentId(std::string& out) const
{
    return VYR_ASSERT(State(), "m") && vyr::Give(State()->contentId, out);
}

std::string CSrcFlow::GetAEAId() const
try {
    return VYR_ASSERT(State(), "m") ? State()->aeaId : std::string();
} catch (...) {
    return vyr::OutOfMemory<std::string>(VYR_HERE);
}

bool CSrcFlow::GetRT() const
{
    return VYR_ASSERT(State(), "m") && State()->rt;
}

int CSrcFlow::NumberOfContentRatings() const
{
    return VYR_ASSERT(State(), "m") && State()->contentInfo ? State()->contentInfo->NumberOfContentRating() : 0;
}

bool CSrcFlow::GetContentRating(int index, std::string& out) const
{
    return VYR_ASSERT(State(), "m") && State()->contentInfo && State()->contentInfo->GetContentRating(index, out);
}

SEFDTInfo* CSrcFlow::GetEFDTInfo() const
{
    const CEFDT* efdt = VYR_ASSERT(State(), "m") ? State()->efdts.Last() : nullptr;
    return efdt ? efdt->GetEFDTInfo() : nullptr;
}

vyr::SXmlKind CSrcFlow::t_Kind() const
{
    return vyr::XmlKind<SState>("CSrcFlow");
}
