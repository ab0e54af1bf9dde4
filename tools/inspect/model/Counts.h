#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

// What is counted for the summary. Each of these structs lists its counts once, in `Each`, by the names that they
// have in the JSON report: how they add up and print follows from that.

namespace vyr::inspect {

enum class EStatus { NEW, CHANGED, REPEATED, CHANGED_WITHOUT_VERSION, NEW_VERSION_SAME_CONTENT };
constexpr std::size_t k_statuses = 5;

/// "new", "changed-without-version" and the like.
constexpr const char* StatusName(EStatus status)
{
    constexpr const char* k_names[k_statuses] = {"new", "changed", "repeated", "changed-without-version",
                                                 "new-version-same-content"};
    return k_names[static_cast<std::size_t>(status)];
}

/// What is new about something against the last one of its kind, if there was one.
constexpr EStatus StatusOf(bool isNew, bool sameVersion, bool sameContent)
{
    if (isNew) {
        return EStatus::NEW;
    }
    if (sameVersion) {
        return sameContent ? EStatus::REPEATED : EStatus::CHANGED_WITHOUT_VERSION;
    }
    return sameContent ? EStatus::NEW_VERSION_SAME_CONTENT : EStatus::CHANGED;
}

/// How many came of each status.
struct SStatusCounts : std::array<std::uint64_t, k_statuses> {
    SStatusCounts() : array{} {}

    void Add(EStatus status) { ++(*this)[static_cast<std::size_t>(status)]; }

    template <class TSelf, class TVisit>
    static void Each(TSelf& self, const TVisit& visit)
    {
        for (std::size_t i = 0; i < k_statuses; ++i) {
            visit(StatusName(static_cast<EStatus>(i)), self[i]);
        }
    }
};

/// What the packets of a capture, or of a network, were.
struct SPacketCounts {
    std::uint64_t packets = 0;
    std::uint64_t cut = 0;                  ///< of which the capture lacks what their headers announce
    std::uint64_t dropped = 0;              ///< by the kernel, before the tool got them; not of `packets`
    std::uint64_t lostByInterface = 0;      ///< by the interface, of whatever kind; likewise
    std::uint64_t malformed = 0;            ///< headers that contradict themselves or the packet's length
    std::uint64_t otherProtocol = 0;        ///< not IPv4 over this link, or IPv4 without UDP
    std::uint64_t compressed = 0;           ///< link-layer packets of IP with compressed headers, which are not read
    std::uint64_t otherLinkPackets = 0;     ///< link-layer packets of another kind
    std::uint64_t fragments = 0;            ///< IPv4 and link-layer pieces
    std::uint64_t incompleteDatagrams = 0;  ///< pieces that never became whole
    std::uint64_t datagrams = 0;            ///< whole UDP datagrams
    std::uint64_t copies = 0;               ///< of datagrams, which the capture has more than once; not of `datagrams`

    /// A packet ends before its headers say; `captureCut`: the capture holds less of it than there was.
    void Short(bool captureCut) { ++(captureCut ? cut : malformed); }

    template <class TSelf, class TVisit>
    static void Each(TSelf& self, const TVisit& visit)
    {
        visit("packets", self.packets);
        visit("packetsCut", self.cut);
        visit("packetsDropped", self.dropped);
        visit("packetsLostByInterface", self.lostByInterface);
        visit("packetsMalformed", self.malformed);
        visit("packetsOther", self.otherProtocol);
        visit("linkLayerPacketsCompressed", self.compressed);
        visit("linkLayerPacketsOther", self.otherLinkPackets);
        visit("fragments", self.fragments);
        visit("datagramsIncomplete", self.incompleteDatagrams);
        visit("udpDatagrams", self.datagrams);
        visit("udpDatagramsCopied", self.copies);
    }
};

/// What came of one LLS table.
struct STableCounts {
    SStatusCounts byStatus;
    std::uint64_t notParsed = 0;
    std::uint64_t intervals = 0;
    double intervalSum = 0;

    template <class TSelf, class TVisit>
    static void Each(TSelf& self, const TVisit& visit)
    {
        SStatusCounts::Each(self.byStatus, visit);
        visit("notParsed", self.notParsed);
        if (self.intervals != 0) {
            visit("meanIntervalSeconds",
                  std::round(self.intervalSum / static_cast<double>(self.intervals) * 1e6) / 1e6);
        }
    }
};

/// What became of the objects of a session.
struct SObjectCounts {
    std::uint64_t complete = 0;  ///< repeats included
    std::uint64_t dropped = 0;   ///< for want of memory, or because another object took their TOI
    std::uint64_t tooLarge = 0;  ///< packets of objects, or beyond the end of objects, that are not taken
};

/// What became of the messages of a session.
struct SMessageCounts {
    std::uint64_t complete = 0;  ///< repeats included
    std::uint64_t lost = 0;      ///< of which fragments are missing
    std::uint64_t dropped = 0;   ///< for want of memory, or larger than the tool takes
    std::uint64_t repeated = 0;  ///< packets that came before
};

/// What came on the sessions of one protocol.
struct SSessionCounts {
    std::uint64_t sessions = 0;
    std::uint64_t packets = 0;  ///< to these sessions, whatever they carry
    std::uint64_t malformed = 0;
    std::uint64_t otherVersions = 0;  ///< packets of versions that are not read
    std::uint64_t signalling = 0;     ///< ROUTE: of TSI 0, with source data

