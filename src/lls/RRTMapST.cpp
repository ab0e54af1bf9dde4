#include "lls/RRTMapST.h"

#include "platform/Log.h"

std::unique_ptr<CRRTMapST> SRRTMap::rrtMap;
unsigned int SRRTMap::rrtMapCnt = 0;

namespace {

/// Appends a copy of two texts; null texts are misuse.
bool AddText(std::list<CRRTMapST::STextType>& list, const char* first, const char* second)
{
    if (!VYR_ASSERT(first && second, "first && second")) {
        return false;
    }
    list.push_back({first, second});
    return true;
}

}  // namespace

CRRTMapST::SRatingRegionTable* CRRTMapST::m_Region(unsigned int key)
{
    const auto found = key <= 0xFF ? m_rrtMap.find(static_cast<unsigned char>(key)) : m_rrtMap.end();
    return VYR_ASSERT(found != m_rrtMap.end(), "region") ? &found->second : nullptr;
}

CRRTMapST::SDimension* CRRTMapST::m_Dimension(unsigned char key)
{
    SRatingRegionTable* region = m_Region(key);
    if (!region || !VYR_ASSERT(!region->dimensions.empty(), "dimension")) {
        return nullptr;
    }
    return &region->dimensions.back();
}

CRRTMapST::SRating* CRRTMapST::m_Rating(unsigned char key)
{
    SDimension* dimension = m_Dimension(key);
    if (!dimension || !VYR_ASSERT(!dimension->ratings.empty(), "rating")) {
        return nullptr;
    }
    return &dimension->ratings.back();
}

bool CRRTMapST::Add(unsigned char key, unsigned int regionIdentifier, bool replace)
{
    SRatingRegionTable region{regionIdentifier, {}, {}};
    if (replace) {
        m_rrtMap.insert_or_assign(key, std::move(region));
    } else {
        m_rrtMap.emplace(key, std::move(region));
    }
    return true;
}

bool CRRTMapST::Remove(unsigned char key)
{
    return m_Region(key) && m_rrtMap.erase(key) > 0;
}

bool CRRTMapST::SetRegionIdText(unsigned char key, const char* first, const char* second)
{
    SRatingRegionTable* region = m_Region(key);
    if (region && !AddText(region->texts, first, second)) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CRRTMapST::SetRegionIdText] Fail to add RegionIdText");
        return false;
    }
    return region != nullptr;
}

bool CRRTMapST::SetDimension(unsigned char key, unsigned int index, bool flag)
{
    SRatingRegionTable* region = m_Region(key);
    if (region) {
        region->dimensions.push_back({index, flag, {}, {}});
    }
    return region != nullptr;
}

bool CRRTMapST::SetDimTitle(unsigned char key, const char* first, const char* second)
{
    SDimension* dimension = m_Dimension(key);
    return dimension && AddText(dimension->titles, first, second);
}

bool CRRTMapST::SetRatingVal(unsigned char key, unsigned int value)
{
    SDimension* dimension = m_Dimension(key);
    if (dimension) {
        dimension->ratings.push_back({value, {}, {}});
    }
    return dimension != nullptr;
}

bool CRRTMapST::SetRatingValAbbrev(unsigned char key, const char* first, const char* second)
{
    SRating* rating = m_Rating(key);
    return rating && AddText(rating->abbreviations, first, second);
}

bool CRRTMapST::SetRatingValStr(unsigned char key, const char* first, const char* second)
{
    SRating* rating = m_Rating(key);
    return rating && AddText(rating->strings, first, second);
}

bool CRRTMapST::GetProgramRating(unsigned int key, unsigned int dimension, const char* first, const char* second,
                                 void (*fn)(void*, char*), void* userData)
{
    SRatingRegionTable* region = m_Region(key);
    if (!region || !VYR_ASSERT(first && second, "first && second") || !VYR_ASSERT(fn, "fn")) {
        return false;
    }
    for (SDimension& candidate : region->dimensions) {
        if (candidate.index != dimension) {
            continue;
        }
        for (SRating& rating : candidate.ratings) {
            auto abbreviation = rating.abbreviations.begin();
            for (const STextType& string : rating.strings) {
                const bool found = abbreviation != rating.abbreviations.end();
                if (string.first == first && string.second == second) {
                    if (!VYR_ASSERT(found, "abbreviation")) {
                        return false;
                    }
                    fn(userData, abbreviation->second.data());
                    return true;
                }
                if (found) {
                    ++abbreviation;
                }
            }
        }
    }
    return false;
}
