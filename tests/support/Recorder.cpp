#include "support/Recorder.h"

#include <cstdarg>
#include <cstdio>
#include <fstream>
#include <iterator>

#include "platform/BaseParser.h"
#include "support/Places.h"

std::vector<std::string> CRecorder::s_log;
std::vector<SAssertion> CRecorder::s_assertions;
std::map<std::string, int> CRecorder::s_settings;

void _TCParserAssert(const char* expression, const char* file, unsigned line)
{
    CRecorder::s_assertions.push_back({expression, file, line});
}

static void Record(int /*priority*/, const char* /*tag*/, const char* format, va_list arguments)
{
    char text[4096];
    std::vsnprintf(text, sizeof text, format, arguments);
    CRecorder::s_log.push_back(text);
}

static bool Setting(const char* key, int* value)
{
    const auto found = CRecorder::s_settings.find(key);
    if (found == CRecorder::s_settings.end()) {
        return false;
    }
    *value = found->second;
    return true;
}

void CRecorder::SetUp()
{
    s_log.clear();
    s_assertions.clear();
    s_settings.clear();
    const SPlatform platform = {Record, Setting};
    SetPlatform(&platform);
    SetLogPriority(LOG_PRIORITY_DEBUG);
}

void CRecorder::TearDown()
{
    EXPECT_EQ(TakeAssertions(), "");
}

int CRecorder::Logged(const std::string& text)
{
    int count = 0;
    for (const std::string& line : s_log) {
        count += line.find(text) != std::string::npos;
    }
    return count;
}

std::string CRecorder::TakeAssertions()
{
    std::string all;
    for (const SAssertion& assertion : s_assertions) {
        all += (all.empty() ? "" : "; ") + assertion.expression;
    }
    s_assertions.clear();
    return all;
}

std::string ReadData(const std::string& name)
{
    std::ifstream file(DataFile(name), std::ios::binary);
    EXPECT_TRUE(file) << name;
    return std::string(std::istreambuf_iterator<char>(file), {});
}

std::vector<unsigned char> Exact(const std::string& bytes)
{
    std::vector<unsigned char> block(bytes.begin(), bytes.end());
    block.shrink_to_fit();
    return block;
}
