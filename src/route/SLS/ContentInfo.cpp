#include "route/SLS/ContentInfo.h"

#include "common/XmlNode.h"
#include "common/XmlParser.h"
#include "platform/Log.h"
#include "route/SLS/MediaInfo.h"

using vyr::CNodeText;

CContentInfo::SContentInfo::SContentInfo() : mediaInfo(nullptr) {}

CContentInfo::SContentInfo::~SContentInfo()
{
    vyr::HoldChild(mediaInfo, {});
}

struct CContentInfo::SState : vyr::SHandlers {
    SContentInfo values;
};

CContentInfo::CContentInfo() : m(nullptr) {}

CContentInfo::~CContentInfo() = default;

bool CContentInfo::Create()
{
    return vyr::CreateXmlParser(m, "[CContentInfo::Create]", VYR_HERE, [this] { return t_CreateCallback(); });
}

bool CContentInfo::t_CreateCallback()
{
    static constexpr vyr::SElementHandler<CContentInfo> k_handlers[] = {
        {"AEAMedia", sm_CbAEAMedia},
        {"MediaInfo", sm_CbMediaInfo},
    };
    return vyr::AddHandlers(m->handlers, k_handlers);
}

void CContentInfo::Destroy()
{
    vyr::DestroyXmlParser(*this, m, "[CContentInfo::Destroy]", VYR_HERE);
}

bool CContentInfo::m_ProcessParse(void* root)
{
    if (!VYR_ASSERT(m, "m != nullptr")) {
        return false;
    }
    m->values.contentId.clear();
    CNodeText::Content(root).CopyTo(m->values.contentId);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CContentInfo::m_ProcessParseContentInfo] %s", m->values.contentId.c_str());
    vyr::DispatchChildren(this, m->handlers, root, vyr::LOG_NO_CHILDREN, "%s", VYR_HERE);
    return true;
}

void CContentInfo::sm_CbAEAMedia(CContentInfo* info, void* node)
{
    CNodeText::Attribute(node, "AEAId").CopyTo(info->m->values.aeaId);
}

void CContentInfo::sm_CbMediaInfo(CContentInfo* info, void* cur)
{
    static constexpr vyr::SChildSteps k_steps = {"mediaInfo->Create()", "mediaInfo->Parse(root->t_xml.Doc(), cur)"};
    if (auto mediaInfo = vyr::BuildXmlChild<CMediaInfo>(info->t_xml.Doc(), cur, k_steps, VYR_HERE)) {
        SContentInfo& values = info->m->values;
        mediaInfo->GetRepId(values.contentId);
        vyr::HoldChild(values.mediaInfo, std::move(mediaInfo));
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CContentInfo::sm_CbMediaInfo] ContentID[%s]", values.contentId.c_str());
    }
}

bool CContentInfo::GetContentId(std::string& out) const
{
    return VYR_ASSERT(m, "m") && vyr::Give(m->values.contentId, out);
}

std::string CContentInfo::GetAEAId() const
try {
    return VYR_ASSERT(m, "m") ? m->values.aeaId : std::string();
} catch (...) {
    return vyr::OutOfMemory<std::string>(VYR_HERE);
}

int CContentInfo::NumberOfContentRating() const
{
    return VYR_ASSERT(m, "m") && m->values.mediaInfo ? m->values.mediaInfo->NumberOfContentRating() : 0;
}

bool CContentInfo::GetContentRating(int index, std::string& out) const
{
    return VYR_ASSERT(m, "m") && m->values.mediaInfo && m->values.mediaInfo->GetContentRating(index, out);
}

const CContentInfo::SContentInfo* CContentInfo::State() const
{
    return m ? &m->values : nullptr;
}
