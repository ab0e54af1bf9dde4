#include "lls/ParseRRT.h"

#include <cstring>
#include <utility>

#include "common/Give.h"
#include "common/XmlRead.h"
#include "lls/Replace.h"
#include "lls/TableDocument.h"
#include "platform/Log.h"

using vyr::CNodeText;

namespace {

typedef SParseRRT::STextType STextType;
typedef SParseRRT::SRating SRating;
typedef SParseRRT::SDimension SDimension;
typedef SParseRRT::SRegion SRegion;

struct SHeldRegion : SRegion {
    std::vector<CParseRRT::SGiven> given;  // of each dimension
};

constexpr unsigned int k_unchecked = 0xFFFFFFFF;

/// The element, or null after the assertion of an index that was left unchecked.
template <class T>
const T* At(const std::vector<T>& list, unsigned int index, const vyr::SHere& here)
{
    return index < list.size() || vyr::AssertFailed(here, "index < list.size()") ? &list[index] : nullptr;
}

template <class T>
unsigned int Count(const std::vector<T>& list)
{
    return static_cast<unsigned int>(list.size());
}

/// Whether the index is inside; else logged with the message, which takes index and size.
template <class T>
bool IsInside(const std::vector<T>& list, unsigned int index, const char* format, VYR_CALLER)
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

struct SRegions {
    std::vector<vyr::THeld<SHeldRegion>> regions;
    SHeldRegion* region = nullptr;
    SDimension* dimension = nullptr;
    SRating* rating = nullptr;
    void* channel = nullptr;
    CParseRRT::SCallback callback{};
    vyr::CReplace replace;

    const SHeldRegion* Region(unsigned int r, VYR_CALLER) const { return At(regions, r, here); }

    const SDimension* Dimension(unsigned int r, unsigned int d, VYR_CALLER) const
    {
        const SRegion* owner = Region(r, here);
        return owner ? At(owner->dimensions, d, here) : nullptr;
    }

    const SRating* Rating(unsigned int r, unsigned int d, unsigned int k, VYR_CALLER) const
    {
        const SDimension* owner = Dimension(r, d, here);
        return owner ? At(owner->ratings, k, here) : nullptr;
    }
};

void sm_CbRatingRegionTable(SRegions* m, void* node);
void sm_CbDimension(SRegions* m, void* node);
void sm_CbRating(SRegions* m, void* node);

void sm_CbRegionIdText(SRegions* m, void* node)
{
    if (VYR_ASSERT(m->region, "m->region")) {
        ReadText(m->region->text, node);
    }
}

void sm_CbDimensionTitle(SRegions* m, void* node)
{
    if (VYR_ASSERT(m->dimension, "m->dimension")) {
        ReadText(m->dimension->title, node);
    }
}

void sm_CbRatingValueAbbrev(SRegions* m, void* node)
{
    if (VYR_ASSERT(m->rating, "m->rating")) {
        ReadText(m->rating->abbreviation, node);
    }
}

void sm_CbRatingValueString(SRegions* m, void* node)
{
    if (VYR_ASSERT(m->rating, "m->rating")) {
        ReadText(m->rating->text, node);
    }
}

constexpr vyr::SElementHandler<SRegions> k_handlers[] = {
    {"RatingRegionTable", sm_CbRatingRegionTable},
    {"RegionIdText", sm_CbRegionIdText},
    {"Dimension", sm_CbDimension},
    {"DimensionTitle", sm_CbDimensionTitle},
    {"Rating", sm_CbRating},
    {"RatingValueAbbrev", sm_CbRatingValueAbbrev},
    {"RatingValueString", sm_CbRatingValueString},
};

void sm_CbRatingRegionTable(SRegions* m, void* node)
{
    if (!m->replace.Take()) {
        return;
    }
    vyr::THeld<SHeldRegion> region;
    region.group = m->replace.Group();
    vyr::ReadAttribute(node, "regionIdentifier", region.regionIdentifier);
    {
        const vyr::CScoped<SHeldRegion*> current(m->region, &region, nullptr);
        vyr::DispatchChildren(m, k_handlers, node);
    }
    m->regions.push_back(std::move(region));
}

void sm_CbDimension(SRegions* m, void* node)
{
    SHeldRegion* region = m->region;
    if (!VYR_ASSERT(region, "m->region") || !m->replace.Take()) {
        return;
    }
    SDimension dimension;
    vyr::ReadAttribute(node, "dimensionLevels", dimension.dimensionLevels);
    const CNodeText graduated = CNodeText::Attribute(node, "dimensionGraduated");
    dimension.dimensionGraduated = graduated.Found() && std::strcmp(graduated.Text(), "true") == 0;
    {
        const vyr::CScoped<SDimension*> current(m->dimension, &dimension, nullptr);
        vyr::DispatchChildren(m, k_handlers, node);
    }
    region->dimensions.push_back(std::move(dimension));
    vyr::ReadAttribute(node, "dimensionGraduated", region->given.emplace_back().dimensionGraduated);
}

void sm_CbRating(SRegions* m, void* node)
{
    SDimension* dimension = m->dimension;
    if (!VYR_ASSERT(dimension, "m->dimension") || !m->replace.Take()) {
        return;
    }
    SRating rating;
    vyr::ReadAttribute(node, "ratingValue", rating.ratingValue);
    {
        const vyr::CScoped<SRating*> current(m->rating, &rating, nullptr);
        vyr::DispatchChildren(m, k_handlers, node);
    }
    dimension->ratings.push_back(std::move(rating));
}

bool m_ProcessParseRRT(SRegions& m, const CXML& xml, void* root)
{
    if (!xml.Compare(root, "RatingRegionTables")) {
        return false;
    }
    vyr::DispatchChildren(&m, k_handlers, root);
    return true;
}

}  // namespace

