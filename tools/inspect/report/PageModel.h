#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <numeric>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "base/Text.h"
#include "model/Allowance.h"
#include "model/Guide.h"
#include "model/ReportWriter.h"
#include "report/Changes.h"

namespace vyr::inspect {

/// What the page tells of, as it comes: holds, within limits, what stood last, and lists of what changed and of what
/// is wrong. Its parts are markup.
class CPageModel : public IReportWriter {
  public:
    /// With `localTime`, the times of the guide are those of the machine's time zone.
    /// `watched` lists the latest that changed, in place of the first.
    CPageModel(bool localTime, bool watched) : m_localTime(localTime), m_watched(watched) {}

    void Table(const STable& table) override;
    void Signalling(const SSignalling& signalling) override;
    void Message(const SMessage& message) override;
    void GuideObject(const SGuideObject& object) override;
    void Guide(const SGuide& guide) override;
    void Delivery(const SDelivery& delivery) override;
    void Verdicts(const SVerdicts& verdicts) override;
    void Finding(const SFinding& finding) override;
    void BeginInterim() override;
    void Received(std::size_t bytes) override { m_allowance.Received(bytes); }

  protected:
    /// What is held of each kind: the list, and how many more there were.
    template <class TItem>
    struct SList {
        std::deque<TItem> items;
        std::uint64_t more = 0;
    };
    using TKey = std::tuple<std::size_t, std::string, std::string>;  ///< file, stream or session, what in it
    /// A part of the page that is replaced by its next version: markup, and where it came from.
    struct SPart {
        std::string title;  ///< markup
        SSource source;
        std::string html;
        std::uint64_t versions = 0;
        std::size_t bytes = 0;  ///< that count as held
    };
    struct SListed {
        unsigned id = 0;
        std::string session;    ///< that signals it; empty: none
        std::string notListed;  ///< why a receiver does not list it; empty: it does
        std::string title;      ///< markup, as the two that follow
        std::string cells;
        std::string html;
    };
    struct SServiceList {
        std::string name;
        std::string title;
        SSource source;
        std::vector<SListed> services;
        std::size_t bytes = 0;
    };
    /// What the S-TSID says of an LCT session, or the MPD of a representation: cells of a row, as texts.
    struct SComponent {
        std::string id;  ///< of the representation; empty: not given
        TRow cells;

        std::size_t Bytes() const
        {
            return std::accumulate(cells.begin(), cells.end(), id.size(),
                                   [](std::size_t sum, const std::string& cell) { return sum + cell.size(); });
        }
    };
    struct SSession {
        std::map<std::vector<unsigned>, SPart> parts;  ///< each kind of document, the envelope, and each message
        std::vector<SComponent> lctSessions;           ///< TSI, address, rate, type, language
        std::vector<SComponent> representations;       ///< codec, rate, type, language
    };
    struct SAlert {
        SPart part;
        TKey table;
        bool current = true;  ///< the last version of its table has it
    };
    struct SLine {
        SSource source;
        std::string html;
    };

    std::vector<std::string> t_files;  ///< in the order in which they came
    std::optional<STime> t_first;
    std::optional<STime> t_last;
    std::map<TKey, SServiceList> t_lists;
    std::map<TKey, SPart> t_tables;
    std::map<TKey, SPart> t_certificates;
    std::map<TKey, SAlert> t_alerts;
    std::map<TKey, SSession> t_sessions;
    std::map<TKey, SPart> t_guideObjects;
    std::map<std::size_t, SPart> t_guides;      ///< by file
    std::map<std::size_t, SPart> t_deliveries;  ///< by file
    std::map<std::size_t, SPart> t_rates;       ///< by file
    std::map<std::size_t, SPart> t_arrivals;    ///< by file
    std::map<std::size_t, SPart> t_verdicts;    ///< by file
    std::map<TKey, std::string> t_missing;      ///< why a service is not signalled, by its list and id
    SList<SLine> t_changes;
    SList<SLine> t_findings;
    std::uint64_t t_left = 0;          ///< parts beyond the limits
    std::uint64_t t_refusedLists = 0;  ///< service lists that did not parse

    /// Lets go of what was found for the report on the way alone.
    void t_EndInterim();

  private:
    static constexpr std::size_t k_mostBytes = 33554432;  ///< of markup that is held
    static constexpr std::size_t k_around = 512;          ///< bytes of the page around what is held as a part
    static constexpr std::size_t k_mostParts = 4096;      ///< of each kind
    static constexpr std::size_t k_mostLines = 1000;
    static constexpr std::size_t k_mostComponents = 200;  ///< of a session

    /// Whether the page may hold as many bytes more, up to `most` in all; they count then.
    bool m_Take(std::size_t bytes, std::size_t most = static_cast<std::size_t>(-1));
    bool m_Fits(std::size_t bytes, std::size_t most = static_cast<std::size_t>(-1)) const;
    static std::size_t m_Bytes(const SLine& line);
    template <class TMap>
    typename TMap::mapped_type* m_Find(TMap& map, const typename TMap::key_type& key);
    void m_Hold(SPart& part, const std::string& title, const SSource& source, std::string html);
    void m_Add(SList<SLine>& list, const SSource& source, const std::string& html);
    std::string m_Changes(const std::string& key, bool isNew, std::shared_ptr<const TJson> now, const SSource& source);
    /// Notes what an item says of the input as a whole; gives the number of its file.
    std::size_t m_See(const SSource& source);
    SPart* m_Part(SSession& session, const std::vector<unsigned>& key);
    void m_Components(SSession& session, const SSlsDocument& document);
    void m_HoldComponent(std::vector<SComponent>& components, SComponent component);
    std::string m_ServiceTitle(std::size_t file, unsigned serviceId) const;
    void m_Slt(const STable& table, const TKey& key);
    void m_Alerts(const STable& table, const TKey& key);
    void m_Drop(std::size_t file, const std::string& group);
    void m_Certificates(const STable& table, const TKey& key);

    /// What a report on the way does not change.
    struct SBefore {
        std::size_t findings = 0;
        std::uint64_t more = 0;
        std::map<TKey, std::string> missing;
    };

    const bool m_localTime;
    const bool m_watched;
    SBefore m_before;
    bool m_interim = false;
    CLastShown m_last;
    std::size_t m_sessionParts = 0;  ///< of all of them
    std::size_t m_bytes = 0;         ///< held
    CAllowance m_allowance;
};

}  // namespace vyr::inspect
