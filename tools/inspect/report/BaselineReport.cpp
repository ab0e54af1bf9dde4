#include "report/BaselineReport.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <vector>

#include "base/Text.h"
#include "report/Changes.h"
#include "report/JsonReport.h"
#include "report/VerdictText.h"

namespace vyr::inspect {

namespace {

constexpr unsigned k_noService = 0x10000;
constexpr unsigned k_sltId = 1;
constexpr EVerdict k_verdicts[] = {EVerdict::PLAYS, EVerdict::PLAYS_BUT, EVerdict::DOES_NOT_PLAY,
                                   EVerdict::CANNOT_TELL};

template <class TValue>
TValue Get(const TJson& record, const char* name, const TValue& otherwise)
{
    const auto value = record.find(name);
    if (value == record.end()) {
        return otherwise;
    }
    return value->get<TValue>();
}

std::string Title(unsigned id, const std::string& channel, const std::string& name)
{
    return "service " + std::to_string(id) + (name.empty() ? "" : ' ' + Quoted(name)) +
           (channel.empty() ? "" : " (" + channel + ')');
}

/// Of an entry of a list, as the JSON has it.
std::string Title(const TJson& entry)
{
    const int major = Get(entry, "majorChannelNo", 0);
    const std::string channel =
        major == 0 ? std::string() : std::to_string(major) + '.' + std::to_string(Get(entry, "minorChannelNo", 0));
    return Title(Get(entry, "serviceId", 0u), channel, Get(entry, "shortServiceName", std::string()));
}

/// What a service's record has besides its entry in the list.
TJson Entry(TJson record)
{
    for (const char* field : {"schema_version", "type", "source", "stream", "LLS_table_id", "LLS_table_idName",
                              "LLS_group_id", "group_count_minus1", "LLS_table_version", "status", "bsid", "changes"}) {
        record.erase(field);
    }
    return record;
}

void Forget(SReportState& state, const std::string& list)
{
    for (auto& [key, service] : state.services) {
        if (key.first == list) {
            service.entry = {};
        }
    }
}

void Hold(SReportState& state, const std::string& list, TJson entry)
{
    SReportState::SService& service = state.services[{list, Get(entry, "serviceId", 0u)}];
    service.title = Title(entry);
    service.entry = std::move(entry);
}

/// A judgement of a verdict's record.
SJudgement Judgement(const TJson& record)
{
    SJudgement judgement = {EVerdict::CANNOT_TELL, Get(record, "cause", std::string()),
                            Get(record, "rule", std::string())};
    for (const EVerdict verdict : k_verdicts) {
        if (Get(record, "verdict", std::string()) == VerdictName(verdict)) {
            judgement.verdict = verdict;
        }
    }
    return judgement;
}

/// A summary counts what was left out, too.
void CheckWhole(const SReportState& state, const TJson& summary)
{
    const TJson leftOut = Get(summary, "leftOut", TJson(TJson::object()));
    for (const auto& [kind, count] : leftOut.items()) {
        if (kind == "table" || kind == "service" || kind == "verdict" || kind == "finding") {
            throw std::runtime_error("left out records of the kind " + kind +
                                     ": it cannot be compared with; make it with --no-limit");
        }
    }
    const bool noted = std::any_of(state.findings.begin(), state.findings.end(),
                                   [](const auto& each) { return each.second.severity == ESeverity::NOTE; });
    if ((!state.tables && !Get(summary, "tables", TJson(TJson::array())).empty()) ||
        (!noted && Get(summary, "notes", std::uint64_t{0}) != 0)) {
        throw std::runtime_error("has errors and warnings alone: it cannot be compared with; make it without -q");
    }
}

/// Takes one record of a report.
void Take(SReportState& state, const TJson& record)
{
    const std::string type = Get(record, "type", std::string());
    const std::string list = ServiceListName(Get(record, "stream", std::string()), Get(record, "LLS_group_id", 0u));
    if (Get(record, "schema_version", 0) != k_schemaVersion) {
        throw std::runtime_error("is no report of version " + std::to_string(k_schemaVersion));
    }
    state.tables = state.tables || type == "table";
    for (const unsigned group : Get(record, "groupsGone", std::vector<unsigned>())) {
        Forget(state, ServiceListName(Get(record, "stream", std::string()), group));
    }
    for (const TJson& gone : Get(record, "listsGone", std::vector<TJson>())) {
        Forget(state, ServiceListName(Get(gone, "stream", std::string()), Get(gone, "LLS_group_id", 0u)));
    }
    if (type == "table" && Get(record, "LLS_table_id", 0u) == k_sltId && record.contains("services")) {
        state.whole[list] = !record.contains("leftOut");
        if (!record.contains("servicesUnchanged")) {
            Forget(state, list);
        }
        for (const unsigned id : Get(record, "servicesRemoved", std::vector<unsigned>())) {
            state.services[{list, id}].entry = {};
        }
    } else if (type == "service") {
        Hold(state, list, Entry(record));
    } else if (type == "verdict") {
        SVerdict& verdict =
            state.services[{Get(record, "serviceList", std::string()), Get(record, "service", 0u)}].verdict.emplace();
        verdict.judgement = Judgement(record);
        verdict.withoutBroadband = Judgement(Get(record, "withoutBroadband", record));
    } else if (type == "finding") {
        SReportState::SFindings& findings =
            state.findings[{Get(record, "rule", std::string()), Get(record, "service", k_noService),
                            Get(record, "session", std::string())}];
        findings.severity = FindSeverity(Get(record, "severity", std::string())).value_or(ESeverity::NOTE);
        findings.message = findings.count == 0 ? Get(record, "message", std::string()) : findings.message;
        findings.count += Get(record, "count", std::uint64_t{1});
    } else if (type == "summary") {
        CheckWhole(state, record);
        state.chosen = Get(record, "chosen", std::set<std::string>());
    }
}

SReportState ReadState(const std::string& name)
{
    std::ifstream file(name, std::ios::binary);
    SReportState state;
    bool ended = false;
    for (std::string line; std::getline(file, line);) {
        const TJson record = TJson::parse(line, nullptr, false);
        if (!record.is_object()) {
            throw std::runtime_error("has a line that is no JSON object");
        }
        try {
            Take(state, record);
        } catch (const TJson::exception&) {
            throw std::runtime_error("has a record with a field of another type");
        }
        ended = Get(record, "type", TJson()) == "summary";
    }
    if (file.bad() || !file.eof() || !ended) {
        throw std::runtime_error(file.is_open() ? "is no whole report in JSON: its summary is missing"
                                                : "cannot be read");
    }
    return state;
}

/// How bad it is; what cannot be told is no judgement.
int Weight(EVerdict verdict)
{
    return verdict == EVerdict::CANNOT_TELL ? -1 : static_cast<int>(verdict);
}

/// Of what goes on, the words change, but not the rule; where there is none, the numbers.
bool SameCause(const SJudgement& one, const SJudgement& other)
{
    return one.rule.empty() && other.rule.empty() ? WithoutNumbers(one.cause) == WithoutNumbers(other.cause)
                                                  : one.rule == other.rule;
}

bool Same(const SJudgement& one, const SJudgement& other)
{
    return one.verdict == other.verdict && SameCause(one, other);
}

/// A service that plays with another fault than before is worse: what it had may be there still, below the new one.
bool IsWorse(const SJudgement& now, const SJudgement& before)
{
    return now.verdict == before.verdict ? now.verdict == EVerdict::PLAYS_BUT && !SameCause(now, before)
                                         : Weight(now.verdict) > 0 && Weight(now.verdict) > Weight(before.verdict);
}

std::string Choices(const std::set<std::string>& chosen)
{
    return chosen.empty() ? "no choice" : Printable(Joined({chosen.begin(), chosen.end()}));
}

}  // namespace

CBaselineReport::CBaselineReport(COutput& output, const std::string& baseline, bool json, ESeverity failOn,
                                 const std::vector<std::string>& chosen)
    : m_output(output), m_baseline(baseline), m_json(json), m_failOn(failOn)
{
    try {
        m_before = ReadState(baseline);
        const std::set<std::string> now(chosen.begin(), chosen.end());
        if (m_before.chosen != now) {
            throw std::runtime_error("was made with " + Choices(m_before.chosen) +
                                     ": it cannot be compared with what is told with " + Choices(now));
        }
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(Printable(baseline) + ' ' + error.what());
    }
}

void CBaselineReport::Table(const STable& table)
{
    for (const auto& [stream, group] : table.listsGone) {
        Forget(m_now, ServiceListName(stream, group));
    }
    if (!table.slt || table.status == EStatus::REPEATED) {
        return;
    }
    const std::string list = ServiceListName(table.stream, table.header.groupId);
    Forget(m_now, list);
    m_now.whole[list] = table.slt->leftOut == 0;
    for (const SSltService& service : table.slt->services) {
        Hold(m_now, list, ServiceJson(service));
    }
}

void CBaselineReport::Verdicts(const SVerdicts& verdicts)
{
    for (const SVerdict& verdict : verdicts.verdicts) {
        Take(m_now, VerdictJson(verdicts.source, verdict));
    }
}

void CBaselineReport::Finding(const SFinding& finding)
{
    Take(m_now, FindingJson(finding));
}

void CBaselineReport::m_Tell(const char* what, bool worse, const std::string& text, TJson fields)
{
    ++m_differences;
    m_worse += worse ? 1 : 0;
    if (m_json) {
        fields["schema_version"] = k_schemaVersion;
        fields["type"] = "difference";
        fields["what"] = what;
        fields["worse"] = worse;
        fields["text"] = text;
        m_output.Write(JsonLine(fields));
    } else {
        m_output.Write((worse ? "worse: " : "       ") + text + '\n');
    }
}

void CBaselineReport::m_Verdict(const SReportState::TService& key, const SReportState::SService& before,
                                const SReportState::SService& now)
{
    if (!before.verdict || !now.verdict) {
        return;
    }
    const SVerdict &old = *before.verdict, &verdict = *now.verdict;
    if (Same(old.judgement, verdict.judgement) && Same(old.withoutBroadband, verdict.withoutBroadband)) {
        return;
    }
    TJson fields = {{"serviceList", key.first}, {"service", key.second}};
    PutChange(fields, old.judgement, verdict.judgement);
    m_Tell("verdict",
           IsWorse(verdict.judgement, old.judgement) || IsWorse(verdict.withoutBroadband, old.withoutBroadband),
           now.title + " " + VerdictText(verdict) + "; before: " + VerdictText(old), std::move(fields));
}

void CBaselineReport::m_Services()
{
    const SReportState::SService none;
    std::map<SReportState::TService, std::pair<const SReportState::SService*, const SReportState::SService*>> services;
    for (const auto& [key, service] : m_before.services) {
        services[key] = {&service, &none};
    }
    for (const auto& [key, service] : m_now.services) {
        services.try_emplace(key, &none, &none).first->second.second = &service;
    }
    const auto whole = [](const SReportState& state, const std::string& list) {
        const auto known = state.whole.find(list);
        return known == state.whole.end() || known->second;
    };
    for (const auto& [key, pair] : services) {
        const auto& [before, now] = pair;
        const TJson place = {{"serviceList", key.first}, {"service", key.second}};
        const bool had = !before->entry.is_null(), has = !now->entry.is_null();
        if (had && !has && whole(m_now, key.first)) {
            m_Tell("service-gone", true, before->title + " of " + key.first + " is gone", place);
        } else if (!had && has && whole(m_before, key.first)) {
            m_Tell("service-new", false, now->title + " of " + key.first + " is new", place);
        } else if (had && has && before->entry != now->entry) {
            const SDifferences differences = Differences(before->entry, now->entry);
            for (const std::string& line : differences.lines) {
                m_Tell("service-changed", false, now->title + ": " + line, place);
            }
            if (differences.count > differences.lines.size()) {
                m_Tell("service-changed", false,
                       now->title + ": and " + std::to_string(differences.count - differences.lines.size()) + " more",
                       place);
            }
        }
        if (had && has) {
            m_Verdict(key, *before, *now);
        }
    }
}

void CBaselineReport::m_Findings()
{
    const auto tell = [this](const char* what, bool isNew, const SReportState& state, const SReportState& other) {
        for (const auto& [place, findings] : state.findings) {
            if (other.findings.count(place) != 0) {
                continue;
            }
            const auto& [rule, service, session] = place;
            TJson fields = {
                {"rule", rule}, {"severity", SeverityName(findings.severity)}, {"message", findings.message}};
            if (service != k_noService) {
                fields["service"] = service;
            }
            if (!session.empty()) {
                fields["session"] = session;
            }
            m_Tell(what, isNew && findings.severity >= m_failOn,
                   std::string(isNew ? "" : "no more ") + SeverityName(findings.severity) + ": " +
                       Printable(findings.message) + " [" + rule + ']',
                   std::move(fields));
        }
    };
    tell("finding-new", true, m_now, m_before);
    tell("finding-gone", false, m_before, m_now);
}

void CBaselineReport::Summary(const SSummary&)
{
    m_Services();
    m_Findings();
    const std::string text =
        m_differences == 0 ? "nothing differs"
                           : Counted(m_differences, "difference") + ", " + std::to_string(m_worse) + " of them worse";
    if (m_json) {
        m_output.Write(JsonLine({{"schema_version", k_schemaVersion},
                                 {"type", "comparison"},
                                 {"baseline", m_baseline},
                                 {"differences", m_differences},
                                 {"worse", m_worse}}));
    } else {
        m_output.Write("compared with " + Printable(m_baseline) + ": " + text + '\n');
    }
}

}  // namespace vyr::inspect
