#include "route/SLS/ContentInfo.h"

#include "common/Give.h"
#include "common/XmlParser.h"
#include "common/XmlRead.h"
#include "platform/Log.h"
#include "route/SLS/MediaInfo.h"

using vyr::CNodeText;

namespace {

struct SState : vyr::TXmlState<CContentInfo::SContentInfo> {
    bool m_ProcessParse(void* root) override;
};

void sm_CbAEAMedia(SState* m, void* node)
{
    vyr::ReadAttribute(node, "AEAId", m->values.aeaId);
}

void sm_CbMediaInfo(SState* m, void* node)
{
    CContentInfo::SContentInfo& values = m->values;
    TOwned<CMediaInfo> mediaInfo =
        vyr::BuildXmlChild<CMediaInfo>(*m, node, {"mediaInfo->Create()", "mediaInfo->Parse(root->t_xml.Doc(), cur)"});
    if (mediaInfo) {
        values.contentId = mediaInfo->State()->repId;
        values.mediaInfo = std::move(mediaInfo);
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CContentInfo::sm_CbMediaInfo] ContentID[%s]", values.contentId.c_str());
    }
}

constexpr vyr::SElementHandler<SState> k_handlers[] = {{"AEAMedia", sm_CbAEAMedia}, {"MediaInfo", sm_CbMediaInfo}};

bool SState::m_ProcessParse(void* root)
{
    values.contentId.clear();
    vyr::Read(CNodeText::Content(root), values.contentId);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CContentInfo::m_ProcessParseContentInfo] %s", values.contentId.c_str());
    vyr::DispatchChildren(this, k_handlers, root);
    return true;
}

}  // namespace

bool CContentInfo::GetContentId(std::string& out) const
{
    return VYR_ASSERT(State(), "m") && vyr::Give(State()->contentId, out);
}

std::string CContentInfo::GetAEAId() const
try {
    return VYR_ASSERT(State(), "m") ? State()->aeaId : std::string();
} catch (...) {
    return vyr::OutOfMemory<std::string>(VYR_HERE);
}

int CContentInfo::NumberOfContentRating() const
{
    return VYR_ASSERT(State(), "m") && State()->mediaInfo ? State()->mediaInfo->NumberOfContentRating() : 0;
}

bool CContentInfo::GetContentRating(int index, std::string& out) const
{
    return VYR_ASSERT(State(), "m") && State()->mediaInfo && State()->mediaInfo->GetContentRating(index, out);
}

vyr::SXmlKind CContentInfo::t_Kind() const
{
    return vyr::XmlKind<SState>("CContentInfo");
}
