#pragma once

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "base/Bytes.h"

namespace vyr::inspect {

/// A folder of the tool's own, and what it puts there: files in folders within, each once and whole or not at all, and
/// an index of whole lines. Nothing is written over, through a link, or outside; after the first failure nothing more
/// is written.
class CFolder {
  public:
    /// Makes the folder, or takes an empty one. Throws std::runtime_error.
    explicit CFolder(const std::string& name);
    ~CFolder();
    CFolder(const CFolder&) = delete;
    CFolder& operator=(const CFolder&) = delete;

    /// Writes a file, and the line of the index that is of it. Names are plain: letters, digits, '.' and '-'. False:
    /// nothing of either is there.
    bool Write(const std::string& folder, const std::string& name, const std::vector<SView>& bytes,
               const std::string& line);
    bool Has(const std::string& folder) const { return m_folders.count(folder) != 0; }
    std::size_t Folders() const { return m_folders.size(); }
    /// errno of the first failure, 0: none.
    int Error() const { return m_error; }

  private:
    bool m_Failed();
    bool m_Enter(const std::string& folder);
    bool m_Note(const std::string& line);

    int m_folder = -1;
    int m_index = -1;
    std::uint64_t m_indexSize = 0;
    std::set<std::string> m_folders;  ///< that were made
    std::string m_entered;            ///< the one that `m_within` is
    int m_within = -1;
    int m_error = 0;
};

}  // namespace vyr::inspect
