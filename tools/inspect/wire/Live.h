#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "model/Reception.h"
#include "model/Source.h"
#include "wire/Ipv4Decoder.h"

namespace vyr::inspect {

/// Who is told of what comes in live.
struct SLiveSink {
    std::function<void(const STime& time, std::size_t bytes)> packet;
    std::function<void(const SDatagram&)> datagram;             ///< that this packet, and those before it, made whole
    std::function<void(const std::string& message)> notJoined;  ///< what cannot be received, and why: each once
};

/// A network that is read as packets come.
class CLive {
  public:
    CLive() = default;
    virtual ~CLive() = default;
    CLive(const CLive&) = delete;
    CLive& operator=(const CLive&) = delete;

    /// Hands on what has come, `most` packets of it at most; waits for some, for a tenth of a second. Throws
    /// CInputError when the interface goes away.
    virtual void Receive(std::uint64_t most) = 0;
    /// The sessions that are to be received from now on; the first matter most where they are too many.
    virtual void Want(const std::vector<SServiceSession>& sessions) = 0;
    /// What came in up to now.
    virtual SReception Reception() = 0;
    /// The end: what is under way is counted as incomplete.
    virtual void Finish() {}
};

/// Captures the UDP datagrams of an interface, and their fragments, in IPv4 behind any VLAN tags; of these, what passes
/// the filter of libpcap. Throws CInputError, and CUsageError for a wrong filter.
std::unique_ptr<CLive> CaptureInterface(const std::string& interface, const std::string& filter, SLiveSink sink);

/// Joins groups on an interface, and receives what comes to them; needs no privileges. Throws CInputError.
std::unique_ptr<CLive> JoinGroups(const std::string& interface, SLiveSink sink);

}  // namespace vyr::inspect
