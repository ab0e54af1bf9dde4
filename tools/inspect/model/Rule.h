#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>

namespace vyr::inspect {

/// How much a finding weighs, the least first.
enum class ESeverity {
    NOTE,     ///< worth knowing
    WARNING,  ///< against the standard, or some receivers fail
    ERROR     ///< receivers fail
};
constexpr const char* k_severities[] = {"note", "warning", "error"};

/// Everything that the tool finds wrong or worth knowing, in the order of the table in Rule.cpp.
enum class ERule {
    // the input
    INPUT_MISSING,
    INPUT_UNREADABLE,
    INTERFACE_LOST,
    INPUT_DIRECTORY,
    INPUT_EMPTY,
    INPUT_UNKNOWN,
    INPUT_TOO_LARGE,
    CAPTURE_DAMAGED,
    LINK_TYPE,
    PACKETS_CUT,
    PACKETS_DROPPED,
    PACKETS_COMPRESSED,
    NOT_JOINED,
    PACKETS_MALFORMED,
    ASSERTION,
    EXTRACT_LIMIT,
    // LLS tables
    NO_LLS,
    NO_SLT,
    TABLE_TOO_SHORT,
    TABLE_NOT_PARSED,
    CHANGED_WITHOUT_VERSION,
    TOO_MANY_SERVICES,
    SEVERAL_BROADCASTS,
    // the service list
    SERVICE_DROPPED,
    SERVICE_LEFT_OUT,
    BAD_ADDRESS,
    NOT_MULTICAST,
    SERVICE_ID_TWICE,
    CHANNEL_TWICE,
    SESSION_TWO_PROTOCOLS,
    SESSION_SHARED,
    CATEGORY_UNKNOWN,
    PROTOCOL_UNKNOWN,
    PROTOCOL_VERSION_UNKNOWN,
    URL_TYPE_UNKNOWN,
    BROADBAND_WITHOUT_URL,
    NAME_TOO_LONG,
    HIDDEN_LINEAR,
    SEQUENCE_UNCHANGED,
    SEQUENCE_CHANGED,
    TABLE_INTERVAL,
    TABLE_ONCE,
    // time
    SYSTEM_TIME,
    TAI_OFFSET,
    UTC_OFFSET,
    DAYLIGHT_SAVING,
    // alerts
    ALERT_EXPIRED,
    ALERT_MEDIA_MISSING,
    ALERT_WITHOUT_WAKEUP,
    ALERT_REFERENCE_UNKNOWN,
    // ratings
    RATING_DIMENSION_UNKNOWN,
    RATING_REGION_UNKNOWN,
    // signalling
    NO_SIGNALLING,
    NO_SESSIONS,
    LCT_MALFORMED,
    MMTP_MALFORMED,
    MMTP_VERSION,
    OBJECT_NOT_READ,
    OBJECT_PASSED_OVER,
    DOCUMENT_NOT_PARSED,
    MESSAGE_NOT_PARSED,
    ITEM_WITHOUT_PART,
    PART_WITHOUT_ITEM,
    GLOBAL_SERVICE_ID,
    NO_STSID,
    NO_MPD,
    TSI_TWICE,
    REP_ID_UNKNOWN,
    REPRESENTATION_NOT_CARRIED,
    BASE_PATTERN_UNMATCHED,
    MEDIA_INFO_CONTRADICTS,
    PROTECTION_MISSING,
    PROTECTION_UNANNOUNCED,
    MPD_IN_FUTURE,
    MPD_NOT_UPDATED,
    PUBLISH_TIME_BACK,
    SIGNALLING_INTERVAL,
    // what is on the air
    SESSION_NOT_SENT,
    FILES_NOT_SENT,
    SESSION_NOT_ANNOUNCED,
    UNSIGNALLED_TRAFFIC,
    RATE_ABOVE_BANDWIDTH,
    RATE_UNLIKE_MPD,
    SESSION_OUTSIDE_TIME,
    NO_INITIALIZATION,
    OBJECTS_INCOMPLETE,
    MANY_OBJECTS_INCOMPLETE,
    EFDT_EXPIRED,
    // MMT
    NO_MP_TABLE,
    ASSET_NOT_SENT,
    PACKET_ID_TWICE,
    COMPONENT_WITHOUT_ASSET,
    PACKETS_LOST,
    MANY_PACKETS_LOST,
    // certificates and signatures
    BAD_CERTIFICATE,
    BAD_SIGNATURE,
    SIGNATURE_WRONG,
    CERTIFICATE_EXPIRED,
    CERTIFICATE_NOT_YET_VALID,
    CERTIFICATE_ENDS_SOON,
    CERTIFICATE_UNTRUSTED,
    SIGNER_NOT_ANNOUNCED,
    UNSIGNED_SIBLING,
    // the guide
    GUIDE_NOT_PARSED,
    GUIDE_INCOMPLETE,
    GUIDE_TOO_LARGE,
    GUIDE_WITHOUT_CONTENT,
    GUIDE_EXPIRED,
    GUIDE_OVERLAP,
    GUIDE_HOLE,
    GUIDE_ENDS_SOON,
    GUIDE_TITLE_LANGUAGE,
    GUIDE_SERVICE_UNKNOWN,
    COUNT
};
constexpr std::size_t k_rules = static_cast<std::size_t>(ERule::COUNT);

struct SRule {
    ERule rule;
    const char* group;  ///< "the service list": what it is about
    const char* name;   ///< stable: "table-not-parsed"
    ESeverity severity;
    const char* means;   ///< for viewers, one sentence
    const char* remedy;  ///< what to do, one sentence
    const char* see;     ///< the clause; empty where none is certain
};

/// The table of all rules.
extern const std::array<SRule, k_rules> k_ruleTable;

inline const SRule& RuleOf(ERule rule)
{
    return k_ruleTable[static_cast<std::size_t>(rule)];
}
inline const char* RuleName(ERule rule)
{
    return RuleOf(rule).name;
}
inline const char* SeverityName(ESeverity severity)
{
    return k_severities[static_cast<std::size_t>(severity)];
}
/// None: no rule has the name, or no severity.
std::optional<ERule> FindRule(const std::string& name);
std::optional<ESeverity> FindSeverity(const std::string& name);
/// Whether the rule is that an input can be inspected at all.
bool IsInputRule(ERule rule);

/// What a run makes of the rules.
class CSeverities {
  public:
    CSeverities();
    void Set(ERule rule, ESeverity severity) { m_severities[static_cast<std::size_t>(rule)] = severity; }
    void Ignore(ERule rule) { m_severities[static_cast<std::size_t>(rule)].reset(); }
    /// None: findings of the rule are not told of.
    const std::optional<ESeverity>& Of(ERule rule) const { return m_severities[static_cast<std::size_t>(rule)]; }

  private:
    std::array<std::optional<ESeverity>, k_rules> m_severities;
};

/// The table for people at a terminal, with the severities that hold.
std::string RulesText(const CSeverities& severities);
/// The table as docs/rules.md has it.
std::string RulesPage();

}  // namespace vyr::inspect
