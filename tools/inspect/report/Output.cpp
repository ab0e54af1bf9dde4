#include "report/Output.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <memory>
#include <utility>

#include "base/Files.h"
#include "report/Progress.h"

namespace vyr::inspect {

namespace {

volatile std::sig_atomic_t g_reopen = 0;

int WriteText(int file, const std::string& text)
{
    return WriteAll(file, {reinterpret_cast<const unsigned char*>(text.data()), text.size()});
}

}  // namespace

COutput::COutput(CProgress& progress, std::string file)
    : m_progress(progress), m_name(std::move(file)), m_file(STDOUT_FILENO)
{
    if (!m_name.empty()) {
        m_Open(O_TRUNC);
    }
}

COutput::~COutput()
{
    if (m_file > STDERR_FILENO) {
        close(m_file);
    }
}

void COutput::Reopen()
{
    g_reopen = 1;
}

void COutput::m_Open(int flags)
{
    if (m_file > STDERR_FILENO) {
        close(m_file);
    }
    m_file = open(m_name.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | flags, 0666);
    m_error = m_file < 0 ? errno : 0;
}

void COutput::Write(const std::string& lines)
{
    if (g_reopen != 0 && !m_name.empty()) {
        g_reopen = 0;
        m_Open(0);
    }
    if (m_error == 0) {
        m_progress.Clear();
        m_error = WriteText(m_file, lines);
    }
}

COutputFile::COutputFile(const std::string& name) : m_name(name)
{
    if (name.empty()) {
        return;
    }
    struct stat about {};
    m_file = open(name.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
    m_error = m_file < 0 || fstat(m_file, &about) != 0 ? errno : 0;
    if (m_error == 0 && S_ISREG(about.st_mode)) {
        const std::unique_ptr<char, decltype(&std::free)> path(realpath(name.c_str(), nullptr), &std::free);
        m_path = path ? path.get() : "";
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
    if (m_file < 0 || (!m_path.empty() && m_Replace(bytes))) {
        return;
    }
    // Pipes and devices have no length to set.
    if (ftruncate(m_file, 0) != 0 && errno != EINVAL) {
        m_error = errno;
        return;
    }
    lseek(m_file, 0, SEEK_SET);
    m_error = WriteText(m_file, bytes);
}

/// False: no file can be made beside it, or given its mode.
bool COutputFile::m_Replace(const std::string& bytes)
{
    const std::string next = m_path + '.' + std::to_string(getpid()) + ".new";
    struct stat about {};
    const int file = open(next.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (file < 0) {
        return false;
    }
    const bool alike = fstat(m_file, &about) == 0 && fchmod(file, about.st_mode & 0777) == 0;
    int error = alike ? WriteText(file, bytes) : 0;
    if (alike && error == 0 && rename(next.c_str(), m_path.c_str()) != 0) {
        error = errno;
    }
    if (!alike || error != 0) {
        unlink(next.c_str());
        close(file);
        m_error = error;
        return alike;
    }
    close(m_file);
    m_file = file;
    m_error = 0;
    return true;
}

}  // namespace vyr::inspect
