#pragma once

#include <map>
#include <memory>
#include <vector>

#include "judge/Evidence.h"

namespace vyr::inspect {

/// What the user of the tool sets of the rules.
struct SRuleSettings {
    double longestInterval = 5;           ///< seconds between two service lists, or two rounds of signalling
    const IVerifier* verifier = nullptr;  ///< null: no signature is verified
};

/// A group of rules: is told of what comes, and judges at once, or at the end of the input.
class CRules {
  public:
    CRules(const SEvidence& evidence, CFindings& findings) : t_evidence(evidence), t_findings(findings) {}
    virtual ~CRules() = default;
    CRules(const CRules&) = delete;
    CRules& operator=(const CRules&) = delete;

    /// Before the evidence has it.
    virtual void Table(const STable&) {}
    virtual void Signalling(const SSignalling&) {}
    virtual void Message(const SMessage&) {}
    virtual void GuideObject(const SGuideObject&) {}
    virtual void Guide(const SGuide&) {}
    /// The end of the input, or of a part that is reported, after which more comes: the state stays as it is.
    /// `delivery` is null for a raw file.
    virtual void Finish(const SDelivery* /*delivery*/) {}

  protected:
    const SEvidence& t_evidence;
    CFindings& t_findings;
};

std::unique_ptr<CRules> ListRules(const SEvidence& evidence, CFindings& findings, const SRuleSettings& settings);
std::unique_ptr<CRules> TimeRules(const SEvidence& evidence, CFindings& findings);
std::unique_ptr<CRules> SignallingRules(const SEvidence& evidence, CFindings& findings, const SRuleSettings& settings);
std::unique_ptr<CRules> DeliveryRules(const SEvidence& evidence, CFindings& findings, const SRuleSettings& settings);
std::unique_ptr<CRules> MmtRules(const SEvidence& evidence, CFindings& findings, const SRuleSettings& settings);
std::unique_ptr<CRules> AlertRules(const SEvidence& evidence, CFindings& findings);
std::unique_ptr<CRules> RatingRules(const SEvidence& evidence, CFindings& findings);
std::unique_ptr<CRules> SignatureRules(const SEvidence& evidence, CFindings& findings, const SRuleSettings& settings);
std::unique_ptr<CRules> GuideRules(const SEvidence& evidence, CFindings& findings);

}  // namespace vyr::inspect
