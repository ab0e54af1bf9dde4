#include "route/SLS/MediaInfo.h"

#include <cstring>

#include "common/Give.h"
#include "common/XmlParser.h"
#include "common/XmlRead.h"
#include "platform/Log.h"
#include "route/SLS/ContentRating.h"

using vyr::CNodeText;

namespace {

struct SState : vyr::TXmlState<CMediaInfo::SMediaInfo> {
    bool m_ProcessParse(void* root) override;
};

void Dump(const CMediaInfo::SMediaInfo& values)
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CMediaInfo::Dump] startUp[%d] lang[%s]", values.startUp, values.lang.c_str());
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CMediaInfo::Dump] contentType[%d] repId[%s]", static_cast<int>(values.contentType),
            values.repId.c_str());
}

void sm_CbContentRating(SState* m, void* node)
{
    vyr::AddChild(m->values.contentRatings, *m, node,
                  {"contentRating->Create()", "contentRating->Parse(root->t_xml.Doc(), cur)"});
}

constexpr vyr::SElementHandler<SState> k_handlers[] = {{"ContentRating", sm_CbContentRating}};

bool SState::m_ProcessParse(void* root)
{
    vyr::Renew(*this);
    const CNodeText startUp = CNodeText::Attribute(root, "startUp");
    if (startUp.Found()) {
        vyr::Read(startUp, values.givenStartUp);
        // Required: the whole word, here and in the "rt" of a source flow.
        values.startUp = std::strcmp(startUp.Text(), "true") == 0;
    }
    values.lang.clear();
    vyr::ReadAttribute(root, "lang", values.lang);
    const CNodeText contentType = CNodeText::Attribute(root, "contentType");
    if (contentType.Found()) {
        const auto is = [&contentType](const char* name) { return std::strcmp(contentType.Text(), name) == 0; };
        values.contentType = is("audio")       ? CMediaInfo::CONTENT_AUDIO
                             : is("video")     ? CMediaInfo::CONTENT_VIDEO
                             : is("subtitles") ? CMediaInfo::CONTENT_SUBTITLES
                                               : CMediaInfo::CONTENT_OTHER;
    }
    values.repId.clear();
    vyr::ReadAttribute(root, "repId", values.repId);
    Dump(values);
    vyr::DispatchChildren(this, k_handlers, root);
    return true;
}

}  // namespace

bool CMediaInfo::GetRepId(std::string& out) const
{
    return VYR_ASSERT(State(), "m") && vyr::Give(State()->repId, out);
}

int CMediaInfo::NumberOfContentRating() const
{
    if (!VYR_ASSERT(State(), "m")) {
        return 0;
    }
    const int count = State()->contentRatings.Size();
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CMediaInfo::NumberOfContentRating] Number:%d", count);
    return count;
}

bool CMediaInfo::GetContentRating(int index, std::string& out) const
{
    if (!VYR_ASSERT(State(), "m")) {
        return false;
    }
    if (State()->contentRatings.Size() == 0) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CMediaInfo::GetContentRating] No ContentRating Information.");
        return false;
    }
    const CContentRating* rating = State()->contentRatings.Get(index);
    if (!rating) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CMediaInfo::GetContentRating] ContentRating index:%d not found.", index);
        return false;
    }
    if (!rating->GetContentRating(out)) {
        return false;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CMediaInfo::GetContentRating] index:%d, str:%s", index, out.c_str());
    return true;
}

void CMediaInfo::Dump() const
{
    if (VYR_ASSERT(State(), "m")) {
        ::Dump(*State());
    }
}

vyr::SXmlKind CMediaInfo::t_Kind() const
{
    return vyr::XmlKind<SState>("CMediaInfo");
}