struct CParseRRT::SState : SRegions {};

CParseRRT::CParseRRT() : m(nullptr) {}

CParseRRT::~CParseRRT()
{
    VYR_ASSERT(!m, "!m");
}

bool CParseRRT::Create()
{
    return vyr::CreateState(m);
}

void CParseRRT::Destroy()
{
    if (!m || t_Idle()) {
        vyr::DestroyState(m);
    }
}

bool CParseRRT::SetCallback(const CParseRRT::SCallback* callback)
{
    return vyr::SetCallback(m, callback);
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
    if (!vyr::ParseTableDocument(item, t_DecompressLLS(), "m_ProcessParseRRT(root)",
                                 [this](const CXML& xml, void* root) { return m_ProcessParseRRT(*m, xml, root); })) {
        return false;
    }
    m->replace.Drop(m->regions, held);
    m->replace.End("CParseRRT");
    if (m->callback.fn) {
        m->callback.fn(m->callback.userData, 1);
    }
    return true;
}

/// Whether the indices name something; 0xFFFFFFFF leaves a level unchecked. Required: the messages name
/// the same two getters whoever asks.
bool CParseRRT::m_isValidIndex(unsigned int r, unsigned int d, unsigned int k) const
{
    if (!VYR_ASSERT(m, "m") ||
        !IsInside(m->regions, r, "[CParseRRT::GetRegionIdentifier] index error rrt index[%d] total[%d] !!!")) {
        return false;
    }
    const std::vector<SDimension>& dimensions = m->regions[r].dimensions;
    if (d == k_unchecked) {
        return true;
    }
    if (!IsInside(dimensions, d, "[CParseRRT::GetDimensionLevels] index error dimension index[%d] total[%d] !!!")) {
        return false;
    }
    return k == k_unchecked || IsInside(dimensions[d].ratings, k,
                                        "[CParseRRT::GetDimensionLevels] index error rating index[%d] total[%d] !!!");
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

const CParseRRT::SGiven* CParseRRT::Given(unsigned int r, unsigned int d) const
{
    const SHeldRegion* region = r < numOfRatingRegionTable() ? m->Region(r) : nullptr;
    return region && d < region->given.size() ? &region->given[d] : nullptr;
}
