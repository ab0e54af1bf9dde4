#pragma once

#include <string>

namespace vyr::inspect {

class CProgress;

/// Standard output, or a file in its place: whole lines, on their way at once. Writing stops at the first failure.
class COutput {
  public:
    /// Replaces the file, if one is named.
    explicit COutput(CProgress& progress, std::string file = {});
    ~COutput();
    COutput(const COutput&) = delete;
    COutput& operator=(const COutput&) = delete;

    /// The file is opened anew before the next line, and made if it has been moved away; for signal handlers.
    static void Reopen();
    void Write(const std::string& lines);
    /// errno of the failure, 0: none. EPIPE: the reader has gone.
    int Error() const { return m_error; }
    /// The run goes on though nobody reads its lines.
    void SetOptional() { m_optional = true; }
    /// Whether there is nobody left to report to.
    bool Ended() const { return m_error != 0 && !m_optional; }

  private:
    void m_Open(int flags);

    CProgress& m_progress;
    const std::string m_name;
    int m_file;
    int m_error = 0;
    bool m_optional = false;
};

/// A file of the tool's own, which is written whole. What it held before stays until then, and whoever reads it sees
/// the one or the other: it takes the place of the last one at once. A pipe or a device is written to as it is.
class COutputFile {
  public:
    /// Opens or makes the file, to see that it can be written; an empty name opens none.
    explicit COutputFile(const std::string& name);
    ~COutputFile();
    COutputFile(const COutputFile&) = delete;
    COutputFile& operator=(const COutputFile&) = delete;

    const std::string& Name() const { return m_name; }
    /// Replaces what the file holds; nothing, without one.
    void Write(const std::string& bytes);
    /// errno of the last failure, 0: none.
    int Error() const { return m_error; }

  private:
    bool m_Replace(const std::string& bytes);

    const std::string m_name;
    std::string m_path;  ///< that links lead to; empty: it is no regular file
    int m_file = -1;
    int m_error = 0;
};

}  // namespace vyr::inspect
