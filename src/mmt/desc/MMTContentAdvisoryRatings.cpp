#include "mmt/desc/MMTContentAdvisoryRatings.h"

#include "common/Give.h"
#include "common/XmlParser.h"
#include "common/XmlRead.h"
#include "platform/Log.h"

using vyr::CNodeText;

namespace {

using TRatings = CMMTContentAdvisoryRatings;

struct SState : vyr::TXmlState<TRatings::SContentAdvisoryRatings> {
    std::string ratingString;
    TRatings::SDimension* current = nullptr;  // set while the children of a RatingDimVal are read

    bool m_ProcessParse(void* root) override;
};

/// Appends to a rating string one of its pieces: `open`, the number, `between`, the first of the texts, `close`.
void AppendPiece(std::string& rating, const char* open, int number, const char* between,
                 const std::vector<TRatings::SText>& texts, const char* close)
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
void AddText(std::vector<TRatings::SText>& texts, void* node)
{
    TRatings::SText& text = texts.emplace_back();
    vyr::Read(CNodeText::Content(node), text.text);
    vyr::ReadAttribute(node, "lang", text.lang);
}

void sm_CbRatingDimVal(SState* m, void* node);

void sm_CbRegionIdentifier(SState* m, void* node)
{
    vyr::Read(CNodeText::Content(node), m->values.regionIdentifier);
}

void sm_CbRatingDescription(SState* m, void* node)
{
    AddText(m->values.descriptions, node);
}

void sm_CbRatedDimensions(SState* m, void* node)
{
    vyr::Read(CNodeText::Content(node), m->values.ratedDimensions);
}

void sm_CbRatingDimension(SState* m, void* node)
{
    if (TRatings::SDimension* current = m->current) {
        vyr::Read(CNodeText::Content(node), current->dimension);
    }
}

void sm_CbRatingValueString(SState* m, void* node)
{
    if (TRatings::SDimension* current = m->current) {
        AddText(current->values, node);
    }
}

constexpr vyr::SElementHandler<SState> k_handlers[] = {
    {"RegionIdentifier", sm_CbRegionIdentifier}, {"RatingDescription", sm_CbRatingDescription},
    {"RatedDimensions", sm_CbRatedDimensions},   {"RatingDimension", sm_CbRatingDimension},
    {"RatingDimVal", sm_CbRatingDimVal},         {"RatingValueString", sm_CbRatingValueString},
};

void sm_CbRatingDimVal(SState* m, void* node)
{
    // One inside another has no meaning.
    if (!m->current) {
        const vyr::CScoped<TRatings::SDimension*> current(m->current, &m->values.ratings.emplace_back(), nullptr);
        vyr::DispatchChildren(m, k_handlers, node);
    }
}

bool SState::m_ProcessParse(void* root)
{
    if (!xml->Compare(root, "ContentAdvisoryRatings") && !xml->Compare(root, "ContentAdvisoryRating")) {
        return false;
    }
    values = {};
    vyr::DispatchChildren(this, k_handlers, root);
    ratingString.clear();
    AppendPiece(ratingString, "", values.regionIdentifier, ",'", values.descriptions, "',");
    for (const TRatings::SDimension& rating : values.ratings) {
        AppendPiece(ratingString, "{", rating.dimension, " '", rating.values, "'}");
    }
    return true;
}

}  // namespace

bool CMMTContentAdvisoryRatings::GetContentRatingString(std::string& rating) const
{
    const auto* m = t_State<SState>();
    return VYR_ASSERT(m, "m") && vyr::Give(m->ratingString, rating);
}

vyr::SXmlKind CMMTContentAdvisoryRatings::t_Kind() const
{
    return vyr::XmlKind<SState>("CMMTContentAdvisoryRatings");
}