    /// Whether it may be for their version that nothing could be read.
    bool Unread() const { return otherVersions != 0 && otherVersions + malformed == packets; }
};

/// What came on the sessions that carry signalling by ROUTE.
struct SRouteCounts : SSessionCounts {
    SObjectCounts objects;
    std::uint64_t incomplete = 0;  ///< objects that came in part and were never whole

    template <class TSelf, class TVisit>
    static void Each(TSelf& self, const TVisit& visit)
    {
        visit("routeSessions", self.sessions);
        visit("lctPackets", self.packets);
        visit("lctPacketsMalformed", self.malformed);
        visit("lctPacketsSignalling", self.signalling);
        visit("lctPacketsNotTaken", self.objects.tooLarge);
        visit("objects", self.objects.complete);
        visit("objectsIncomplete", self.incomplete);
        visit("objectsDropped", self.objects.dropped);
    }
};

/// What came on the sessions that carry signalling by MMTP.
struct SMmtpCounts : SSessionCounts {
    std::uint64_t otherTypes = 0;  ///< packets that carry something else than signalling
    SMessageCounts messages;

    template <class TSelf, class TVisit>
    static void Each(TSelf& self, const TVisit& visit)
    {
        visit("mmtpSessions", self.sessions);
        visit("mmtpPackets", self.packets);
        visit("mmtpPacketsMalformed", self.malformed);
        visit("mmtpPacketsOtherVersions", self.otherVersions);
        visit("mmtpPacketsOther", self.otherTypes);
        visit("mmtpPacketsSignalling", self.signalling);
        visit("mmtpPacketsRepeated", self.messages.repeated);
        visit("mmtMessages", self.messages.complete);
        visit("mmtMessagesIncomplete", self.messages.lost);
        visit("mmtMessagesDropped", self.messages.dropped);
    }
};

/// What the objects of ROUTE signalling were.
struct SSignallingCounts {
    SStatusCounts byStatus;
    std::uint64_t documentsNotParsed = 0;

    template <class TSelf, class TVisit>
    static void Each(TSelf& self, const TVisit& visit)
    {
        SStatusCounts::Each(self.byStatus, visit);
        visit("documentsNotParsed", self.documentsNotParsed);
    }
};

/// What the messages of MMT signalling were.
struct SMmtMessageCounts {
    SStatusCounts byStatus;
    std::uint64_t notParsed = 0;
    std::uint64_t notSupported = 0;

    template <class TSelf, class TVisit>
    static void Each(TSelf& self, const TVisit& visit)
    {
        SStatusCounts::Each(self.byStatus, visit);
        visit("notParsed", self.notParsed);
        visit("notSupported", self.notSupported);
    }
};

/// What came of the service guide.
struct SGuideCounts {
    SStatusCounts byStatus;  ///< objects
    std::uint64_t sessions = 0;
    std::uint64_t packets = 0;  ///< of these sessions
    SObjectCounts objects;
    std::uint64_t notParsed = 0;  ///< fragments, and objects as a whole
    // At the end of each input, summed:
    std::uint64_t fragments = 0;
    std::uint64_t services = 0;
    std::uint64_t programmes = 0;

    template <class TSelf, class TVisit>
    static void Each(TSelf& self, const TVisit& visit)
    {
        SStatusCounts::Each(self.byStatus, visit);
        visit("sessions", self.sessions);
        visit("packets", self.packets);
        visit("objects", self.objects.complete);
        visit("objectsDropped", self.objects.dropped);
        visit("packetsNotTaken", self.objects.tooLarge);
        visit("notParsed", self.notParsed);
        visit("fragments", self.fragments);
        visit("services", self.services);
        visit("programmes", self.programmes);
    }
};

/// Adds counts to others of their kind.
template <class TCounts>
void AddCounts(TCounts& sum, const TCounts& more)
{
    std::vector<std::uint64_t> counts;
    TCounts::Each(more, [&counts](const char*, std::uint64_t count) { counts.push_back(count); });
    auto next = counts.cbegin();
    TCounts::Each(sum, [&next](const char*, std::uint64_t& count) { count += *next++; });
}

}  // namespace vyr::inspect
