#include "follow/Follower.h"

#include "content/LibraryPort.h"

namespace vyr::inspect {

CFollower::CFollower(const SFollowed& followed, CReport& report, const char* nothing)
    : t_followed(followed), t_report(report), t_number(report.NewNumber()), m_lastFault(nothing)
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

void CFollower::t_Fault(EFault code, const std::string& message, const SSource& source, bool note)
{
    m_lastFault = note && !m_lastFault.empty() ? m_lastFault : message;
    SFault fault = t_followed.Fault(code, message, source);
    fault.note = note;
    t_report.Fault(fault);
}

void CFollower::t_AddAssertions(const SSource& source)
{
    for (const SAssertion& assertion : TakeAssertions()) {
        t_Fault(EFault::ASSERTION, AssertionText(assertion), source);
    }
}

}  // namespace vyr::inspect
