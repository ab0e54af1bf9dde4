#pragma once

#include <cstdint>
#include <set>

#include "model/Counts.h"
#include "model/ServiceSession.h"

namespace vyr::inspect {

/// What came in of a broadcast, and what is known not to have.
struct SReception {
    SPacketCounts counts;
    std::set<SServiceSession> missed = {};  ///< sessions that were to be received, and could not be

    /// Whether packets that were sent may be missing here, and here only.
    bool Lossy() const { return counts.dropped != 0 || counts.lostByInterface != 0; }
    /// Whether all came in that was to.
    bool Whole() const { return !Lossy() && !Unread() && missed.empty(); }
    /// Whether packets came whose content is not here: they were cut, or their headers compressed.
    bool Unread() const { return counts.cut != 0 || counts.compressed != 0; }
    /// Whether it can be the fault of the tool or of the capture that nothing could be read of a session, of which so
    /// many packets came. Packets are cut for their size, and compressed by their session: it can be all of them.
    bool Excuses(const SServiceSession& session, std::uint64_t packets) const
    {
        return missed.count(session) != 0 || Unread() || (Lossy() && packets != 0);
    }
};

}  // namespace vyr::inspect
