#include "follow/Follower.h"

#include "content/LibraryPort.h"

namespace vyr::inspect {

CFollower::CFollower(const SFollowed& followed, CReport& report, const char* nothing)
    : t_followed(followed), t_report(report), t_number(report.NewNumber()), m_lastFinding(nothing)
{
}

std::string CFollower::Missing(unsigned serviceId) const
{
    if (t_services.empty() || t_services.count(serviceId) != 0) {
        return {};
    }
    const std::size_t others = t_services.size() - 1;
    return "the signalling on " + t_followed.name + " is of service " + std::to_string(*t_services.begin()) +
           (others != 0 ? " and " + std::to_string(others) + " more" : "");
}

void CFollower::t_Finding(ERule rule, const std::string& message, const SSource& source)
{
    const bool note = RuleOf(rule).severity == ESeverity::NOTE;
    m_lastFinding = note && !m_lastFinding.empty() ? m_lastFinding : message;
    SFinding finding = t_followed.Finding(rule, message, source);
    t_report.Finding(finding);
}

void CFollower::t_AddAssertions(const SSource& source)
{
    for (const SAssertion& assertion : TakeAssertions()) {
        t_Finding(ERule::ASSERTION, AssertionText(assertion), source);
    }
}

}  // namespace vyr::inspect
