#include "report/Output.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "report/Progress.h"

namespace vyr::inspect {

namespace {

/// 0, or why not all of it is written. An interrupt is none of the reasons.
int WriteAll(int file, const std::string& bytes)
{
    for (std::size_t at = 0; at < bytes.size();) {
        const ssize_t written = write(file, bytes.data() + at, bytes.size() - at);
        if (written < 0 && errno != EINTR) {
            return errno;
        }
        at += written > 0 ? static_cast<std::size_t>(written) : 0;
    }
    return 0;
}

}  // namespace

void COutput::Write(const std::string& lines)
{
    if (m_error == 0) {
        m_progress.Clear();
        m_error = WriteAll(STDOUT_FILENO, lines);
    }
}

COutputFile::COutputFile(const std::string& name)
{
    if (!name.empty()) {
        m_file = open(name.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
        m_error = m_file < 0 ? errno : 0;
    }
}

COutputFile::~COutputFile()
{
    if (m_file >= 0) {
        close(m_file);
    }
}

void COutputFile::Write(const std::string& bytes)
{
    // Pipes and devices have no length to set.
    if (ftruncate(m_file, 0) != 0 && errno != EINVAL) {
        m_error = errno;
        return;
    }
    m_error = WriteAll(m_file, bytes);
}

}  // namespace vyr::inspect
