#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace vyr::inspect {

/// One line on stderr that tells how far the run is, at most six times a second.
class CProgress {
  public:
    explicit CProgress(bool enabled) : m_enabled(enabled) {}

    void Show(const std::string& file, std::uint64_t packets);
    /// The same, for who calls it seldom.
    void ShowNow(const std::string& file, std::uint64_t packets);
    /// Makes room for other output.
    void Clear();

  private:
    const bool m_enabled;
    bool m_shown = false;
    std::chrono::steady_clock::time_point m_last;
};

}  // namespace vyr::inspect
