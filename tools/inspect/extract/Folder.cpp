#include "extract/Folder.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>

#include "base/Files.h"
#include "base/Text.h"

namespace vyr::inspect {

namespace {

constexpr int k_newFile = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
constexpr int k_directory = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

/// 0, or why the folder is not known to be empty.
int WhyNotEmpty(int folder)
{
    const int own = openat(folder, ".", k_directory);
    DIR* list = own >= 0 ? fdopendir(own) : nullptr;
    if (list == nullptr) {
        const int error = errno;
        close(own);
        return error;
    }
    int found = 0;
    errno = 0;
    for (const dirent* entry = readdir(list); entry != nullptr && found == 0; entry = readdir(list)) {
        found = std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0 ? ENOTEMPTY : 0;
    }
    found = found == 0 ? errno : found;
    closedir(list);
    return found;
}

}  // namespace

CFolder::CFolder(const std::string& name)
{
    const bool made = mkdir(name.c_str(), 0777) == 0;
    if (made || errno == EEXIST) {
        m_folder = open(name.c_str(), k_directory);
    }
    int error = m_folder < 0 ? errno : WhyNotEmpty(m_folder);
    if (error == 0) {
        m_index = openat(m_folder, "index.jsonl", k_newFile | O_APPEND, 0666);
        error = m_index < 0 ? errno : 0;
    }
    if (error != 0) {
        if (m_folder >= 0) {
            close(m_folder);
        }
        throw std::runtime_error(Printable(name) + ": " + std::strerror(error));
    }
}

CFolder::~CFolder()
{
    for (const int descriptor : {m_within, m_index, m_folder}) {
        if (descriptor >= 0) {
            close(descriptor);
        }
    }
}

bool CFolder::Write(const std::string& folder, const std::string& name, const std::vector<SView>& bytes,
                    const std::string& line)
{
    if (m_error != 0 || !m_Enter(folder)) {
        return false;
    }
    const int file = openat(m_within, name.c_str(), k_newFile, 0666);
    if (file < 0) {
        return m_Failed();
    }
    for (const SView& part : bytes) {
        m_error = m_error == 0 ? WriteAll(file, part) : m_error;
    }
    if (close(file) != 0 && m_error == 0) {
        m_Failed();
    }
    if (m_error != 0 || !m_Note(line)) {
        unlinkat(m_within, name.c_str(), 0);
    }
    return m_error == 0;
}

bool CFolder::m_Note(const std::string& line)
{
    m_error = WriteAll(m_index, {reinterpret_cast<const unsigned char*>(line.data()), line.size()});
    if (m_error == 0) {
        m_indexSize += line.size();
        return true;
    }
    // What came of the line goes; where that fails as well, there is nothing more to be done.
    const int ignored = ftruncate(m_index, static_cast<off_t>(m_indexSize));
    static_cast<void>(ignored);
    return false;
}

bool CFolder::m_Failed()
{
    m_error = errno;
    return false;
}

/// Opens the folder within, which is made if it is not one of ours yet.
bool CFolder::m_Enter(const std::string& folder)
{
    if (m_within >= 0 && m_entered == folder) {
        return true;
    }
    if (m_folders.count(folder) == 0 && mkdirat(m_folder, folder.c_str(), 0777) != 0) {
        return m_Failed();
    }
    m_folders.insert(folder);
    const int within = openat(m_folder, folder.c_str(), k_directory | O_NOFOLLOW);
    if (within < 0) {
        return m_Failed();
    }
    if (m_within >= 0) {
        close(m_within);
    }
    m_within = within;
    m_entered = folder;
    return true;
}

}  // namespace vyr::inspect
