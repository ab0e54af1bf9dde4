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
    /// What was wrong last; a note only where nothing was wrong before.
    const std::string& LastFinding() const { return m_lastFinding; }

  protected:
    /// Both references outlive the follower; `nothing` stands for the last finding until there is one.
    CFollower(const SFollowed& followed, CReport& report, const char* nothing);
    ~CFollower() = default;

    void t_Finding(ERule rule, const std::string& message, const SSource& source);
    /// Tells what the library asserted since it was last asked.
    void t_AddAssertions(const SSource& source);

    const SFollowed& t_followed;
    CReport& t_report;
    const unsigned t_number;        ///< of this follower: names of sessions can be the same
    std::set<unsigned> t_services;  ///< whose signalling came
    bool t_parsed = false;

  private:
    std::string m_lastFinding;
};

}  // namespace vyr::inspect
