#include "lls/ParseRRT.h"

#include <cstring>
#include <utility>

#include "lls/Replace.h"
#include "lls/TableDocument.h"
#include "platform/Log.h"

using vyr::CNodeText;

namespace {

typedef SParseRRT::STextType STextType;
typedef SParseRRT::SRating SRating;
typedef SParseRRT::SDimension SDimension;
typedef SParseRRT::SRegion SRegion;

constexpr unsigned int k_unchecked = 0xFFFFFFFF;

/// The element, or null after the assertion of an index that was left unchecked.
template <class T>
const T* At(const std::vector<T>& list, unsigned int index)
{
    return VYR_ASSERT(index < list.size(), "index < list.size()") ? &list[index] : nullptr;
}

template <class T>
unsigned int Count(const std::vector<T>& list)
{
    return static_cast<unsigned int>(list.size());
}

/// Whether the index is inside; else logged with the message, which takes index and size.
template <class T>
bool IsInside(const std::vector<T>& list, unsigned int index, const char* format, const vyr::SHere& here)
{
    if (index < list.size()) {
        return true;
    }
    if (vyr::LogEnabled(LOG_PRIORITY_DEBUG)) {
        vyr::Print(LOG_PRIORITY_DEBUG, here, format, static_cast<int>(index), static_cast<int>(list.size()));
    }
    return false;
}

/// Sets a text from an element. A later element of the name overwrites it.
void ReadText(STextType& text, void* node)
{
    CNodeText::Content(node).CopyTo(text.text);
    const CNodeText lang = CNodeText::Attribute(node, "lang");
    text.lang = lang.Found() ? lang.Text() : "en";
}

}  // namespace

struct CParseRRT::SState : vyr::STable {
    std::vector<vyr::THeld<SRegion>> regions;
    SRegion* region = nullptr;
    SDimension* dimension = nullptr;
    SRating* rating = nullptr;
    void* channel = nullptr;
    SCallback callback{};
    vyr::CReplace replace;

    const SRegion* Region(unsigned int r) const { return At(regions, r); }

    const SDimension* Dimension(unsigned int r, unsigned int d) const
    {
        const SRegion* owner = Region(r);
        return owner ? At(owner->dimensions, d) : nullptr;
    }

    const SRating* Rating(unsigned int r, unsigned int d, unsigned int k) const
    {
        const SDimension* owner = Dimension(r, d);
        return owner ? At(owner->ratings, k) : nullptr;
    }
};

CParseRRT::CParseRRT() : m(nullptr) {}

CParseRRT::~CParseRRT()
{
    VYR_ASSERT(!m, "!m");
}

bool CParseRRT::Create()
{
    return vyr::CreateState(m, VYR_HERE, [this] { return t_CreateCallback(); });
}

bool CParseRRT::t_CreateCallback()
{
    static constexpr vyr::SElementHandler<CParseRRT> k_handlers[] = {
        {"RatingRegionTable", sm_CbRatingRegionTable},
        {"RegionIdText", sm_CbRegionIdText},
        {"Dimension", sm_CbDimension},
        {"DimensionTitle", sm_CbDimensionTitle},
        {"Rating", sm_CbRating},
        {"RatingValueAbbrev", sm_CbRatingValueAbbrev},
        {"RatingValueString", sm_CbRatingValueString},
    };
    return vyr::AddHandlers(m->handlers, k_handlers);
}

void CParseRRT::Destroy()
{
    if (VYR_ASSERT(m, "m") && t_Idle()) {
        delete m;
        m = nullptr;
    }
}

bool CParseRRT::SetCallback(const CParseRRT::SCallback* callback)
{
    if (!VYR_ASSERT(m, "m")) {
        return false;
    }
    m->callback = callback ? *callback : SCallback{};
    return true;
}

bool CParseRRT::Start(void* channel)
{
    if (!VYR_ASSERT(m, "m")) {
        return false;
    }
    m->channel = channel;
    return true;
}

bool CParseRRT::Stop()
{
    return VYR_ASSERT(m, "m");
}

void CParseRRT::SetReplace(bool replace)
{
    if (VYR_ASSERT(m, "m")) {
        m->replace.Set(replace);
    }
}

