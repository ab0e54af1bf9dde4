#include "judge/Rules.h"
namespace vyr::inspect {
std::unique_ptr<CRules> MmtRules(const SEvidence& evidence, CFindings& findings, const SRuleSettings&)
{
    return std::make_unique<CRules>(evidence, findings);
}
}  // namespace vyr::inspect
