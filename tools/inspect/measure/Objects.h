#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "measure/CaptureClock.h"
#include "measure/Intervals.h"
#include "model/Delivery.h"
#include "wire/Lct.h"

namespace vyr::inspect {

/// What all LCT sessions keep of their objects, together.
struct SObjectsKept {
    static constexpr std::size_t k_mostOpen = 16384;    ///< beyond, a session may have k_fewOpen
    static constexpr std::size_t k_mostParts = 131072;  ///< likewise, intervals

    std::size_t open = 0;
    std::size_t parts = 0;
};

/// Finds out which objects of one LCT session came whole, from where their bytes stand, without the bytes.
class CObjects {
  public:
    static constexpr std::size_t k_maxOpen = 64;    ///< objects under way; beyond, that of the longest silence goes
    static constexpr std::size_t k_maxParts = 64;   ///< pieces of one object
    static constexpr std::size_t k_maxWhole = 256;  ///< intervals of the TOIs of whole ones
    static constexpr std::size_t k_fewOpen = 4;
    static constexpr std::size_t k_fewParts = 2;
    static constexpr std::size_t k_maxIncomplete = 16;  ///< that are told of

    /// How long an object is, if signalling knows it.
    using TLength = std::function<std::optional<std::uint64_t>(const TToi&)>;

    explicit CObjects(SObjectsKept& kept) : m_kept(kept) {}
    ~CObjects();
    CObjects(const CObjects&) = delete;
    CObjects& operator=(const CObjects&) = delete;

    /// Takes a packet of source data; `length` is asked for objects whose packets do not say it.
    void Take(const SLctPacket& packet, const SMoment& moment, const TLength& length);
    /// What there is to say when the capture ends at that moment.
    SObjectsDelivery Result(std::int64_t end) const;

  private:
    struct SObject {
        TToi toi;
        CIntervals bytes;
        std::optional<std::uint64_t> length;
        std::uint64_t firstOffset = 0;
        SMoment first;
        SMoment last;
        std::int64_t silence = 0;  ///< the longest between two packets
        std::uint64_t packets = 0;
        std::uint64_t doneBefore = 0;  ///< objects of the session that were sent to their end before its first packet
        std::uint64_t doneSince = 0;   ///< and until its last one
        std::uint64_t used = 0;
        bool again = false;      ///< it was whole before
        bool signalled = false;  ///< its length is signalling's
        bool unsaid = false;     ///< a packet came that does not say its length
        bool mixed = false;      ///< bytes of it may be gone with another of its TOI
        bool lastCame = false;   ///< its last byte came
        bool closed = false;     ///< the sender says that no more comes
        bool lost = false;       ///< of too many pieces: nothing can be said
    };

    bool m_Find(const TToi& toi);
    SObject& m_Open(const TToi& toi, const SMoment& moment, const TLength& length);
    void m_Begin(SObject& object, const TToi& toi, const SMoment& moment, const TLength& length);
    void m_Add(SObject& object, std::uint64_t begin, std::uint64_t end);
    void m_Whole(const TToi& toi, bool again);
    void m_Remove(std::size_t place);
    bool m_IsOver(const SObject& object, std::int64_t now) const;
    bool m_BeganBefore(const SObject& object) const;
    void m_Judge(const SObject& object, std::int64_t now, bool atEnd, SObjectsDelivery& counts) const;

    SObjectsKept& m_kept;
    std::vector<SObject> m_open;
    std::size_t m_last = 0;  ///< the place in m_open that was used last
    CIntervals m_whole;      ///< TOIs
    bool m_allWhole = true;  ///< none of them had to go
    std::optional<std::int64_t> m_begun;
    std::uint64_t m_packets = 0;
    std::uint64_t m_done = 0;
    std::int64_t m_silence = 0;  ///< the longest between two packets of an object
    std::int64_t m_longest = 0;  ///< that an object took, as far as it was seen
    SObjectsDelivery m_counts;
};

}  // namespace vyr::inspect
