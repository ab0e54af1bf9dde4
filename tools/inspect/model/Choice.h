#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "model/Source.h"

namespace vyr::inspect {

struct SArrivalLine;
struct SDelivery;
struct SFile;
struct SFinding;
struct SGuide;
struct SGuideObject;
struct SMessage;
struct SSignalling;
struct SSltService;
struct STable;
struct SVerdicts;

/// What the user of the tool chooses, as given; nothing: everything is told. A record is told that any of it chooses.
struct SChoices {
    std::vector<std::string> services;       ///< number of a service, "7.1" or "7-1", or name
    std::map<unsigned, std::string> tables;  ///< LLS_table_id, and what was given for it
    std::set<std::string> sessions;          ///< "239.255.7.1:30100"

    /// All of them as options, "--service NEWS", in an order that does not depend on how they were given.
    std::vector<std::string> Options() const;
};

/// The id of an LLS table, given as a number or by its name in the JSON report, or a part of it that no other has:
/// "slt", "multi-table". Letters are of any case, and '-' does not count.
std::optional<unsigned> FindTable(const std::string& text);

/// Knows what of an input is told. Everything is known and judged all the same. Services are found in the lists as they
/// come, and stay chosen until the input ends.
class CChoice {
  public:
    explicit CChoice(SChoices choices = {});

    /// Another input begins.
    void Begin();
    /// The item, or what is chosen of it, which `part` holds then; null: nothing. Good as long as both.
    const STable* Of(const STable& table, std::optional<STable>& part);
    const SSignalling* Of(const SSignalling& signalling, std::optional<SSignalling>& part);
    const SMessage* Of(const SMessage& message, std::optional<SMessage>& part);
    const SGuideObject* Of(const SGuideObject& object, std::optional<SGuideObject>& part);
    const SGuide* Of(const SGuide& guide, std::optional<SGuide>& part);
    const SFile* Of(const SFile& file, std::optional<SFile>& part);
    const SDelivery* Of(const SDelivery& delivery, std::optional<SDelivery>& part);
    const SVerdicts* Of(const SVerdicts& verdicts, std::optional<SVerdicts>& part);
    /// Findings of the input as a whole are always told.
    bool Takes(const SFinding& finding) const;
    /// Those of the choices, as options, of which nothing came in any input.
    std::vector<std::string> Unmatched() const;

  private:
    bool m_Matches(const SSltService& service);
    bool m_Learn(const STable& table);
    bool m_Table(unsigned id) const { return m_choices.tables.count(id) != 0; }
    bool m_Service(const std::optional<unsigned>& id) const { return id && m_ids.count(*id) != 0; }
    bool m_AnyService(const std::vector<unsigned>& ids) const;
    bool m_Session(const std::string& session);
    bool m_Arrives(const SArrivalLine& line) const;

    const SChoices m_choices;
    const bool m_all;
    std::set<unsigned> m_ids;                            ///< of the services that are chosen
    std::set<unsigned> m_there;                          ///< of those that are signalled on a chosen session
    std::set<std::string> m_sessions;                    ///< of the services that are chosen
    bool m_guide = false;                                ///< one of them is a guide
    std::set<std::pair<std::string, unsigned>> m_lists;  ///< those that have one of them, by stream and group
    std::set<std::string> m_matched;                     ///< of the choices, as options
};

/// The part of a capture that is looked at, from its first time on and in front of its second.
class CWindow {
  public:
    /// A time, or what is behind the begin of the input: "2026-11-22T10:00:00.5Z", "+12.5". None: it is neither.
    struct SBound {
        STime time;
        bool relative = false;
    };
    static std::optional<SBound> Read(const std::string& text);

    CWindow(std::optional<SBound> from, std::optional<SBound> until) : m_from(from), m_until(until) {}
    /// Whether a packet of the time is in it; one without a time always is.
    bool Takes(const std::optional<STime>& time);

  private:
    bool m_Before(const STime& time, const SBound& bound) const;

    const std::optional<SBound> m_from;
    const std::optional<SBound> m_until;
    std::optional<STime> m_begin;  ///< of the input
};

}  // namespace vyr::inspect
