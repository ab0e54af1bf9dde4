#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

// Programs that a test runs, and files of its own.

/// Empty where there is none.
inline std::string ReadFile(const std::string& name)
{
    std::ifstream file(name, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

/// A file of the test's own, gone with it.
class CTemporary {
  public:
    explicit CTemporary(const std::string& bytes = {}) : m_name(testing::TempDir() + "vyr-file-XXXXXX")
    {
        close(mkstemp(m_name.data()));
        Write(bytes);
    }
    ~CTemporary() { std::remove(m_name.c_str()); }
    CTemporary(const CTemporary&) = delete;
    CTemporary& operator=(const CTemporary&) = delete;
    const std::string& Name() const { return m_name; }
    void Write(const std::string& bytes) const { std::ofstream(m_name, std::ios::binary) << bytes; }

  private:
    std::string m_name;
};

/// A folder of the test's own, gone with it and all that is in it.
class CTemporaryFolder {
  public:
    CTemporaryFolder() : m_name(testing::TempDir() + "vyr-folder-XXXXXX")
    {
        EXPECT_NE(mkdtemp(m_name.data()), nullptr);
    }
    ~CTemporaryFolder() { std::filesystem::remove_all(m_name); }
    CTemporaryFolder(const CTemporaryFolder&) = delete;
    CTemporaryFolder& operator=(const CTemporaryFolder&) = delete;
    const std::string& Name() const { return m_name; }
    std::string Of(const std::string& file) const { return m_name + '/' + file; }

  private:
    std::string m_name;
};

struct SEnded {
    std::string out;
    int status = -1;  ///< that it exited with; -1: otherwise
};

/// What the shell's command writes, and how it ends.
inline SEnded Shell(const std::string& command)
{
    SEnded ended;
    FILE* const pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) {
        return ended;
    }
    char chunk[4096];
    for (std::size_t count = 0; (count = fread(chunk, 1, sizeof chunk, pipe)) > 0;) {
        ended.out.append(chunk, count);
    }
    const int status = pclose(pipe);
    ended.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return ended;
}
