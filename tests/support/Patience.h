#pragma once

#include <gtest/gtest.h>

#include <ctime>
#include <string>
#include <utility>

/// Ends a test whose work is not linear: that takes a minute of the processor and more where it is used, linear work a
/// fraction of a second.
class CPatience {
  public:
    explicit CPatience(std::string name) : m_name(std::move(name)), m_start(std::clock()) {}
    ~CPatience() { EXPECT_LT(std::clock() - m_start, 15 * CLOCKS_PER_SEC) << m_name; }
    CPatience(const CPatience&) = delete;
    CPatience& operator=(const CPatience&) = delete;

  private:
    std::string m_name;
    std::clock_t m_start;
};
