#include "Output.h"

#include <cerrno>
#include <cstdio>

#include "Progress.h"

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

}  // namespace vyr::inspect
