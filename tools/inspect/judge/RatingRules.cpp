#include <algorithm>

#include "base/Text.h"
#include "judge/Lists.h"
#include "judge/Read.h"
#include "judge/Rules.h"
#include "model/Content.h"
#include "model/Guide.h"

namespace vyr::inspect {

namespace {

constexpr unsigned k_ratingTable = 2;
constexpr std::uint64_t k_lastBuiltIn = 2;  // receivers know the regions of the United States and Canada

/// Reads a number of up to nine digits off the text; none: it does not begin with one.
std::optional<std::uint64_t> TakeNumber(std::string& text)
{
    constexpr std::size_t k_mostDigits = 9;
    const std::size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
    if (digits == 0 || digits > k_mostDigits) {
        return std::nullopt;
    }
    const std::uint64_t number = std::stoull(text.substr(0, digits));
    text.erase(0, digits);
    return number;
}

/// What ratings name of rating tables: holds it against the tables that came.
class CRatingRules : public CRules {
  public:
    using CRules::CRules;

    void Table(const STable& table) override;
    void Signalling(const SSignalling& signalling) override;
    void Message(const SMessage& message) override;
    void GuideObject(const SGuideObject& object) override;
    void Finish(const SDelivery* delivery) override;

  private:
    static constexpr std::size_t k_mostNames = 1024;  ///< of each list

    struct SPlace {
        SSource source;
        std::optional<unsigned> service;
        std::string session;
    };

    void m_Walk(const TJson& json, const SPlace& place);
    void m_String(std::string text, const SPlace& place);
    void m_Name(std::uint64_t region, const std::optional<std::uint64_t>& dimension, const SPlace& place)
    {
        if (m_names.size() < k_mostNames) {
            m_names.try_emplace({region, dimension}, place);
        }
    }

    /// The dimensions that the tables give the regions, at most; none: all of them are not known.
    std::map<std::uint64_t, std::optional<std::size_t>> m_regions;
    bool m_whole = true;  ///< no region was left out
    /// Where a rating first names a region, and a dimension of it.
    std::map<std::pair<std::uint64_t, std::optional<std::uint64_t>>, SPlace> m_names;
};

void CRatingRules::Table(const STable& table)
{
    if (table.header.tableId != k_ratingTable || table.status == EStatus::REPEATED) {
        return;
    }
    if (!table.content) {
        m_whole = false;
        return;
    }
    const bool all = Each(table.content->json, "RatingRegionTable", [&](const TJson& json) {
        const std::optional<std::uint64_t> region = Unsigned(json, "regionIdentifier");
        if (!region || (m_regions.size() == k_mostNames && m_regions.count(*region) == 0)) {
            m_whole = false;
            return;
        }
        std::size_t dimensions = 0;
        const bool every = Each(json, "Dimension", [&dimensions](const TJson&) { ++dimensions; });
        std::optional<std::size_t>& known = m_regions.try_emplace(*region, 0).first->second;
        known = known && every ? std::optional(std::max(*known, dimensions)) : std::nullopt;
    });
    m_whole = m_whole && all;
}

/// Finds the ratings of a document, whatever they are in.
void CRatingRules::m_Walk(const TJson& json, const SPlace& place)
{
    constexpr const char* k_scheme = "tag:atsc.org,2016:XMLSchemas/ATSC3/RRT";
    if (json.is_object() && Text(json, "schemeIdUri").rfind(k_scheme, 0) == 0) {
        m_String(Text(json, "value"), place);
    } else if (const auto region = Unsigned(json, "RegionIdentifier")) {
        m_Name(*region, {}, place);
        Each(json, "RatingDimVal", [&](const TJson& rating) {
            if (const auto dimension = Unsigned(rating, "RatingDimension")) {
                m_Name(*region, dimension, place);
            }
        });
    } else if (json.is_structured()) {
        for (const TJson& element : json) {
            m_Walk(element, place);
        }
    }
}

/// "1,'TV-14-D',{0 'TV-14'}{1 'D'}": region, description, and of dimensions their values.
void CRatingRules::m_String(std::string text, const SPlace& place)
{
    const std::optional<std::uint64_t> region = TakeNumber(text);
    if (!region || text.rfind(",'", 0) != 0) {
        return;
    }
    m_Name(*region, {}, place);
    text.erase(0, std::min(text.find("',"), text.size() - 2) + 2);
    while (!text.empty() && text[0] == '{') {
        text.erase(0, 1);
        const std::optional<std::uint64_t> dimension = TakeNumber(text);
        const std::size_t end = text.find("'}");
        if (!dimension || text.rfind(" '", 0) != 0 || end == std::string::npos) {
            return;
        }
        m_Name(*region, dimension, place);
        text.erase(0, end + 2);
    }
}

void CRatingRules::Signalling(const SSignalling& signalling)
{
    const auto service = signalling.services.size() == 1 ? std::optional(signalling.services[0]) : std::nullopt;
    for (const SSlsDocument& document : signalling.documents) {
        if (document.content && document.status != EDocumentStatus::UNCHANGED) {
            m_Walk(document.content->json, {signalling.source, service, signalling.session});
        }
    }
}

void CRatingRules::Message(const SMessage& message)
{
    if (message.content && message.status != EStatus::REPEATED) {
        const auto service = message.services.size() == 1 ? std::optional(message.services[0]) : std::nullopt;
        m_Walk(message.content->json, {message.source, service, message.session});
    }
}

void CRatingRules::GuideObject(const SGuideObject& object)
{
    if (object.content && object.status != EStatus::REPEATED) {
        m_Walk(object.content->json, {object.source, {}, object.session});
    }
}

void CRatingRules::Finish(const SDelivery* delivery)
{
    const bool received = delivery == nullptr || delivery->received;
    const bool allRegions = received && m_whole && !m_regions.empty() && ListsWhole(t_evidence);
    for (const auto& [name, place] : m_names) {
        const auto& [region, dimension] = name;
        const auto known = m_regions.find(region);
        const std::string title = "region " + std::to_string(region);
        if (known == m_regions.end()) {
            if (allRegions && !dimension && region > k_lastBuiltIn) {
                t_findings.Tell(ERule::RATING_REGION_UNKNOWN,
                                "a rating is of " + title + ", and the rating tables that came are of others",
                                place.source, place.service, place.session);
            }
        } else if (dimension && known->second && *dimension >= *known->second) {
            t_findings.Tell(ERule::RATING_DIMENSION_UNKNOWN,
                            "a rating is of dimension " + std::to_string(*dimension) + " of " + title +
                                ", whose table has " + Counted(*known->second, "dimension") + ", from 0 on",
                            place.source, place.service, place.session);
        }
    }
}

}  // namespace

std::unique_ptr<CRules> RatingRules(const SEvidence& evidence, CFindings& findings)
{
    return std::make_unique<CRatingRules>(evidence, findings);
}

}  // namespace vyr::inspect
