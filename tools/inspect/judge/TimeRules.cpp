#include <cmath>

#include "base/Text.h"
#include "judge/Read.h"
#include "judge/Rules.h"
#include "model/Content.h"

namespace vyr::inspect {

namespace {

constexpr unsigned k_systemTime = 3;

/// What the SystemTime tables say against the capture's clock, and each other.
class CTimeRules : public CRules {
  public:
    using CRules::CRules;

    void Table(const STable& table) override;

  private:
    struct SLast {
        std::optional<double> offset;
        std::optional<bool> daylight;
    };

    void m_Tell(ERule rule, const STable& table, const std::string& message)
    {
        t_findings.Tell({rule, message, table.source, table.header});
    }
    void m_Zone(const STable& table, const TJson& json);
    void m_Clock(const STable& table, const TJson& json);

    std::map<TListKey, SLast> m_last;
};

/// Offsets of zones are -12 to +14 hours, in quarters.
void CTimeRules::m_Zone(const STable& table, const TJson& json)
{
    constexpr double k_hour = 3600;
    const std::optional<double> offset = Number(json, "utcLocalOffsetSeconds");
    const std::optional<bool> daylight = Flag(json, "dsStatus");
    if (offset && (*offset < -12 * k_hour || *offset > 14 * k_hour || std::fmod(*offset, k_hour / 4) != 0)) {
        m_Tell(ERule::UTC_OFFSET, table, "no zone has the local offset " + Text(json, "utcLocalOffset"));
    }
    const TListKey key = {table.stream, table.header.groupId};
    const auto known = m_last.find(key);
    if (known != m_last.end() && known->second.offset && offset && known->second.daylight && daylight) {
        const double step = *offset - *known->second.offset;
        const int change = int{*daylight} - int{*known->second.daylight};
        // Lord Howe Island goes on by half an hour.
        const bool agrees = change == 0 ? step == 0 : step == change * k_hour || step == change * k_hour / 2;
        if (!agrees) {
            m_Tell(ERule::DAYLIGHT_SAVING, table,
                   "the local offset changes by " + NumberText(step / k_hour) + " hours, and daylight saving " +
                       (change == 0  ? "stays as it is"
                        : change > 0 ? "begins"
                                     : "ends"));
        }
    }
    constexpr std::size_t k_most = 256;
    if (m_last.size() < k_most || known != m_last.end()) {
        m_last[key] = {offset, daylight};
    }
}

void CTimeRules::m_Clock(const STable& table, const TJson& json)
{
    constexpr std::int64_t k_2017 = 1483228800;  // the last leap second was before it
    constexpr std::uint64_t k_taiSince2017 = 37;
    if (!table.source.time || table.source.time->seconds < k_2017) {
        return;
    }
    const std::optional<std::uint64_t> tai = Unsigned(json, "currentUtcOffset");
    if (tai && *tai != k_taiSince2017) {
        m_Tell(ERule::TAI_OFFSET, table, "TAI-UTC is " + std::to_string(*tai) + " s, not 37 s as since 2017");
    }
    const std::uint64_t prepend = Unsigned(json, "ptpPrepend").value_or(0);
    const std::uint64_t due = static_cast<std::uint64_t>(table.source.time->seconds) + k_taiSince2017;
    if (prepend != due >> 32) {
        m_Tell(
            ERule::SYSTEM_TIME, table,
            "ptpPrepend " + std::to_string(prepend) + " puts the time into another century than the capture's clock");
    }
}

void CTimeRules::Table(const STable& table)
{
    if (table.header.tableId == k_systemTime && table.content) {
        m_Zone(table, table.content->json);
        m_Clock(table, table.content->json);
    }
}

}  // namespace

std::unique_ptr<CRules> TimeRules(const SEvidence& evidence, CFindings& findings)
{
    return std::make_unique<CTimeRules>(evidence, findings);
}

}  // namespace vyr::inspect
