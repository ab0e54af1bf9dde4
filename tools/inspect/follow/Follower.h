#pragma once

#include <set>
#include <string>

#include "model/Report.h"
#include "model/ServiceSession.h"

namespace vyr::inspect {

/// What the followers of one session's signalling have in common.
class CFollower {
  public:
    CFollower(const CFollower&) = delete;
    CFollower& operator=(const CFollower&) = delete;

    /// Whether anything has parsed.
    bool Signals() const { return t_parsed; }
    /// Why what has parsed does not signal the service; empty: it does.
    std::string Missing(unsigned serviceId) const;
    /// What was wrong last.
    const std::string& LastFault() const { return m_lastFault; }

  protected:
    /// Both references outlive the follower; `nothing` stands for the last fault until there is one.
    CFollower(const SFollowed& followed, CReport& report, const char* nothing);
    ~CFollower() = default;

    /// A note is what was wrong last only where nothing was wrong before.
    void t_Fault(EFault code, const std::string& message, const SSource& source, bool note = false);
    /// Tells what the library asserted since it was last asked.
    void t_AddAssertions(const SSource& source);

    const SFollowed& t_followed;
    CReport& t_report;
    const unsigned t_number;        ///< of this follower: names of sessions can be the same
    std::set<unsigned> t_services;  ///< whose signalling came
    bool t_parsed = false;

  private:
    std::string m_lastFault;
};

}  // namespace vyr::inspect
