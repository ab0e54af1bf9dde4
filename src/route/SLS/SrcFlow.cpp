#include "route/SLS/SrcFlow.h"

#include <cstring>

#include "common/XmlNode.h"
#include "common/XmlParser.h"
#include "platform/Log.h"
#include "route/SLS/ContentInfo.h"

using vyr::CNodeText;

CSrcFlow::SSrcFlow::SSrcFlow()
    : rt(false), minBuffSize(0xFFFFFFFF), contentInfo(nullptr), efdts(vyr::RemoveChild<CEFDT>, nullptr)
{
}

CSrcFlow::SSrcFlow::~SSrcFlow()
{
    vyr::HoldChild(contentInfo, {});
}

struct CSrcFlow::SState : vyr::SHandlers {
    SSrcFlow values;
    SEFDTInfoCallback callback{};
};

CSrcFlow::CSrcFlow() : m(nullptr) {}

CSrcFlow::~CSrcFlow() = default;

bool CSrcFlow::Create()
{
    return vyr::CreateXmlParser(m, "[CSrcFlow::Create]", VYR_HERE, [this] { return t_CreateCallback(); });
}

bool CSrcFlow::t_CreateCallback()
{
    static constexpr vyr::SElementHandler<CSrcFlow> k_handlers[] = {
        {"ContentInfo", sm_CbContentInfo},
        {"EFDT", sm_CbEFDT},
    };
    return vyr::AddHandlers(m->handlers, k_handlers);
}

void CSrcFlow::Destroy()
{
    vyr::DestroyXmlParser(*this, m, "[CSrcFlow::Destroy]", VYR_HERE);
}

bool CSrcFlow::SetCallback(const SEFDTInfoCallback* callback)
{
    return vyr::SetCallback(m, callback, VYR_HERE);
}

bool CSrcFlow::m_ProcessParse(void* root)
{
    if (!VYR_ASSERT(m, "m != nullptr")) {
        return false;
    }
    vyr::Renew(t_replace, m->values);
    const CNodeText rt = CNodeText::Attribute(root, "rt");
    if (rt.Found()) {
        m->values.rt = std::strcmp(rt.Text(), "true") == 0;
    }
    m->values.minBuffSize = static_cast<unsigned int>(CNodeText::Attribute(root, "minBuffSize").Int(-1));
    vyr::DispatchChildren(this, m->handlers, root, vyr::LOG_NO_CHILDREN, "%s", VYR_HERE);
    return true;
}

void CSrcFlow::sm_CbContentInfo(CSrcFlow* flow, void* cur)
{
    static constexpr vyr::SChildSteps k_steps = {"contentInfo->Create()", "contentInfo->Parse(root->t_xml.Doc(), cur)"};
    if (auto contentInfo = vyr::BuildXmlChild<CContentInfo>(flow->t_xml.Doc(), cur, k_steps, VYR_HERE)) {
        SSrcFlow& values = flow->m->values;
        contentInfo->GetContentId(values.contentId);
        values.aeaId = contentInfo->GetAEAId();
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CSrcFlow::sm_CbContentInfo] contentInfo[%s]", values.contentId.c_str());
        vyr::HoldChild(values.contentInfo, std::move(contentInfo));
    }
}

void CSrcFlow::sm_CbEFDT(CSrcFlow* flow, void* cur)
{
    static constexpr vyr::SChildSteps k_steps = {"efdt->Create()", "efdt->Parse(root->t_xml.Doc(), cur)"};
    auto efdt = vyr::BuildXmlChild<CEFDT>(flow->t_xml.Doc(), cur, k_steps, VYR_HERE, [flow](CEFDT& fresh) {
        return VYR_CHECK(fresh.SetCallback(&flow->m->callback), "efdt->SetCallback(&m->callback)");
    });
    if (efdt) {
        vyr::Append(flow->m->values.efdts, std::move(efdt));
    }
}

bool CSrcFlow::GetContentId(std::string& out) const
{
    return VYR_ASSERT(m, "m") && vyr::Give(m->values.contentId, out);
}

std::string CSrcFlow::GetAEAId() const
try {
    return VYR_ASSERT(m, "m") ? m->values.aeaId : std::string();
} catch (...) {
    return vyr::OutOfMemory<std::string>(VYR_HERE);
}

bool CSrcFlow::GetRT() const
{
    return VYR_ASSERT(m, "m") && m->values.rt;
}

int CSrcFlow::NumberOfContentRatings() const
{
    return VYR_ASSERT(m, "m") && m->values.contentInfo ? m->values.contentInfo->NumberOfContentRating() : 0;
}

bool CSrcFlow::GetContentRating(int index, std::string& out) const
{
    return VYR_ASSERT(m, "m") && m->values.contentInfo && m->values.contentInfo->GetContentRating(index, out);
}

SEFDTInfo* CSrcFlow::GetEFDTInfo() const
{
    void* efdt = nullptr;
    if (!VYR_ASSERT(m, "m") || !m->values.efdts.GetAt(m->values.efdts.Size() - 1, &efdt)) {
        return nullptr;
    }
    return static_cast<const CEFDT*>(efdt)->GetEFDTInfo();
}

const CSrcFlow::SSrcFlow* CSrcFlow::State() const
{
    return m ? &m->values : nullptr;
}
