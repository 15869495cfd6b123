#include "foundation_fixture.h"

#include <clocale>
#include <random>

namespace zelmora::test {

namespace {

class StringTest : public FoundationTest {};

/// `change` applied to a string of `text`.
template<typename Change>
std::wstring changed(std::wstring_view text, Change change) {
    const Owned string = makeText(text);
    change(string.get());
    return stringOf(string.get());
}

template<typename... Arguments>
std::wstring formatted(std::wstring_view format, Arguments... arguments) {
    return stringOf(Owned(OrvStringCreateWithFormat(makeText(format).get(), arguments...)).get());
}

std::wstring nameOf(int32_t encoding, int32_t byteOrder) {
    const OrvIBase* name = OrvMIMECharSetName(encoding, byteOrder);
    return name ? stringOf(name) : L"none";
}

} // namespace

TEST_F(StringTest, Creation) {
    EXPECT_EQ(OrvGetTypeID(makeText(L"").get()), 3U);
    EXPECT_EQ(stringOf(Owned(OrvStringCreateWithWideCString(L"ab")).get()), L"ab");
    EXPECT_EQ(stringOf(Owned(OrvStringCreateEmpty()).get()), L"");
    const Owned withNUL(OrvStringCreateWithCharacters(L"a\0b", 3));
    EXPECT_EQ(stringOf(withNUL.get()), std::wstring(L"a\0b", 3));
    EXPECT_EQ(OrvStringGetCharacters(withNUL.get())[3], L'\0');
    EXPECT_EQ(OrvStringGetLength(Owned(OrvStringCreateWithCharacters(nullptr, 5)).get()), 0U);
}

// Every code point and every lone surrogate, next to each other; then random units.
TEST_F(StringTest, PlatformTextRoundTrips) {
    const auto expectRoundTrip = [](const std::u16string& text, const std::string& what) {
        const Owned string(OrvStringCreateWithNSString(text));
        EXPECT_TRUE(OrvStringCopyNSString(string.get()) == text) << what;
    };
    std::u16string all;
    for (char32_t c = 0; c <= 0x10FFFF; ++c) {
        if (c < 0x10000)
            all += static_cast<char16_t>(c);
        else
            (all += static_cast<char16_t>(0xD7C0 + (c >> 10))) +=
                static_cast<char16_t>(0xDC00 + (c & 0x3FF));
        if (c >= 0xD800 && c < 0xE000)
            all += u'|';
    }
    expectRoundTrip(all, "every code point");
    for (unsigned seed = 0; seed < 200; ++seed) {
        std::minstd_rand random(seed);
        std::u16string text(random() % 20, u'\0');
        for (char16_t& unit : text)
            unit = static_cast<char16_t>(random() % 2 ? 0xD700 + random() % 0xA00 : random());
        expectRoundTrip(text, "seed " + std::to_string(seed));
    }
    const Owned string(OrvStringCreateWithNSString(u"a𠮷\xD842"));
    EXPECT_EQ(stringOf(string.get()), L"a\x20BB7\xD842");
    const OrvIBase* temporary = OrvTemporaryStringWithNSString(u"a");
    EXPECT_EQ(OrvGetRetainCount(temporary), 1U);
}

TEST_F(StringTest, PlatformObjectIsUTF8) {
    const auto utf8 = [](std::wstring_view text) {
        return OrvCopyCocoaObject(makeText(text).get());
    };
    EXPECT_EQ(utf8(L""), OrvPlatformObject(std::string()));
    EXPECT_EQ(utf8(L"a\u0000é"), OrvPlatformObject(std::string("a\u0000é")));
    EXPECT_EQ(utf8(L"\u007F\u0080\u07FF\u0800\uFFFF\U00010000\U0010FFFF"),
              OrvPlatformObject(std::string("\u007F\u0080\u07FF\u0800\uFFFF\U00010000\U0010FFFF")));
}

TEST_F(StringTest, Formats) {
    for (const char* locale : {"C", "C.UTF-8"}) {
        ASSERT_NE(std::setlocale(LC_ALL, locale), nullptr);
        EXPECT_EQ(formatted(L"%04X|%04X", 0x1Fu, 0x12345u), L"001F|12345") << locale;
        EXPECT_EQ(formatted(L"<%ls>%C%d", L"漢字é𠮷", wint_t(0x2028), -7), L"<漢字é𠮷>\u2028-7")
            << locale;
    }
    std::setlocale(LC_ALL, "C");
    const std::wstring text(2000, L'あ');
    EXPECT_EQ(formatted(L"%ls", text.c_str()), text.substr(0, 1023));
    const std::wstring format = std::wstring(700, L'x') + L"%ls";
    EXPECT_EQ(formatted(format, text.c_str()).size(), 2 * format.size() - 1);
    EXPECT_EQ(formatted(L"a%Cb", wint_t(0)), L"a");
}

TEST_F(StringTest, LiteralsAreSharedWithinOnePool) {
    const OrvIBase* first = OrvTemporaryString(L"literal");
    EXPECT_EQ(OrvTemporaryString(std::wstring(L"literal").c_str()), first);
    EXPECT_NE(OrvTemporaryString(L"other"), first);
    {
        const Owned inner(OrvTemporaryObjectsPoolCreate());
        EXPECT_NE(OrvTemporaryString(L"literal"), first);
    }
    const int64_t live = OrvLiveObjectCount();
    drain();
    EXPECT_EQ(OrvLiveObjectCount(), live - 2);
    EXPECT_EQ(stringOf(OrvTemporaryString(L"literal")), L"literal");
}

TEST_F(StringTest, Substrings) {
    const struct {
        OrvRange range;
        std::wstring expected;
    } cases[] = {{{2, 3}, L"cde"},
                 {{4, 10}, L"ef"},
                 {{7, 1}, L""},
                 {{-1, 2}, L""},
                 {{0, 0}, L""},
                 {{0, -1}, L""},
                 {{6, 1}, L""},
                 {{0, 6}, L"abcdef"},
                 {{5, INT32_MAX}, L"f"},
                 {{INT32_MAX, INT32_MAX}, L""},
                 {{INT32_MIN, INT32_MAX}, L""}};
    const Owned string = makeText(L"abcdef");
    for (const auto& [range, expected] : cases)
        EXPECT_EQ(stringOf(Owned(OrvStringCreateSubstring(string.get(), range)).get()), expected)
            << range.location << ", " << range.length;
}

TEST_F(StringTest, Compares) {
    const std::wstring nulA(L"a\0b", 3);
    const std::wstring nulB(L"a\0c", 3);
    const struct {
        std::wstring left, right;
        int sign, signIgnoringCase;
    } cases[] = {{L"", L"", 0, 0},
                 {L"a", L"ab", -1, -1},
                 {L"b", L"ab", 1, 1},
                 {L"\uFFFF", L"\U00010000", -1, -1},
                 {L"@CHARSET", L"@charset", -1, 0},
                 {L"\u00C9", L"\u00E9", -1, -1},
                 {L"a", L"B", 1, -1},
                 {L"_", L"a", -1, 1},
                 {nulA, nulB, 0, 0}};
    const auto sign = [](int32_t result) { return (result > 0) - (result < 0); };
    for (const auto& [left, right, expected, ignoringCase] : cases) {
        const Owned a = makeText(left);
        const Owned b = makeText(right);
        const std::string input = utf8FromWide(left) + " and " + utf8FromWide(right);
        EXPECT_EQ(sign(OrvStringCompare(a.get(), b.get())), expected) << input;
        EXPECT_EQ(sign(OrvStringCompare(b.get(), a.get())), -expected) << input;
        EXPECT_EQ(sign(OrvStringCompareCaseInsensitive(a.get(), b.get())), ignoringCase) << input;
    }
    const Owned mixed(OrvStringCreateWithCharacters(L"aZ{`é\0x", 7));
    EXPECT_EQ(stringOf(Owned(OrvStringCreateUppercase(mixed.get())).get()), L"AZ{`é");
}

TEST_F(StringTest, ChangesInPlace) {
    for (const auto& [text, expected] : std::vector<std::pair<std::wstring, std::wstring>>{
             {L" \t a b \r\n", L"a b"},
             {L"   ", L""},
             {L"", L""},
             {L"\v\fa\u3000\u00A0", L"a\u3000\u00A0"}})
        EXPECT_EQ(changed(text, OrvStringTrimWhitespace), expected) << utf8FromWide(text);

    EXPECT_EQ(changed(L"ab", [](OrvIBase* s) { OrvStringAppend(s, s); }), L"abab");
    const struct {
        uint64_t location, count;
        std::wstring expected;
    } replacements[] = {{1, 2, L"a<>d"},   {0, 0, L"<>abcd"},        {4, 1, L"abcd<>"},
                        {9, 9, L"abcd<>"}, {2, UINT64_MAX, L"ab<>"}, {0, 4, L"<>"}};
    for (const auto& [location, count, expected] : replacements) {
        const auto replace = [at = location, length = count](OrvIBase* s) {
            OrvStringReplaceCharacters(s, makeText(L"<>").get(), at, length);
        };
        EXPECT_EQ(changed(L"abcd", replace), expected) << location << ", " << count;
    }
}

TEST_F(StringTest, ConvertsLineBreaks) {
    const struct {
        std::wstring text;
        int32_t from, to;
        std::wstring expected;
    } cases[] = {{L"a\nb\n", 1, 3, L"a\r\nb\r\n"},
                 {L"a\nb\n", 1, 1, L"a\nb\n"},
                 {L"\n\n", 1, 4, L"\u2028\u2028"},
                 {L"a\r\n", 2, 3, L"a\r\n\n"},
                 {L"\r\r\n\r", 3, 1, L"\r\n\r"},
                 {L"a\u2028b", 4, 2, L"a\rb"},
                 {L"", 1, 3, L""},
                 {L"a\n", 0, 1, L"a\n"},
                 {L"a\n", 1, 5, L"a\n"},
                 {L"a\n", 1, -1, L"a\n"}};
    for (const auto& [text, from, to, expected] : cases) {
        const auto convert = [f = from, t = to](OrvIBase* s) {
            OrvStringConvertLineBreaks(s, f, t);
        };
        EXPECT_EQ(changed(text, convert), expected) << utf8FromWide(text) << from << to;
    }
    const wchar_t* const breaks[] = {L"", L"\n", L"\r", L"\r\n", L"\u2028"};
    for (int32_t kind = 1; kind <= 4; ++kind)
        EXPECT_EQ(stringOf(OrvLineBreakString(kind)), breaks[kind]) << kind;
    EXPECT_EQ(OrvLineBreakString(0), nullptr);
    EXPECT_EQ(OrvLineBreakString(5), nullptr);
}

TEST_F(StringTest, ReadsHexadecimalValues) {
    const std::pair<std::wstring, uint32_t> cases[] = {
        {L"1f", 0x1F}, {L"1fz9", 0x1F},   {L"z1", 0},
        {L"", 0},      {L"aF09", 0xAF09}, {L"123456789", 0x23456789},
        {L"g", 0},     {L"1\uFF11", 1}};
    for (const auto& [text, value] : cases)
        EXPECT_EQ(OrvStringGetHexValue(makeText(text).get()), value) << utf8FromWide(text);
}

TEST_F(StringTest, NamesMIMECharsets) {
    const struct {
        int32_t encoding;
        std::wstring none, little, big; // by byte order
    } cases[] = {{0, L"none", L"none", L"none"},
                 {1, L"Shift_JIS", L"Shift_JIS", L"Shift_JIS"},
                 {2, L"ISO-2022-JP", L"ISO-2022-JP", L"ISO-2022-JP"},
                 {3, L"EUC-JP", L"EUC-JP", L"EUC-JP"},
                 {4, L"UTF-8", L"UTF-8", L"UTF-8"},
                 {5, L"none", L"UTF-16LE", L"UTF-16BE"},
                 {6, L"none", L"UTF-32LE", L"UTF-32BE"},
                 {7, L"none", L"none", L"none"},
                 {-1, L"none", L"none", L"none"}};
    for (const auto& [encoding, none, little, big] : cases) {
        const std::wstring* const names[] = {&none, &little, &big, &none};
        for (int32_t byteOrder = 0; byteOrder < 4; ++byteOrder)
            EXPECT_EQ(nameOf(encoding, byteOrder), *names[byteOrder]) << encoding;
    }
    const OrvIBase* name = OrvMIMECharSetName(4, 0);
    drain();
    EXPECT_EQ(OrvMIMECharSetName(4, 2), name);
}

} // namespace zelmora::test
