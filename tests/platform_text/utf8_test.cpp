#include "platform/text/utf8.h"

#include <gtest/gtest.h>

namespace zelmora::platform {
namespace {

using namespace std::string_view_literals;

TEST(UTF8, WhatIsInvalidBecomesReplacementCharacters) {
    const std::pair<std::u16string_view, std::string_view> valid[] = {
        {u"", ""}, {u"aé漢\U0001F600", "aé漢😀"}, {u"\0x"sv, "\0x"sv}};
    for (const auto& [text, bytes] : valid) {
        EXPECT_EQ(utf8FromUTF16(text), bytes);
        EXPECT_EQ(utf16FromUTF8(bytes), text) << bytes;
    }
    EXPECT_EQ(utf8FromUTF16(u"\xD800\xD83D\xDE00\xDC00z\xDC00"), "\uFFFD😀\uFFFDz\uFFFD");
    // Byte by byte.
    EXPECT_EQ(utf16FromUTF8("a\xFFz"), u"a\uFFFDz");
    EXPECT_EQ(utf16FromUTF8("\xE3\x81漢"), u"\uFFFD\uFFFD漢");
    EXPECT_EQ(utf16FromUTF8("\xED\xA0\x80"), u"\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(utf16FromUTF8("\xC0\xAFx"), u"\uFFFD\uFFFDx");
}

TEST(UTF8, PathsAreShownWithTheirOddBytesEscaped) {
    const struct {
        std::string_view path;
        std::string_view display;
        std::string_view terminal;
    } cases[] = {
        {"", "", ""},
        {"/日本/\\é.txt", "/日本/\\é.txt", "/日本/\\é.txt"},
        {"/\x93\xFA\x96{.txt", "/\\x93\\xFA\\x96{.txt", "/\\x93\\xFA\\x96{.txt"},
        {"a\nb\rc\td", "a\nb\rc\td", "a\\nb\\rc\\td"},
        {"\x1B[2J\x7F", "\x1B[2J\x7F", "\\x1B[2J\\x7F"},
        {"\u0080\u009F\u00A0", "\u0080\u009F\u00A0", "\\xC2\\x80\\xC2\\x9F\u00A0"},
    };
    for (const auto& testCase : cases) {
        EXPECT_EQ(displayPath(testCase.path), testCase.display);
        EXPECT_EQ(terminalPath(testCase.path), testCase.terminal) << testCase.display;
    }
}

} // namespace
} // namespace zelmora::platform
