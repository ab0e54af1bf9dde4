#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "judge/Rules.h"
#include "model/ServiceSession.h"
#include "model/Witness.h"

namespace vyr::inspect {

/// Holds everything that comes of one input against the rules.
class CJudge : public IWitness {
  public:
    /// The report outlives the judge, and tells it of what comes while there is one.
    CJudge(CReport& report, const std::string& file, bool capture, const SRuleSettings& settings);
    ~CJudge() override;
    CJudge(const CJudge&) = delete;
    CJudge& operator=(const CJudge&) = delete;

    void Table(const STable& table) override;
    void Signalling(const SSignalling& signalling) override;
    void Message(const SMessage& message) override;
    void GuideObject(const SGuideObject& object) override;
    void Guide(const SGuide& guide) override;
    void Finding(const SFinding& finding) override;

    /// How long the signalling says that an object of an LCT session is, as it is sent.
    std::optional<std::uint64_t> FileLength(const SServiceSession& session, std::uint64_t tsi, const TToi& toi) const;

    /// What is found from now on holds for a report on the way only, until it is forgotten.
    void BeginInterim();
    void EndInterim();

    /// Goes on whenever signalling changes.
    std::uint64_t Changes() const { return m_changes; }
    /// Calls `visit` with every other session ("239.255.7.1:30100", and its source; empty: any) that the signalling
    /// which came on one of the sessions of these names refers to.
    void EachSession(const std::set<std::string>& names,
                     const std::function<void(const std::string&, const std::string&)>& visit) const;
    /// The end of the input, or of a part that is reported. Of a capture, names in `delivery` what signalling names,
    /// judges it, and tells of it and of the verdicts; null for a raw file.
    void Finish(const SInputTimes& times, bool sessionsCaptured, SDelivery* delivery);

  private:
    static constexpr std::size_t k_mostLists = 256;
    static constexpr std::size_t k_mostServices = 16384;  ///< of all lists
    static constexpr std::size_t k_mostHeard = 4096;
    static constexpr std::size_t k_mostPackages = 4096;
    static constexpr std::size_t k_mostBytes = 33554432;  ///< of the facts of all packages, about

    void m_Index(const SPackageFacts& package, bool held);
    void m_Hold(SPackageFacts& package, const SSlsDocument& document);

    CReport& m_report;
    SEvidence m_evidence;
    std::uint64_t m_changes = 0;
    std::size_t m_services = 0;
    std::size_t m_bytes = 0;  ///< of the facts of all packages
    /// LCT sessions with files, of the S-TSIDs that hold, by destination and TSI.
    std::map<std::pair<std::string, std::uint64_t>, const SLctFacts*> m_files;
    CFindings m_findings;
    std::vector<SFinding> m_heard;  ///< errors and warnings that may concern a service, one of those that are alike
    std::set<std::tuple<ERule, unsigned, std::string>> m_heardOf;  ///< the same, by rule, service and session
    std::size_t m_heardBefore = 0;                                 ///< the report on the way
    std::vector<std::unique_ptr<CRules>> m_rules;
};

}  // namespace vyr::inspect
