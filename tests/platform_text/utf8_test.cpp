#include "platform/text/utf8.h"

#include <gtest/gtest.h>

namespace zelmora::platform {
namespace {

using namespace std::string_view_literals;

TEST(UTF8, LoneSurrogatesBecomeTheReplacementCharacter) {
    const struct {
        std::u16string_view text;
        std::string_view utf8;
    } cases[] = {
        {u"", ""},
        {u"aé漢\U0001F600", "aé漢😀"},
        {u"\xD800", "\uFFFD"},
        {u"\xD800\xD83D\xDE00\xDC00z\xDC00", "\uFFFD😀\uFFFDz\uFFFD"},
        {u"\0x"sv, "\0x"sv},
    };
    for (const auto& testCase : cases)
        EXPECT_EQ(utf8FromUTF16(testCase.text), testCase.utf8) << testCase.utf8;
}

TEST(UTF8, InvalidBytesBecomeReplacementCharactersOneByOne) {
    const struct {
        std::string_view utf8;
        std::u16string_view text;
    } cases[] = {
        {"", u""},
        {"aé漢😀", u"aé漢\U0001F600"},
        {"a\xFFz", u"a\uFFFDz"},
        {"\xE3\x81", u"\uFFFD\uFFFD"},
        {"\xE3\x81漢", u"\uFFFD\uFFFD漢"},
        {"\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},
        {"\xC0\xAFx", u"\uFFFD\uFFFDx"},
    };
    for (const auto& testCase : cases)
        EXPECT_EQ(utf16FromUTF8(testCase.utf8), testCase.text) << testCase.utf8;
}

TEST(UTF8, PathsAreShownWithTheirOddBytesEscaped) {
    const struct {
        std::string_view path;
        std::string_view display;
        std::string_view terminal;
    } cases[] = {
        {"", "", ""},
        {"/日本/é.txt", "/日本/é.txt", "/日本/é.txt"},
        {"/\x93\xFA\x96{.txt", "/\\x93\\xFA\\x96{.txt", "/\\x93\\xFA\\x96{.txt"},
        {"\xE3\x81", "\\xE3\\x81", "\\xE3\\x81"},
        {"a\nb\rc\td", "a\nb\rc\td", "a\\nb\\rc\\td"},
        {"\x1B[2J\x7F", "\x1B[2J\x7F", "\\x1B[2J\\x7F"},
        {"\u0080\u009B\u00A0", "\u0080\u009B\u00A0", "\\xC2\\x80\\xC2\\x9B\u00A0"},
        {"back\\slash", "back\\slash", "back\\slash"},
    };
    for (const auto& testCase : cases) {
        EXPECT_EQ(displayPath(testCase.path), testCase.display);
        EXPECT_EQ(terminalPath(testCase.path), testCase.terminal) << testCase.display;
    }
}

} // namespace
} // namespace zelmora::platform
