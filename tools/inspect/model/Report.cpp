#include "model/Report.h"

#include <algorithm>
#include <map>
#include <string>
#include <tuple>
#include <utility>

#include "base/Limits.h"
#include "base/Text.h"
#include "model/Delivery.h"
#include "model/Guide.h"
#include "model/Verdict.h"

namespace vyr::inspect {

namespace {

/// What is of `now` and not of `before`. What says the same, whatever its numbers, is the same, as often as it is said.
std::vector<SFinding> New(const std::vector<SFinding>& now, const std::vector<SFinding>& before)
{
    std::map<std::tuple<ERule, std::optional<unsigned>, std::string, std::string>, std::size_t> known[2];
    const auto key = [](const SFinding& finding, bool exact) {
        return std::tuple(finding.rule, finding.serviceId, finding.session,
                          exact ? finding.message : WithoutNumbers(finding.message));
    };
    for (const SFinding& finding : before) {
        ++known[0][key(finding, true)];
        ++known[1][key(finding, false)];
    }
    const auto take = [&](const SFinding& finding, bool exact) {
        std::size_t& count = known[exact ? 0 : 1][key(finding, exact)];
        count -= count != 0 ? 1 : 0;
    };
    std::vector<SFinding> others;
    for (const SFinding& finding : now) {
        if (known[0][key(finding, true)] != 0) {
            take(finding, true);
            take(finding, false);
        } else {
            others.push_back(finding);
        }
    }
    std::vector<SFinding> added;
    for (const SFinding& finding : others) {
        if (known[1][key(finding, false)] != 0) {
            take(finding, false);
        } else {
            added.push_back(finding);
        }
    }
    return added;
}

}  // namespace

CReport::CReport(IReportWriter& writer, bool quiet, std::vector<IReportWriter*> others, CSeverities severities)
    : m_writer(writer), m_others(std::move(others)), m_quiet(quiet), m_severities(severities)
{
}

template <class TTell>
void CReport::m_Tell(TTell tell)
{
    if (!m_quiet) {
        tell(m_writer);
    }
    for (IReportWriter* other : m_others) {
        tell(*other);
    }
}

void CReport::RemoveWitness(IWitness& witness)
{
    for (std::vector<IWitness*>* witnesses : {&m_witnesses, &m_chosenWitnesses}) {
        witnesses->erase(std::remove(witnesses->begin(), witnesses->end(), &witness), witnesses->end());
    }
}

void CReport::Received(std::size_t bytes)
{
    m_writer.Received(bytes);
    for (IReportWriter* other : m_others) {
        other->Received(bytes);
    }
}

void CReport::Table(const STable& item)
{
    std::optional<STable> part;
    if (const STable* chosen = m_choice->Of(item, part)) {
        const STable& table = *chosen;
        STableCounts& counts = m_summary.tables[table.header.tableId];
        counts.byStatus.Add(table.status);
        counts.notParsed +=
            table.parserExists && !table.slt && !table.content && table.status != EStatus::REPEATED ? 1 : 0;
        if (table.interval) {
            ++counts.intervals;
            counts.intervalSum += *table.interval;
        }
        m_summary.servicesDropped += table.slt ? table.slt->dropped : 0;
        m_Tell([&](IReportWriter& writer) { writer.Table(table); });
        m_Witness(m_chosenWitnesses, &IWitness::Table, table);
    }
    m_Witness(m_witnesses, &IWitness::Table, item);
}

void CReport::Signalling(const SSignalling& item)
{
    std::optional<SSignalling> part;
    if (const SSignalling* signalling = m_choice->Of(item, part)) {
        m_summary.signalling.byStatus.Add(signalling->status);
        for (const SSlsDocument& document : signalling->documents) {
            const bool again = document.status == EDocumentStatus::UNCHANGED;
            m_summary.signalling.documentsNotParsed += document.parsed || again ? 0 : 1;
        }
        if (signalling->status != EStatus::REPEATED) {
            m_Tell([&](IReportWriter& writer) { writer.Signalling(*signalling); });
        }
        m_Witness(m_chosenWitnesses, &IWitness::Signalling, *signalling);
    }
    m_Witness(m_witnesses, &IWitness::Signalling, item);
}

void CReport::Message(const SMessage& item)
{
    std::optional<SMessage> part;
    if (const SMessage* message = m_choice->Of(item, part)) {
        m_summary.messages.byStatus.Add(message->status);
        if (message->status != EStatus::REPEATED) {
            m_summary.messages.notSupported += message->supported ? 0 : 1;
            m_summary.messages.notParsed += message->supported && !message->content ? 1 : 0;
            m_Tell([&](IReportWriter& writer) { writer.Message(*message); });
        }
        m_Witness(m_chosenWitnesses, &IWitness::Message, *message);
    }
    m_Witness(m_witnesses, &IWitness::Message, item);
}

void CReport::GuideObject(const SGuideObject& item)
{
    std::optional<SGuideObject> part;
    if (const SGuideObject* object = m_choice->Of(item, part)) {
        m_summary.guide.byStatus.Add(object->status);
        if (object->status != EStatus::REPEATED) {
            m_Tell([&](IReportWriter& writer) { writer.GuideObject(*object); });
        }
        m_Witness(m_chosenWitnesses, &IWitness::GuideObject, *object);
    }
    m_Witness(m_witnesses, &IWitness::GuideObject, item);
}

void CReport::Guide(const SGuide& item)
{
    std::optional<SGuide> part;
    if (const SGuide* guide = m_choice->Of(item, part)) {
        m_Tell([&](IReportWriter& writer) { writer.Guide(*guide); });
    }
    m_Witness(m_witnesses, &IWitness::Guide, item);
}

void CReport::File(const SFile& item)
{
    std::optional<SFile> part;
    if (const SFile* file = m_choice->Of(item, part)) {
        m_Witness(m_chosenWitnesses, &IWitness::File, *file);
    }
}

void CReport::Delivery(const SDelivery& item)
{
    std::optional<SDelivery> part;
    if (const SDelivery* delivery = m_choice->Of(item, part)) {
        m_Tell([&](IReportWriter& writer) {
            if (!m_before || &writer != &m_writer) {
                writer.Delivery(*delivery);
            }
        });
    }
}

void CReport::Verdicts(const SVerdicts& item)
{
    std::optional<SVerdicts> part;
    if (const SVerdicts* verdicts = m_choice->Of(item, part)) {
        m_Tell([&](IReportWriter& writer) { writer.Verdicts(*verdicts); });
        for (const SVerdict& verdict : verdicts->verdicts) {
            if (m_before) {
                m_Compare(verdict);
            }
        }
    }
}

void CReport::Finding(SFinding finding)
{
    const std::optional<ESeverity>& severity = m_severities.Of(finding.rule);
    finding.severity = severity.value_or(ESeverity::NOTE);
    finding.message = Clipped(finding.message, Limit(k_longestMessage));
    m_Witness(m_witnesses, &IWitness::Finding, finding);
    if (!severity || !m_choice->Takes(finding)) {
        return;
    }
    ++m_summary.findings[finding.rule];
    std::uint64_t* const counts[] = {&m_summary.notes, &m_summary.warnings, &m_summary.errors};
    ++*counts[static_cast<std::size_t>(finding.severity)];
    if (finding.severity != ESeverity::NOTE && m_summary.firstFindings.size() < k_firstFindings) {
        m_summary.firstFindings.push_back(finding);
    }
    if (m_before) {
        ++m_interim.holding;
        if (m_interim.begun.size() < k_mostHolding) {
            for (IReportWriter* other : m_others) {
                other->Finding(finding);
            }
            m_interim.begun.push_back(std::move(finding));
        }
        return;
    }
    m_Move(finding.source);
    const unsigned header =
        finding.header ? 1u << 16 | unsigned{finding.header->tableId} << 8 | finding.header->groupId : 0;
    if (m_Joins(m_here[{finding.rule, header, {}}], finding, MostEntries())) {
        return;
    }
    const TAlike::key_type key = {finding.rule, header, finding.message};
    if (m_alike.size() < k_mostAlike || m_alike.count(key) != 0) {
        if (m_Joins(m_alike[key], finding, Limit(k_toldAlike))) {
            return;
        }
    }
    m_TellFinding(finding);
}

/// The first faults of a kind are told of alone; false: this is one of them. The others are told of whenever they are
/// ten times as many as those before: an input may have no end.
bool CReport::m_Joins(SAlike& alike, const SFinding& finding, std::uint64_t most)
{
    constexpr std::uint64_t k_growth = 10;
    if (alike.told < most) {
        ++alike.told;
        return false;
    }
    ++alike.held;
    alike.last = finding;
    if (alike.held == k_growth * alike.told) {
        m_TellHeld(alike);
    }
    return true;
}

void CReport::m_TellHeld(SAlike& alike)
{
    if (alike.held != 0) {
        alike.last.times = alike.held;
        m_TellFinding(alike.last);
        alike.told += alike.held;
        alike.held = 0;
    }
}

void CReport::m_TellFinding(const SFinding& finding)
{
    if (!m_quiet || finding.severity != ESeverity::NOTE) {
        m_writer.Finding(finding);
    }
    for (IReportWriter* other : m_others) {
        other->Finding(finding);
    }
}

void CReport::m_TellJoined(TAlike& alike)
{
    for (auto& [key, findings] : alike) {
        m_TellHeld(findings);
    }
    alike.clear();
}

/// What is held of the last place is told when it is left.
void CReport::m_Move(const SSource& place)
{
    if (place.packet != m_place.packet || place.file != m_place.file) {
        m_TellJoined(m_here);
    }
    if (place.file != m_place.file) {
        m_TellJoined(m_alike);
    }
    m_place = place;
}

void CReport::Finish()
{
    m_TellJoined(m_here);
    m_TellJoined(m_alike);
    m_Tell([&](IReportWriter& writer) { writer.Summary(m_summary); });
    if (m_quiet && m_writer.AlwaysSummary()) {
        m_writer.Summary(m_summary);
    }
    if (m_summaryTold) {
        m_summaryTold();
    }
}

/// Holds the verdict against that of the last report on the way.
void CReport::m_Compare(const SVerdict& verdict)
{
    const std::pair key(verdict.serviceList, verdict.serviceId);
    const auto last = m_verdicts.find(key);
    if (last == m_verdicts.end()) {
        if (m_verdicts.size() < k_mostHolding) {
            m_verdicts.emplace(key, verdict.judgement);
        }
    } else {
        // Of what goes on, the numbers in the cause change.
        const SJudgement& now = verdict.judgement;
        if (now.verdict != last->second.verdict || WithoutNumbers(now.cause) != WithoutNumbers(last->second.cause)) {
            m_interim.verdicts.push_back({verdict, last->second});
        }
        last->second = now;
    }
}

void CReport::BeginInterim()
{
    m_before = m_summary;
    m_interim = {m_interim.number + 1, {}, 0, {}, {}, 0, {}};
    m_Tell([](IReportWriter& writer) { writer.BeginInterim(); });
}

void CReport::EndInterim(const SSource& source, double seconds)
{
    std::vector<SFinding> holding = std::move(m_interim.begun);
    m_interim.source = source;
    m_interim.seconds = seconds;
    m_interim.begun = New(holding, m_holding);
    m_interim.over = New(m_holding, holding);
    m_holding = std::move(holding);
    m_Tell([&](IReportWriter& writer) { writer.Interim(m_interim, m_summary); });
    for (const SFinding& finding : m_interim.begun) {
        if (m_quiet && finding.severity != ESeverity::NOTE) {
            m_writer.Finding(finding);
        }
    }
    m_summary = std::move(*m_before);
    m_before.reset();
    if (m_summaryTold) {
        m_summaryTold();
    }
}

}  // namespace vyr::inspect
