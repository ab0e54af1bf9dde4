#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "Schema.h"

// The tool as its users run it.

struct SResult {
    std::string out;
    std::string err;
    int status = -1;
};

inline std::string ReadFile(const std::string& name)
{
    std::ifstream file(name, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

/// A file of the test's own, gone with it.
class CTemporary {
  public:
    explicit CTemporary(const std::string& bytes = {}) : m_name(testing::TempDir() + "vyr-inspect-XXXXXX")
    {
        close(mkstemp(m_name.data()));
        std::ofstream(m_name, std::ios::binary) << bytes;
    }
    ~CTemporary() { std::remove(m_name.c_str()); }
    CTemporary(const CTemporary&) = delete;
    CTemporary& operator=(const CTemporary&) = delete;
    const std::string& Name() const { return m_name; }

  private:
    std::string m_name;
};

inline std::string Command(const std::string& arguments)
{
    return "cd '" VYR_TEST_DATA "' && exec '" VYR_INSPECT "' " + arguments;
}

constexpr std::size_t k_longReport = 500000;  ///< such are about their length: the schema is not held against them

/// The lines, each of which is to be what the schema says (of a file of the index: its definition).
inline std::vector<nlohmann::json> Lines(const std::string& text, const std::string& definition = {})
{
    std::vector<nlohmann::json> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(nlohmann::json::parse(line));
        if (text.size() < k_longReport) {
            EXPECT_EQ(SchemaFaultOfMany(lines.back(), definition), "");
        }
    }
    return lines;
}

/// Runs the tool among the test data, with `input` on standard input.
inline SResult Inspect(const std::string& arguments, const std::string& input = {})
{
    const CTemporary in(input);
    const CTemporary err;
    SResult result;
    FILE* pipe = popen(Command(arguments + " < '" + in.Name() + "' 2> '" + err.Name() + "'").c_str(), "r");
    char chunk[4096];
    for (std::size_t count = 0; (count = fread(chunk, 1, sizeof chunk, pipe)) > 0;) {
        result.out.append(chunk, count);
    }
    const int status = pclose(pipe);
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    result.err = ReadFile(err.Name());
    if (arguments.find("--json") != std::string::npos && result.out.size() < k_longReport) {
        Lines(result.out);
    }
    return result;
}

inline std::string Service(int id, const std::string& attributes = {})
{
    return "<Service serviceId=\"" + std::to_string(id) + "\" serviceCategory=\"4\" " + attributes + "/>";
}

inline const std::string k_lineup = "lls/lineup-bsid2090-slt.bin";
