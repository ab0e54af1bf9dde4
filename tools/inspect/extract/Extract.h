#pragma once

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "base/Bytes.h"
#include "base/JsonFwd.h"
#include "extract/Folder.h"
#include "model/Report.h"
#include "model/Witness.h"

namespace vyr::inspect {

/// Writes out what is new or has changed, as it was sent and inflated, with an index of where each came from and what
/// it is. Names of files are the tool's own; those of the broadcast stand in the index alone.
class CExtract : public IWitness {
  public:
    static constexpr std::size_t k_mostFiles = 65536;
    static constexpr std::size_t k_mostFolders = 4096;

    /// `limit` is bytes, the index included. The report tells of what is chosen while there is one, and outlives it.
    /// Throws std::runtime_error when the folder cannot be used.
    CExtract(CReport& report, const std::string& folder, std::uint64_t limit);
    ~CExtract() override;
    CExtract(const CExtract&) = delete;
    CExtract& operator=(const CExtract&) = delete;

    void Table(const STable& table) override;
    void Signalling(const SSignalling& signalling) override;
    void Message(const SMessage& message) override;
    void GuideObject(const SGuideObject& object) override;
    void Guide(const SGuide&) override {}
    void File(const SFile& file) override;
    /// errno of a failure to write, 0: none.
    int Error() const { return m_folder.Error(); }

  private:
    struct SPiece;
    struct SItem;

    using TKey = std::pair<std::uint64_t, std::uint64_t>;  ///< hashes of what it is, and of its bytes

    bool m_Takes(const SItem& item) const;
    void m_Write(SItem& item);
    void m_Full(const SSource& source, const std::string& most);

    CReport& m_report;
    CFolder m_folder;
    const std::uint64_t m_limit;
    std::uint64_t m_bytes = 0;  ///< that are written
    std::size_t m_items = 0;
    std::size_t m_files = 0;
    bool m_full = false;
    std::set<TKey> m_known;  ///< of the files
};

}  // namespace vyr::inspect
