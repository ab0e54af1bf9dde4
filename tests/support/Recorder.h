#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <map>
#include <string>
#include <vector>

#include "platform/Platform.h"
#include "support/Gzip.h"

/// One call of the assertion sink.
struct SAssertion {
    std::string expression;
    std::string file;
    unsigned line;
};

/// Fixture of every test: records what the library logs and asserts, and serves its settings. A test
/// whose assertions were not all taken fails.
class CRecorder : public testing::Test {
  public:
    static std::vector<std::string> s_log;  ///< formatted messages, all priorities
    static std::vector<SAssertion> s_assertions;
    static std::map<std::string, int> s_settings;
    /// The expressions asserted since the last call, joined with "; ".
    static std::string TakeAssertions();

  protected:
    void SetUp() override;
    void TearDown() override;

    /// Number of messages that contain the text.
    static int Logged(const std::string& text);
};

/// The time zone of the process while it lives.
struct SZone {
    explicit SZone(const char* zone)
    {
        setenv("TZ", zone, 1);
        tzset();
    }
    ~SZone()
    {
        unsetenv("TZ");
        tzset();
    }
    SZone(const SZone&) = delete;
    SZone& operator=(const SZone&) = delete;
};

/// Bytes of a file of tests/data.
std::string ReadData(const std::string& name);

/// The bytes in a heap block of exactly their size, so that a read past the end is seen.
std::vector<unsigned char> Exact(const std::string& bytes);
