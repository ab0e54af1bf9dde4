#include "report/Output.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "report/Progress.h"

namespace vyr::inspect {

void COutput::Write(const std::string& lines)
{
    if (m_error != 0) {
        return;
    }
    m_progress.Clear();
    if (std::fwrite(lines.data(), 1, lines.size(), stdout) != lines.size() || std::fflush(stdout) != 0) {
        m_error = errno;
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
    for (std::size_t at = 0; at < bytes.size();) {
        const ssize_t written = write(m_file, bytes.data() + at, bytes.size() - at);
        if (written < 0 && errno != EINTR) {
            m_error = errno;
            return;
        }
        at += written > 0 ? static_cast<std::size_t>(written) : 0;
    }
}

}  // namespace vyr::inspect
