#pragma once

#include <string>

namespace vyr::inspect {

class CProgress;

/// Standard output: whole lines, on their way at once. Writing stops at the first failure.
class COutput {
  public:
    explicit COutput(CProgress& progress) : m_progress(progress) {}

    void Write(const std::string& lines);
    /// errno of the failure, 0: none. EPIPE: the reader has gone.
    int Error() const { return m_error; }
    /// The run goes on though nobody reads its lines.
    void SetOptional() { m_optional = true; }
    /// Whether there is nobody left to report to.
    bool Ended() const { return m_error != 0 && !m_optional; }

  private:
    CProgress& m_progress;
    int m_error = 0;
    bool m_optional = false;
};

/// A file of the tool's own. What it held before stays until it is written.
class COutputFile {
  public:
    /// Opens or makes the file; an empty name opens none.
    explicit COutputFile(const std::string& name);
    ~COutputFile();
    COutputFile(const COutputFile&) = delete;
    COutputFile& operator=(const COutputFile&) = delete;

    /// Replaces what the file holds.
    void Write(const std::string& bytes);
    /// errno of the failure, 0: none.
    int Error() const { return m_error; }

  private:
    int m_file = -1;
    int m_error = 0;
};

}  // namespace vyr::inspect
