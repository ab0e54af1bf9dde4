#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <vector>

#include "base/BoundedMap.h"
#include "content/SlsParts.h"
#include "content/SlsReader.h"
#include "follow/Follower.h"

namespace vyr::inspect {

/// Follows the signalling of one ROUTE session, object by object: tells of each what is new about it.
class CSlsFollower : public CFollower {
  public:
    static constexpr std::size_t k_maxPackage = 8388608;  ///< bytes of an inflated object

    /// Told of each S-TSID that parsed; good during the call only.
    using TStsidListener = CSlsReader::TStsidListener;

    /// All references outlive the follower.
    CSlsFollower(const SFollowed& followed, CReport& report, TStsidListener stsidListener = {});

    /// Takes one whole object; `toi` is none for a raw file. False: it holds no document.
    bool Take(const std::optional<TToi>& toi, SView object, const SSource& source);
    /// Whether an object of this TOI and length has come whole.
    bool Has(const TToi& toi, const std::optional<std::uint64_t>& size) const;
    /// Lets go of what the library holds for the session.
    void Release() { m_reader.Release(); }
    bool Holds() const { return m_reader.Holds(); }
    /// The S-TSID that holds; null when the library's was let go.
    const CSTSID* Stsid() const { return m_reader.Stsid(); }
    /// Lets the listener know of the next S-TSID again, even if it has not changed.
    void ReadAgain() { m_readAgain = true; }

  private:
    static constexpr std::size_t k_maxObjects = 64;

    static constexpr std::size_t k_maxServices = 64;

    static constexpr ESlsDocument k_unread = static_cast<ESlsDocument>(k_slsDocuments);  ///< parts that are not read

    /// Documents of one kind replace each other; those of another service on the session do not.
    using TSlot = std::pair<unsigned, ESlsDocument>;
    struct SObject {
        std::size_t size = 0;
        std::uint64_t hash = 0;                                ///< as sent
        std::uint64_t textHash = 0;                            ///< inflated
        std::vector<std::pair<TSlot, std::uint64_t>> brought;  ///< its documents
    };

    bool m_Repeated(SSignalling& signalling);
    bool m_Stands(const SObject& object) const;
    unsigned m_Service();
    std::optional<unsigned> m_SlotOf(std::optional<unsigned> service) const;
    CSlsReader::SWanted m_Wants(const SSlsText& text, std::optional<unsigned> service) const;
    EStatus m_Status(const std::vector<SSlsText>& texts, std::vector<SSlsDocument>& documents, const SPackage& package,
                     bool sameToi, SObject& object);
    void m_PackageFindings(const SPackage& package, const std::vector<SEnvelopeItem>& items, const SSource& source);
    void m_DocumentFindings(const std::vector<SSlsDocument>& documents, const SSource& source);
    std::string m_Key(const TSlot& slot) const;
    EDocumentStatus m_Compare(const TSlot& slot, const SSlsText& text);
    bool m_NotRead(const std::optional<TToi>& toi, const std::string& why, const SSource& source, bool known = false);

    CSlsReader m_reader;
    CBoundedMap<TToi, SObject> m_objects{k_maxObjects};
    std::map<TSlot, std::uint64_t> m_documents;    ///< hashes of what stands
    std::map<unsigned, unsigned> m_slots;          ///< of the services of the USBDs that came; 0 is the first one's
    std::map<ERule, std::string> m_toldOfPackage;  ///< the last message of each
    bool m_readAgain = false;
};

}  // namespace vyr::inspect