bool CParseRRT::t_Parse(IParse::SItem* item)
{
    if (!VYR_ASSERT(m, "m")) {
        return false;
    }
    const std::size_t held = m->regions.size();
    m->replace.Begin({m->channel, t_GroupId(), 0});
    if (!vyr::ParseTableDocument(m->xml, item, t_DecompressLLS(), "m_ProcessParseRRT(root)", VYR_HERE,
                                 [this](void* root) { return m_ProcessParseRRT(root); })) {
        return false;
    }
    m->replace.Drop(m->regions, held);
    m->replace.End("CParseRRT", VYR_HERE);
    if (m->callback.fn) {
        m->callback.fn(m->callback.userData, 1);
    }
    return true;
}

bool CParseRRT::m_ProcessParseRRT(void* root)
{
    if (!m->xml.Compare(root, "RatingRegionTables")) {
        return false;
    }
    vyr::DispatchChildren(this, m->handlers, root, vyr::LOG_NO_CHILDREN, "", VYR_HERE);
    return true;
}

void CParseRRT::sm_CbRatingRegionTable(CParseRRT* parser, void* node)
{
    SState* m = parser->m;
    if (!m->replace.Take()) {
        return;
    }
    vyr::THeld<SRegion> region;
    region.group = m->replace.Group();
    region.regionIdentifier = CNodeText::Attribute(node, "regionIdentifier").Int(0);
    {
        const vyr::CScoped<SRegion*> current(m->region, &region, nullptr);
        vyr::DispatchChildren(parser, m->handlers, node, vyr::LOG_NO_CHILDREN, "", VYR_HERE);
    }
    m->regions.push_back(std::move(region));
}

void CParseRRT::sm_CbRegionIdText(CParseRRT* parser, void* node)
{
    if (VYR_ASSERT(parser->m->region, "m->region")) {
        ReadText(parser->m->region->text, node);
    }
}

void CParseRRT::sm_CbDimension(CParseRRT* parser, void* node)
{
    SState* m = parser->m;
    SRegion* region = m->region;
    if (!VYR_ASSERT(region, "m->region") || !m->replace.Take()) {
        return;
    }
    SDimension dimension;
    dimension.dimensionLevels = CNodeText::Attribute(node, "dimensionLevels").Int(0);
    const CNodeText graduated = CNodeText::Attribute(node, "dimensionGraduated");
    dimension.dimensionGraduated = graduated.Found() && std::strcmp(graduated.Text(), "true") == 0;
    {
        const vyr::CScoped<SDimension*> current(m->dimension, &dimension, nullptr);
        vyr::DispatchChildren(parser, m->handlers, node, vyr::LOG_NO_CHILDREN, "", VYR_HERE);
    }
    region->dimensions.push_back(std::move(dimension));
}

void CParseRRT::sm_CbDimensionTitle(CParseRRT* parser, void* node)
{
    if (VYR_ASSERT(parser->m->dimension, "m->dimension")) {
        ReadText(parser->m->dimension->title, node);
    }
}

void CParseRRT::sm_CbRating(CParseRRT* parser, void* node)
{
    SState* m = parser->m;
    SDimension* dimension = m->dimension;
    if (!VYR_ASSERT(dimension, "m->dimension") || !m->replace.Take()) {
        return;
    }
    SRating rating;
    rating.ratingValue = CNodeText::Attribute(node, "ratingValue").Int(0);
    {
        const vyr::CScoped<SRating*> current(m->rating, &rating, nullptr);
        vyr::DispatchChildren(parser, m->handlers, node, vyr::LOG_NO_CHILDREN, "", VYR_HERE);
    }
    dimension->ratings.push_back(std::move(rating));
}

void CParseRRT::sm_CbRatingValueAbbrev(CParseRRT* parser, void* node)
{
    if (VYR_ASSERT(parser->m->rating, "m->rating")) {
        ReadText(parser->m->rating->abbreviation, node);
    }
}

void CParseRRT::sm_CbRatingValueString(CParseRRT* parser, void* node)
{
    if (VYR_ASSERT(parser->m->rating, "m->rating")) {
        ReadText(parser->m->rating->text, node);
    }
}

