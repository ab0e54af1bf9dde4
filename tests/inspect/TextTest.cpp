#include "base/Text.h"

#include <gtest/gtest.h>

namespace {

using namespace vyr::inspect;

TEST(Text, WhatATerminalWouldObeyIsEscaped)
{
    const struct {
        const char* name;
        std::string text;
        std::string expected;
    } cases[] = {
        {"plain and accented", "Télév 日本 \xF0\x9F\x93\xBA", "Télév 日本 \xF0\x9F\x93\xBA"},
        {"escape sequence", "\x1B[2J\x7F\n", "\\x1B[2J\\x7F\\x0A"},
        {"zero byte", std::string("a\0b", 3), "a\\x00b"},
        {"C1 control", "\xC2\x9B\xC2\xA0", "\\x9B\xC2\xA0"},
        {"direction override", "\xE2\x80\xAE", "\\u202E"},
        {"stray continuation", "\x80z", "\\x80z"},
        {"cut at the end", "T\xC3", "T\\xC3"},
        {"cut in the middle", "\xE6\x97z", "\\xE6\\x97z"},
        {"overlong", "\xC0\xAF\xE0\x80\xAF", "\\xC0\\xAF\\xE0\\x80\\xAF"},
        {"surrogate", "\xED\xA0\x80", "\\xED\\xA0\\x80"},
        {"past the last code point", "\xF4\x90\x80\x80", "\\xF4\\x90\\x80\\x80"},
        {"last code point", "\xF4\x8F\xBF\xBF", "\xF4\x8F\xBF\xBF"},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(Printable(test.text), test.expected) << test.name;
    }
    EXPECT_EQ(Aligned({{"Télév 日本", "a"}, {"12345678", "b"}}), "  Télév 日本  a\n  12345678  b\n");
}

TEST(Text, Numbers)
{
    const unsigned char bytes[] = {0x00, 0x9F, 0xF0};
    EXPECT_EQ(Hex({bytes, sizeof bytes}), "009ff0");
    EXPECT_EQ(EndpointText(0xE000173C, 4937), "224.0.23.60:4937");
}

}  // namespace
