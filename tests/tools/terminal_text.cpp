// SPDX-License-Identifier: Apache-2.0
#include "cli/terminal_text.hpp"

#include <gtest/gtest.h>

namespace morvath::tests::terminal_text
{

TEST(TerminalText, ShowsWhatCouldSteerATerminal)
{
    struct
    {
        std::string_view text;
        const char* shown;
        std::size_t width;
    } const cases[]{
        {"", "", 0},
        {"Inlet_Temp", "Inlet_Temp", 10},
        {"Größe", "Größe", 5},
        {"日本", "日本", 4},
        {"😀", "😀", 2},
        {"e\u0301", "e\u0301", 1},
        {"a\nb\r\t", "a\\x0ab\\x0d\\x09", 14},
        {"\x1b]0;title\x07", "\\x1b]0;title\\x07", 16},
        {"\x7f", "\\x7f", 4},
        {{"\0", 1}, "\\x00", 4},
        {"\u009b31m", "\\u009b31m", 9},
        {"\x9b", "\\x9b", 4},
        {"\u202eabc\u2066", "\\u202eabc\\u2066", 15},
        {"\u2028\u061c", "\\u2028\\u061c", 12},
        {"\ufeff\u200b", "\\ufeff\\u200b", 12},
        {"\U000e0041", "\\U000e0041", 10},
        {"\xc0\x9b", "\\xc0\\x9b", 8},
        {"\xe0\x80\x9b", "\\xe0\\x80\\x9b", 12},
        {"\xed\xa0\x80", "\\xed\\xa0\\x80", 12},
        {"\xf4\x90\x80\x80", "\\xf4\\x90\\x80\\x80", 16},
        {"ab\xe2\x82", "ab\\xe2\\x82", 10},
    };
    for (const auto& [text, shown, width] : cases)
    {
        EXPECT_EQ(cli::visible(text), shown);
        EXPECT_EQ(cli::widthOf(cli::visible(text)), width) << shown;
    }
}

TEST(TerminalText, CutsBetweenCharacters)
{
    const std::tuple<const char*, std::size_t, const char*> cases[]{
        {"abcdef", 6, "abcdef"}, {"abcdef", 5, "abcd…"}, {"日本語", 5, "日本…"},
        {"日本語", 4, "日…"},    {"a\x1b", 4, "a…"},     {"e\u0301e", 1, "…"},
    };
    for (const auto& [text, width, shown] : cases)
    {
        EXPECT_EQ(cli::visible(text, width), shown);
    }
}

TEST(TerminalText, EscapesJsonWithoutChangingIt)
{
    EXPECT_EQ(cli::visibleJson("{\n\"a\": \"é\u009b\u202e\x7f\U000e0041\"}"),
              "{\n\"a\": \"é\\u009b\\u202e\\u007f\\udb40\\udc41\"}");
}

} // namespace morvath::tests::terminal_text
