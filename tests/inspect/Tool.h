#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

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

std::string Command(const std::string& arguments);

/// The lines, each of which is to be what the schema says (of a file of the index: its definition), unless the text is
/// so long that it is about its length.
std::vector<nlohmann::json> Lines(const std::string& text, const std::string& definition = {});

/// The last of the lines alone, whatever the schema says.
nlohmann::json LastLine(const std::string& text);

/// Runs the tool among the test data, with `input` on standard input.
SResult Inspect(const std::string& arguments, const std::string& input = {});

inline std::string Service(int id, const std::string& attributes = {})
{
    return "<Service serviceId=\"" + std::to_string(id) + "\" serviceCategory=\"4\" " + attributes + "/>";
}

inline const std::string k_lineup = "lls/lineup-bsid2090-slt.bin";
