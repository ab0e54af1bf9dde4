#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <vector>

#include "model/Counts.h"
#include "wire/Lct.h"

namespace vyr::inspect {

class CObjectAssembler;

/// The memory that the objects of all sessions share while they are put together. When there is too
/// little, the object that was begun first goes.
class CAssemblyMemory {
  public:
    static constexpr std::size_t k_limit = 67108864;

  private:
    friend class CObjectAssembler;

    std::size_t m_held = 0;
    std::uint64_t m_next = 0;
    std::map<std::uint64_t, CObjectAssembler*> m_open;  ///< by when they were begun
};

/// Puts the objects of one transport session together, in bounded memory, whatever order their bytes
/// come in. An object is whole when its length is known and all its bytes are there; what comes of it
/// afterwards begins it anew. Bytes that contradict those held begin it anew too: the sender has
/// another object under the TOI now.
class CObjectAssembler {
  public:
    static constexpr std::size_t k_maxObject = 8388608;  ///< bytes
    static constexpr std::size_t k_limit = 16777216;     ///< bytes held for the session
    static constexpr std::size_t k_chunkCost = 256;      ///< what a piece of an object costs besides its bytes

    /// An object that is not whole.
    struct SIncomplete {
        TToi toi;
        std::size_t held;                     ///< bytes that are there
        std::optional<std::uint64_t> length;  ///< bytes that should be
    };

    /// The sink's object is good during the call only.
    CObjectAssembler(CAssemblyMemory& memory, std::function<void(const TToi&, SView)> sink);
    ~CObjectAssembler();
    CObjectAssembler(const CObjectAssembler&) = delete;
    CObjectAssembler& operator=(const CObjectAssembler&) = delete;

    /// Takes a packet that carries source data.
    void Take(const SLctPacket& packet);
    const SObjectCounts& Counts() const { return m_counts; }
    /// Whether the object is begun and not whole.
    bool Holds(const TToi& toi) const { return m_open.count(toi) != 0; }
    /// Lets such an object go, uncounted; false: it is none.
    bool Drop(const TToi& toi);
    /// The objects that are not whole now, by when they were begun.
    std::vector<SIncomplete> Open() const;

  private:
    struct SObject {
        std::uint64_t begun = 0;
        std::map<std::size_t, std::vector<unsigned char>> chunks;  ///< by offset; they do not overlap
        std::size_t held = 0;                                      ///< bytes of all chunks
        std::optional<std::uint64_t> length;
    };
    using TOpen = std::map<TToi, SObject>;

    SObject& m_Begin(const TToi& toi);
    static bool m_Contradicts(const SObject& object, std::size_t start, SView data,
                              const std::optional<std::uint64_t>& length);
    void m_Put(SObject& object, std::size_t start, SView data);
    void m_PutGap(SObject& object, std::size_t start, SView data);
    void m_Drop(TOpen::iterator object);
    void m_MakeRoom();
    void m_Deliver(TOpen::iterator object);

    CAssemblyMemory& m_memory;
    std::function<void(const TToi&, SView)> m_sink;
    TOpen m_open;
    std::map<std::uint64_t, TToi> m_order;  ///< of m_open, by when they were begun
    std::size_t m_held = 0;
    SObjectCounts m_counts;
};

}  // namespace vyr::inspect
