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

TEST(Text, Times)
{
    EXPECT_EQ(InstantText(1800000000, 0), "2027-01-15T08:00:00.000Z");
    EXPECT_EQ(InstantText(1800000000, 999999999), "2027-01-15T08:00:00.999999999Z") << "never rounded";
    EXPECT_EQ(InstantText(1800000000, 250000), "2027-01-15T08:00:00.000250Z");
    EXPECT_EQ(InstantText(1800000000, 250000000, 6), "2027-01-15T08:00:00.250000Z");
    const struct {
        double seconds;
        const char* text;
    } k_epochs[] = {
        {1795226543.328, "2026-11-21T02:02:23.328Z"},
        {1795226543.328125, "2026-11-21T02:02:23.328125Z"},
        {1795226543.9999999, "2026-11-21T02:02:24Z"},
        {0, "1970-01-01T00:00:00Z"},
        {-0.5, "1969-12-31T23:59:59.500Z"},
        {-62135596800, "0001-01-01T00:00:00Z"},
        {-62135596801, "-6.21355968e+10"},
        {253402300798, "9999-12-31T23:59:58Z"},
        {253402300800, "2.53402301e+11"},
    };
    for (const auto& test : k_epochs) {
        EXPECT_EQ(EpochText(test.seconds), test.text);
    }
    const struct {
        double number;
        const char* text;
    } k_numbers[] = {{0, "0"},
                     {30, "30"},
                     {100, "100"},
                     {2.5, "2.5"},
                     {-0.25, "-0.25"},
                     {7.987664396, "7.987664"},
                     {540 + 56.46, "596.46"},
                     {0.0005, "0.0005"},
                     {2e9, "2e+09"}};
    for (const auto& test : k_numbers) {
        EXPECT_EQ(NumberText(test.number), test.text);
    }
}

}  // namespace
