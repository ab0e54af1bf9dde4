#include "base/Text.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

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
        {"Arabic letter mark", "\u061B\u061C\u061D", "\u061B\\u061C\u061D"},
        {"soft hyphen", "\u00AC\u00AD\u00AE", "\u00AC\\xAD\u00AE"},
        {"annotation", "\uFFF9\uFFFB\uFFFC", "\\uFFF9\\uFFFB\uFFFC"},
        {"tag characters", "\U000E0041\U000E1000", "\\U000E0041\U000E1000"},
        {"emoji as a picture", "\u2764\uFE0F", "\u2764\uFE0F"},
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

TEST(Text, JsonStaysOneLineAndSaysTheSame)
{
    const std::string text = "\"a\u2028b\u0085c\u00A0\U000E0041\U0001F4FA\x7F\"";
    const std::string json = PlainJson(text);
    EXPECT_EQ(json, "\"a\\u2028b\\u0085c\u00A0\\udb40\\udc41\U0001F4FA\\u007f\"");
    EXPECT_EQ(nlohmann::json::parse(json), nlohmann::json::parse(text));
}

TEST(Text, Numbers)
{
    const unsigned char bytes[] = {0x00, 0x9F, 0xF0};
    EXPECT_EQ(Hex({bytes, sizeof bytes}), "009ff0");
    EXPECT_EQ(EndpointText(0xE000173C, 4937), "224.0.23.60:4937");
}

}  // namespace
