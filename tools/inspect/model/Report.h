#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "model/Choice.h"
#include "model/Interim.h"
#include "model/Items.h"
#include "model/ReportWriter.h"
#include "model/Witness.h"

namespace vyr::inspect {

/// What a run finds, on its way to the writer: counts it for the summary.
class CReport {
  public:
    /// With `quiet`, the writer is told of errors and warnings only, and of the summary if it always wants it; the
    /// others, which write when there is a summary, of everything.
    CReport(IReportWriter& writer, bool quiet, std::vector<IReportWriter*> others = {}, CSeverities severities = {});

    /// Is told of everything that follows, as it came, until it is removed.
    void AddWitness(IWitness& witness) { m_witnesses.push_back(&witness); }
    /// The same of what is chosen alone, findings aside.
    void AddChosenWitness(IWitness& witness) { m_chosenWitnesses.push_back(&witness); }
    void RemoveWitness(IWitness& witness);
    /// What is told from now on: writers, counts and those who hear of what is chosen alone know of nothing else.
    void SetChoice(const SChoices& choices)
    {
        m_choice.emplace(choices);
        m_summary.chosen = choices.Options();
    }
    const CChoice& Choice() const { return *m_choice; }
    /// Another input begins.
    void Begin()
    {
        m_choice->Begin();
        m_holding.clear();
        m_verdicts.clear();
    }
    /// The input went on by as many bytes.
    void Received(std::size_t bytes);
    void Table(const STable& table);
    void Signalling(const SSignalling& signalling);
    void Message(const SMessage& message);
    void GuideObject(const SGuideObject& object);
    void Guide(const SGuide& guide);
    void File(const SFile& file);
    /// What was on the air of a capture, at its end.
    void Delivery(const SDelivery& delivery);
    /// Whether the services of an input play, at its end.
    void Verdicts(const SVerdicts& verdicts);
    /// Tells of the finding, unless its rule is ignored. Those that are alike, or too many of a kind in one place, are
    /// told of together when the place changes.
    void Finding(SFinding finding);
    void Finish();
    /// A report on the way. What is told between the two is as it would be at the end, and as if it had not been told
    /// afterwards; findings are held against those of the report before.
    void BeginInterim();
    void EndInterim(const SSource& source, double seconds);
    /// Is called behind each summary that is told.
    void SetListener(std::function<void()> summaryTold) { m_summaryTold = std::move(summaryTold); }
    /// As of a writer.
    bool WantsText(const std::string& key) const { return !m_quiet && m_writer.WantsText(key); }
    bool WantsUnchanged(const std::string& key) const { return !m_quiet && m_writer.WantsUnchanged(key); }
    /// A number for what takes part in the run, of its own.
    unsigned NewNumber() { return m_numbers++; }
    /// For the counts that only its users know.
    SSummary& Summary() { return m_summary; }

  private:
    static constexpr std::size_t k_firstFindings = 20;
    static constexpr std::size_t k_mostHolding = 4096;  ///< findings, and verdicts, of a report on the way

    static constexpr std::uint64_t k_toldAlike = 3;   ///< of faults that say the same, told of alone
    static constexpr std::size_t k_mostAlike = 4096;  ///< kinds of these that are known at a time
    static constexpr std::size_t k_longestMessage = 1024;

    /// Findings that are alike.
    struct SAlike {
        std::uint64_t told = 0;
        std::uint64_t held = 0;  ///< not told yet
        SFinding last;           ///< of those held
    };
    using TAlike = std::map<std::tuple<ERule, unsigned, std::string>, SAlike>;  ///< by header and message

    template <class TTell>
    void m_Tell(TTell tell);
    /// What the witness finds comes behind what it finds it in.
    template <class TItem>
    static void m_Witness(const std::vector<IWitness*>& witnesses, void (IWitness::*tell)(const TItem&),
                          const TItem& item)
    {
        for (IWitness* witness : witnesses) {
            (witness->*tell)(item);
        }
    }
    void m_TellFinding(const SFinding& finding);
    void m_TellHeld(SAlike& alike);
    bool m_Joins(SAlike& alike, const SFinding& finding, std::uint64_t most);
    void m_TellJoined(TAlike& alike);
    void m_Move(const SSource& place);
    void m_Compare(const SVerdict& verdict);

    IReportWriter& m_writer;
    const std::vector<IReportWriter*> m_others;
    const bool m_quiet;
    const CSeverities m_severities;
    std::vector<IWitness*> m_witnesses;
    std::vector<IWitness*> m_chosenWitnesses;
    std::optional<CChoice> m_choice{std::in_place};
    unsigned m_numbers = 0;
    SSummary m_summary;
    SSource m_place;                   ///< of the last finding
    TAlike m_alike;                    ///< faults of one input that say the same
    TAlike m_here;                     ///< faults of one kind in one packet, whatever they say
    std::optional<SSummary> m_before;  ///< the summary before the report on the way that is made now
    SInterim m_interim;                ///< that report; `begun` has all that hold
    std::vector<SFinding> m_holding;   ///< findings of the last one
    std::map<std::pair<std::string, unsigned>, SJudgement> m_verdicts;  ///< of services, at the last one
    std::function<void()> m_summaryTold;
};

}  // namespace vyr::inspect
