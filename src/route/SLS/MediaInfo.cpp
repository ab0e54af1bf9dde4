#include "route/SLS/MediaInfo.h"

#include <cstring>

#include "common/XmlNode.h"
#include "common/XmlParser.h"
#include "platform/Log.h"
#include "route/SLS/ContentRating.h"

using vyr::CNodeText;

CMediaInfo::SMediaInfo::SMediaInfo()
    : startUp(false), contentType(CONTENT_OTHER), contentRatings(vyr::RemoveChild<CContentRating>, nullptr)
{
}

struct CMediaInfo::SState : vyr::SHandlers {
    SMediaInfo values;
};

CMediaInfo::CMediaInfo() : m(nullptr) {}

CMediaInfo::~CMediaInfo() = default;

bool CMediaInfo::Create()
{
    return vyr::CreateXmlParser(m, "[CMediaInfo::Create]", VYR_HERE, [this] { return t_CreateCallback(); });
}

bool CMediaInfo::t_CreateCallback()
{
    static constexpr vyr::SElementHandler<CMediaInfo> k_handlers[] = {{"ContentRating", sm_CbContentRating}};
    return vyr::AddHandlers(m->handlers, k_handlers);
}

void CMediaInfo::Destroy()
{
    vyr::DestroyXmlParser(*this, m, "[CMediaInfo::Destroy]", VYR_HERE);
}

bool CMediaInfo::m_ProcessParse(void* root)
{
    if (!VYR_ASSERT(m, "m != nullptr")) {
        return false;
    }
    vyr::Renew(t_replace, m->values);
    SMediaInfo& values = m->values;
    const CNodeText startUp = CNodeText::Attribute(root, "startUp");
    if (startUp.Found()) {
        // Required: the whole word, here and in the "rt" of a source flow.
        values.startUp = std::strcmp(startUp.Text(), "true") == 0;
    }
    values.lang.clear();
    CNodeText::Attribute(root, "lang").CopyTo(values.lang);
    const CNodeText contentType = CNodeText::Attribute(root, "contentType");
    if (contentType.Found()) {
        const auto is = [&contentType](const char* name) { return std::strcmp(contentType.Text(), name) == 0; };
        values.contentType = is("audio")       ? CONTENT_AUDIO
                             : is("video")     ? CONTENT_VIDEO
                             : is("subtitles") ? CONTENT_SUBTITLES
                                               : CONTENT_OTHER;
    }
    values.repId.clear();
    CNodeText::Attribute(root, "repId").CopyTo(values.repId);
    Dump();
    vyr::DispatchChildren(this, m->handlers, root, vyr::LOG_NO_CHILDREN, "%s", VYR_HERE);
    return true;
}

void CMediaInfo::sm_CbContentRating(CMediaInfo* info, void* cur)
{
    static constexpr vyr::SChildSteps k_steps = {"contentRating->Create()",
                                                 "contentRating->Parse(root->t_xml.Doc(), cur)"};
    vyr::AddXmlChild<CContentRating>(info->m->values.contentRatings, info->t_xml.Doc(), cur, k_steps, VYR_HERE);
}

bool CMediaInfo::GetRepId(std::string& out) const
{
    return VYR_ASSERT(m, "m") && vyr::Give(m->values.repId, out);
}

int CMediaInfo::NumberOfContentRating() const
{
    if (!VYR_ASSERT(m, "m")) {
        return 0;
    }
    const int count = m->values.contentRatings.Size();
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CMediaInfo::NumberOfContentRating] Number:%d", count);
    return count;
}

bool CMediaInfo::GetContentRating(int index, std::string& out) const
{
    if (!VYR_ASSERT(m, "m")) {
        return false;
    }
    if (m->values.contentRatings.Size() == 0) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CMediaInfo::GetContentRating] No ContentRating Information.");
        return false;
    }
    void* rating = nullptr;
    if (!m->values.contentRatings.GetAt(index, &rating)) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CMediaInfo::GetContentRating] ContentRating index:%d not found.", index);
        return false;
    }
    if (!static_cast<const CContentRating*>(rating)->GetContentRating(out)) {
        return false;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CMediaInfo::GetContentRating] index:%d, str:%s", index, out.c_str());
    return true;
}

void CMediaInfo::Dump() const
{
    if (!VYR_ASSERT(m, "m")) {
        return;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CMediaInfo::Dump] startUp[%d] lang[%s]", m->values.startUp, m->values.lang.c_str());
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CMediaInfo::Dump] contentType[%d] repId[%s]", static_cast<int>(m->values.contentType),
            m->values.repId.c_str());
}

const CMediaInfo::SMediaInfo* CMediaInfo::State() const
{
    return m ? &m->values : nullptr;
}
