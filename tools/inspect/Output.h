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

  private:
    CProgress& m_progress;
    int m_error = 0;
};

}  // namespace vyr::inspect
