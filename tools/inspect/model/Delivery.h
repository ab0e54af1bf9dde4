#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "model/Arrivals.h"
#include "model/ServiceSession.h"
#include "model/Source.h"

// What was on the air of one capture, whether signalling names it or not. Bytes are those of UDP payloads, and times
// those of the capture.

namespace vyr::inspect {

/// How much came of something, and when.
struct STraffic {
    std::uint64_t packets = 0;
    std::uint64_t bytes = 0;
    std::optional<STime> first;     ///< of the first packet with a time
    std::optional<STime> last;      ///< of the last one
    std::optional<double> gap;      ///< the longest silence between two packets, in seconds
    std::optional<STime> gapSince;  ///< when it began
    /// kbit/s over whole seconds from the capture's first packet on: the mean from the first to the last in which
    /// something came, without the capture's last, which is not whole; none when there is no other, and of a
    /// packet alone.
    std::optional<double> meanRate;
    std::optional<double> peakRate;   ///< of the second in which most came
    std::uint64_t firstBin = 0;       ///< the number of the first of `bins`
    std::vector<std::uint64_t> bins;  ///< bytes in each SDelivery::binSeconds from the capture's first packet on
};

/// An object of which bytes are missing.
struct SIncompleteObject {
    TToi toi;
    std::uint64_t bytes = 0;              ///< that came
    std::optional<std::uint64_t> length;  ///< that it has
    std::string name = {};                ///< of its file, where signalling gives one
};

/// What became of the objects of an LCT session. Each TOI counts once: begun = whole + incomplete + cut + unknown.
struct SObjectsDelivery {
    std::uint64_t begun = 0;
    std::uint64_t whole = 0;         ///< all their bytes came, at once or in several rounds
    std::uint64_t repeats = 0;       ///< times that all bytes of a whole one came again
    std::uint64_t incomplete = 0;    ///< sent to their end, with bytes missing
    std::uint64_t bytesMissing = 0;  ///< of those
    std::uint64_t cut = 0;           ///< begun before the capture, or still under way at its end
    std::uint64_t unknown = 0;       ///< nothing can be said: without a length, or beyond what is kept
    std::vector<SIncompleteObject> firstIncomplete;
    /// Of TOIs of up to 64 bits that were whole: the first, and that behind the last.
    std::vector<std::pair<std::uint64_t, std::uint64_t>> wholeTois;
    bool allWholeTois = true;  ///< those of `wholeTois` are all
};

/// What became of the packets of a packet_id, by packet_sequence_number.
struct SPacketsDelivery {
    std::uint64_t lost = 0;
    std::uint64_t duplicates = 0;  ///< came before
    std::uint64_t late = 0;        ///< came behind a later one
    std::uint64_t restarts = 0;    ///< the numbers began anew
    std::uint64_t gone = 0;        ///< of `lost`, those that can come no more: they never get fewer
};

enum class EDeliveryProtocol { UNKNOWN, LLS, ROUTE, MMTP };

/// "LLS" and the like; null for UNKNOWN.
constexpr const char* DeliveryProtocolName(EDeliveryProtocol protocol)
{
    constexpr const char* k_names[] = {nullptr, "LLS", "ROUTE", "MMTP"};
    return k_names[static_cast<std::size_t>(protocol)];
}

/// An LCT session, or the packets of one packet_id.
struct SFlowDelivery {
    std::uint64_t id = 0;  ///< TSI, or packet_id
    STraffic traffic;
    std::vector<unsigned> services = {};                     ///< whose signalling names it
    std::string carries = {};                                ///< what signalling says that it is; empty: nothing
    std::uint64_t repairPackets = 0;                         ///< of FEC; of `traffic`
    std::optional<SObjectsDelivery> objects = std::nullopt;  ///< of an LCT session
    std::optional<SPacketsDelivery> packets = std::nullopt;  ///< of a packet_id
    std::optional<unsigned> payloadType = std::nullopt;      ///< of a packet_id, if it has but one

    /// Of a packet_id: those that came, each once, and those that are lost.
    std::uint64_t PacketsSent() const { return traffic.packets - packets->duplicates + packets->lost; }
    double ShareLost() const { return static_cast<double>(packets->lost) / static_cast<double>(PacketsSent()); }
};

/// What came to one address and port from one source; of what is announced, nothing, too.
struct SSessionDelivery {
    std::uint32_t destination = 0;
    std::uint16_t port = 0;
    std::uint32_t source = 0;  ///< 0: nothing came, and any would do
    STraffic traffic;
    EDeliveryProtocol protocol = EDeliveryProtocol::UNKNOWN;
    bool guessed = false;                 ///< by its packets alone: no signalling gives the protocol
    std::vector<unsigned> services = {};  ///< that name it
    std::string carries = {};
    std::uint64_t otherPackets = 0;   ///< that are none of the protocol
    std::uint64_t otherVersions = 0;  ///< packets of versions of MMTP that are not read
    std::uint64_t packetsNoFlow = 0;  ///< of flows beyond those that are kept
    std::vector<SFlowDelivery> flows = {};

    /// Whether signalling names it, or the user of the tool.
    bool Named() const
    {
        bool named = (protocol != EDeliveryProtocol::UNKNOWN && !guessed) || !services.empty() || !carries.empty();
        for (const SFlowDelivery& flow : flows) {
            named = named || !flow.services.empty() || !flow.carries.empty();
        }
        return named;
    }
};

struct SDelivery {
    SSource source;
    STraffic traffic;              ///< all of it
    double seconds = 0;            ///< that the capture lasts, without what its clock was set by
    std::uint64_t clockSet = 0;    ///< times that its clock went back by more than a second, or on by more than an hour
    std::uint64_t packetsCut = 0;  ///< by the capture: what they carried is not here
    bool unread = false;           ///< packets came whose session nobody knows: cut, or with compressed headers
    bool received = true;          ///< false: packets were dropped or cut, or sessions not received
    double binSeconds = 1;
    STraffic others;                         ///< of sessions beyond those that are kept
    std::vector<SSessionDelivery> sessions;  ///< by destination, port and source
    SArrivalLines arrivals;                  ///< of tables and signalling, on the axis of the bins
    std::set<TListedId> awaited;             ///< services that were listed too late to miss their signalling
    /// Everything is named that signalling names: a session that nothing names is traffic without signalling.
    bool namesKnown = false;

    /// For how many seconds before the end nothing came of it, if that is long: more than a second, and twice its
    /// longest gap.
    std::optional<double> Silence(const STraffic& of) const
    {
        if (!of.last || !traffic.last || clockSet != 0) {
            return {};
        }
        const double silence = Seconds(*traffic.last) - Seconds(*of.last);
        return silence > std::max(1.0, 2 * of.gap.value_or(0)) ? std::optional<double>(silence) : std::nullopt;
    }
    /// Whether what is missing is missing on the air.
    bool Whole() const { return packetsCut == 0 && received; }
};

}  // namespace vyr::inspect
