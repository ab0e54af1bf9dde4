#include "mmt/desc/MMTContentAdvisoryRatings.h"

#include "common/XmlParser.h"
#include "platform/Log.h"

using vyr::CNodeText;

struct CMMTContentAdvisoryRatings::SState : vyr::SHandlers {
    SContentAdvisoryRatings values;
    std::string ratingString;
    SDimension* current = nullptr;  // set while the children of a RatingDimVal are read
};

namespace {

/// Appends to a rating string one of its pieces: `open`, the number, `between`, the first of the texts, `close`.
void AppendPiece(std::string& rating, const char* open, int number, const char* between,
                 const std::vector<CMMTContentAdvisoryRatings::SText>& texts, const char* close)
{
    rating += open;
    rating += std::to_string(number);
    rating += between;
    if (!texts.empty()) {
        rating += texts.front().text;
    }
    rating += close;
}

/// A text and its language.
void AddText(std::vector<CMMTContentAdvisoryRatings::SText>& texts, void* node)
{
    CMMTContentAdvisoryRatings::SText& text = texts.emplace_back();
    CNodeText::Content(node).CopyTo(text.text);
    CNodeText::Attribute(node, "lang").CopyTo(text.lang);
}

}  // namespace

CMMTContentAdvisoryRatings::CMMTContentAdvisoryRatings() : m(nullptr) {}

CMMTContentAdvisoryRatings::~CMMTContentAdvisoryRatings() = default;

bool CMMTContentAdvisoryRatings::Create()
{
    return vyr::CreateXmlParser(m, "[CMMTContentAdvisoryRatings::Create]", VYR_HERE,
                                [this] { return t_CreateCallback(); });
}

bool CMMTContentAdvisoryRatings::t_CreateCallback()
{
    static constexpr vyr::SElementHandler<CMMTContentAdvisoryRatings> k_handlers[] = {
        {"RegionIdentifier", sm_CbRegionIdentifier}, {"RatingDescription", sm_CbRatingDescription},
        {"RatedDimensions", sm_CbRatedDimensions},   {"RatingDimension", sm_CbRatingDimension},
        {"RatingDimVal", sm_CbRatingDimVal},         {"RatingValueString", sm_CbRatingValueString},
    };
    return vyr::AddHandlers(m->handlers, k_handlers);
}

void CMMTContentAdvisoryRatings::Destroy()
{
    vyr::DestroyXmlParser(*this, m, "[CMMTContentAdvisoryRatings::Destroy]", VYR_HERE);
}

bool CMMTContentAdvisoryRatings::m_ProcessParse(void* root)
{
    if (!VYR_ASSERT(m, "m != nullptr")) {
        return false;
    }
    if (!t_xml.Compare(root, "ContentAdvisoryRatings") && !t_xml.Compare(root, "ContentAdvisoryRating")) {
        return false;
    }
    SContentAdvisoryRatings& values = m->values;
    values = SContentAdvisoryRatings();
    vyr::DispatchChildren(this, m->handlers, root, vyr::LOG_NO_CHILDREN, "", VYR_HERE);
    m->ratingString.clear();
    AppendPiece(m->ratingString, "", values.regionIdentifier, ",'", values.descriptions, "',");
    for (const SDimension& rating : values.ratings) {
        AppendPiece(m->ratingString, "{", rating.dimension, " '", rating.values, "'}");
    }
    return true;
}

void CMMTContentAdvisoryRatings::sm_CbRegionIdentifier(CMMTContentAdvisoryRatings* ratings, void* node)
{
    ratings->m->values.regionIdentifier = CNodeText::Content(node).Int(0);
}

void CMMTContentAdvisoryRatings::sm_CbRatingDescription(CMMTContentAdvisoryRatings* ratings, void* node)
{
    AddText(ratings->m->values.descriptions, node);
}

void CMMTContentAdvisoryRatings::sm_CbRatedDimensions(CMMTContentAdvisoryRatings* ratings, void* node)
{
    ratings->m->values.ratedDimensions = CNodeText::Content(node).Int(0);
}

void CMMTContentAdvisoryRatings::sm_CbRatingDimVal(CMMTContentAdvisoryRatings* ratings, void* node)
{
    SState* m = ratings->m;
    // One inside another has no meaning.
    if (!m->current) {
        const vyr::CScoped<SDimension*> current(m->current, &m->values.ratings.emplace_back(), nullptr);
        vyr::DispatchChildren(ratings, m->handlers, node, vyr::LOG_NO_CHILDREN, "", VYR_HERE);
    }
}

void CMMTContentAdvisoryRatings::sm_CbRatingDimension(CMMTContentAdvisoryRatings* ratings, void* node)
{
    if (SDimension* current = ratings->m->current) {
        current->dimension = CNodeText::Content(node).Int(0);
    }
}

void CMMTContentAdvisoryRatings::sm_CbRatingValueString(CMMTContentAdvisoryRatings* ratings, void* node)
{
    if (SDimension* current = ratings->m->current) {
        AddText(current->values, node);
    }
}

bool CMMTContentAdvisoryRatings::GetContentRatingString(std::string& rating) const
{
    return VYR_ASSERT(m, "m") && vyr::Give(m->ratingString, rating);
}

const CMMTContentAdvisoryRatings::SContentAdvisoryRatings* CMMTContentAdvisoryRatings::State() const
{
    return m ? &m->values : nullptr;
}