/// Whether the indices name something; 0xFFFFFFFF leaves a level unchecked. Required: the messages name
/// the same two getters whoever asks.
bool CParseRRT::m_isValidIndex(unsigned int r, unsigned int d, unsigned int k) const
{
    if (!VYR_ASSERT(m, "m") ||
        !IsInside(m->regions, r, "[CParseRRT::GetRegionIdentifier] index error rrt index[%d] total[%d] !!!",
                  VYR_HERE)) {
        return false;
    }
    const std::vector<SDimension>& dimensions = m->regions[r].dimensions;
    if (d == k_unchecked) {
        return true;
    }
    if (!IsInside(dimensions, d, "[CParseRRT::GetDimensionLevels] index error dimension index[%d] total[%d] !!!",
                  VYR_HERE)) {
        return false;
    }
    return k == k_unchecked ||
           IsInside(dimensions[d].ratings, k,
                    "[CParseRRT::GetDimensionLevels] index error rating index[%d] total[%d] !!!", VYR_HERE);
}

unsigned int CParseRRT::numOfRatingRegionTable() const
{
    return VYR_ASSERT(m, "m") ? Count(m->regions) : 0;
}

bool CParseRRT::GetRegionIdentifier(unsigned int r, unsigned int& identifier) const
{
    const SRegion* region = m_isValidIndex(r, k_unchecked, k_unchecked) ? m->Region(r) : nullptr;
    return region && vyr::Give(region->regionIdentifier, identifier);
}

bool CParseRRT::GetRegionIdText(unsigned int r, std::string& text) const
{
    const SRegion* region = m_isValidIndex(r, k_unchecked, k_unchecked) ? m->Region(r) : nullptr;
    return region && vyr::Give(region->text.text, text);
}

unsigned int CParseRRT::numOfDimension(unsigned int r) const
{
    return m_isValidIndex(r, k_unchecked, k_unchecked) ? Count(m->Region(r)->dimensions) : 0;
}

bool CParseRRT::GetDimensionLevels(unsigned int r, unsigned int d, unsigned int& levels) const
{
    const SDimension* dimension = m_isValidIndex(r, d, k_unchecked) ? m->Dimension(r, d) : nullptr;
    return dimension && vyr::Give(dimension->dimensionLevels, levels);
}

bool CParseRRT::GetDimensionGraduated(unsigned int r, unsigned int d, bool& graduated) const
{
    const SDimension* dimension = m_isValidIndex(r, d, k_unchecked) ? m->Dimension(r, d) : nullptr;
    return dimension && vyr::Give(dimension->dimensionGraduated, graduated);
}

bool CParseRRT::GetDimensionTitle(unsigned int r, unsigned int d, std::string& title) const
{
    const SDimension* dimension = m_isValidIndex(r, d, k_unchecked) ? m->Dimension(r, d) : nullptr;
    return dimension && vyr::Give(dimension->title.text, title);
}

unsigned int CParseRRT::numOfRating(unsigned int r, unsigned int d) const
{
    const SDimension* dimension = m_isValidIndex(r, d, k_unchecked) ? m->Dimension(r, d) : nullptr;
    return dimension ? Count(dimension->ratings) : 0;
}

bool CParseRRT::GetRatingValue(unsigned int r, unsigned int d, unsigned int k, unsigned int& value) const
{
    const SRating* rating = m_isValidIndex(r, d, k) ? m->Rating(r, d, k) : nullptr;
    return rating && vyr::Give(rating->ratingValue, value);
}

bool CParseRRT::GetRatingValueAbbrev(unsigned int r, unsigned int d, unsigned int k, std::string& abbreviation) const
{
    const SRating* rating = m_isValidIndex(r, d, k) ? m->Rating(r, d, k) : nullptr;
    return rating && vyr::Give(rating->abbreviation.text, abbreviation);
}

bool CParseRRT::GetRatingValueString(unsigned int r, unsigned int d, unsigned int k, std::string& text) const
{
    const SRating* rating = m_isValidIndex(r, d, k) ? m->Rating(r, d, k) : nullptr;
    return rating && vyr::Give(rating->text.text, text);
}

const SParseRRT::SRegion* CParseRRT::GetRegion(unsigned int r) const
{
    return r < numOfRatingRegionTable() ? m->Region(r) : nullptr;
}
