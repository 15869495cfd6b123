#include "foundation_fixture.h"

#include <clocale>
#include <random>

namespace zelmora::test {

namespace {

using namespace std::string_literals;

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

// Every code point and every lone surrogate, next to each other.
TEST_F(StringTest, GoesToThePlatformAndBack) {
    std::u16string all;
    for (char32_t c = 0; c <= 0x10FFFF; ++c) {
        if (c >= 0x10000) {
            all += static_cast<char16_t>(0xD7C0 + (c >> 10));
            all += static_cast<char16_t>(0xDC00 + (c & 0x3FF));
        } else {
            all += static_cast<char16_t>(c);
            all.append(c >= 0xD800 && c < 0xE000 ? 1 : 0, u'|');
        }
    }
    all += u"\xD842\xD842𠮷\xDC00\xDC00\xD842";
    EXPECT_TRUE(OrvStringCopyNSString(Owned(OrvStringCreateWithNSString(all)).get()) == all);
    const OrvIBase* temporary = OrvTemporaryStringWithNSString(u"a𠮷\xD842");
    EXPECT_EQ(stringOf(temporary), L"a\x20BB7\xD842");
    EXPECT_EQ(OrvGetRetainCount(temporary), 1U);
    EXPECT_EQ(OrvCopyCocoaObject(
                  makeText(L"\0\u007F\u0080\u07FF\u0800\uFFFF\U00010000\U0010FFFF"s).get()),
              OrvPlatformObject("\0\u007F\u0080\u07FF\u0800\uFFFF\U00010000\U0010FFFF"s));
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
    EXPECT_EQ(formatted(L"a%Cb", wint_t(0)), L"a");
}

TEST_F(StringTest, LogCutsAndNeverFormatsTwice) {
    std::string cut;
    for (int i = 0; i < 511; ++i)
        cut += "あ";
    const std::pair<std::wstring, std::string> cases[] = {
        {L"%d %ls %n 100%", "%d %ls %n 100%"},
        {L"é\u2028𠮷", "é\u2028𠮷"},
        {std::wstring(600, L'あ'), cut},
        {std::wstring(1, wchar_t(0xD800)), "\uFFFD"},
    };
    for (const auto& [argument, line] : cases)
        EXPECT_EQ(linesOf([&text = argument] { OrvLog(L"%ls", text.c_str()); }), Lines{line});
}

/// Any number that a caller may give for a place in a text of this many characters or a length.
int32_t anyPlace(std::minstd_rand& random, size_t count) {
    const int32_t places[] = {INT32_MIN, INT32_MAX, -1,
                              static_cast<int32_t>(random() % (count + 3))};
    return places[std::min<size_t>(random() % 12, 3)];
}

// Against the standard library's string.
TEST_F(StringTest, IsCutAndChanged) {
    const std::wstring breaks[] = {L"", L"\n", L"\r", L"\r\n", L"\u2028"};
    std::minstd_rand random(1);
    for (int round = 0; round < 5000; ++round) {
        std::wstring text;
        for (size_t i = random() % 8; i > 0; --i)
            text += L" \n\r\n\u2028\t\v\f\u3000\u00A0ab𠮷"[random() % 13];
        const int32_t at = anyPlace(random, text.size()), count = anyPlace(random, text.size());
        const size_t first = std::min(static_cast<size_t>(at), text.size());
        SCOPED_TRACE(testing::PrintToString(text) + " " + std::to_string(at) + " " +
                     std::to_string(count));
        const Owned string = makeText(text);
        EXPECT_EQ(stringOf(Owned(OrvStringCreateSubstring(string.get(), {at, count})).get()),
                  at < 0 || count < 0 ? L"" : text.substr(first, static_cast<size_t>(count)));

        const auto place = static_cast<uint64_t>(at), length = static_cast<uint64_t>(count);
        EXPECT_EQ(changed(text,
                          [&](auto* s) {
                              OrvStringReplaceCharacters(s, makeText(L"<>").get(), place, length);
                          }),
                  std::wstring(text).replace(first, length, L"<>"));
        EXPECT_EQ(changed(text, [](auto* s) { OrvStringAppend(s, s); }), text + text);

        const auto black = text.find_first_not_of(L" \n\r\t\v\f");
        EXPECT_EQ(changed(text, OrvStringTrimWhitespace),
                  black == text.npos
                      ? L""
                      : text.substr(black, text.find_last_not_of(L" \n\r\t\v\f") + 1 - black));

        const auto from = static_cast<int32_t>(random() % 6),
                   to = static_cast<int32_t>(random() % 7) - 1;
        std::wstring converted = text;
        if (from % 5 > 0 && to % 5 > 0) {
            size_t found = 0;
            while ((found = converted.find(breaks[from], found)) != converted.npos) {
                converted.replace(found, breaks[from].size(), breaks[to]);
                found += breaks[to].size();
            }
        }
        EXPECT_EQ(changed(text, [&](auto* s) { OrvStringConvertLineBreaks(s, from, to); }),
                  converted)
            << from << " to " << to;
    }
    for (int32_t kind = 1; kind <= 4; ++kind)
        EXPECT_EQ(stringOf(OrvLineBreakString(kind)), breaks[kind]) << kind;
    EXPECT_EQ(OrvLineBreakString(0), nullptr);
    EXPECT_EQ(OrvLineBreakString(5), nullptr);
}

TEST_F(StringTest, ComparesIgnoringTheCaseOfASCIIOnly) {
    const std::tuple<std::wstring, std::wstring, int> cases[] = {{L"a", L"ab", -1},
                                                                 {L"@CHARSET", L"@charset", 0},
                                                                 {L"\u00C9", L"\u00E9", -1},
                                                                 {L"a", L"B", -1}};
    for (const auto& [left, right, sign] : cases) {
        const int32_t result =
            OrvStringCompareCaseInsensitive(makeText(left).get(), makeText(right).get());
        EXPECT_EQ((result > 0) - (result < 0), sign) << utf8FromWide(left);
    }
}

TEST_F(StringTest, NamesMIMECharsets) {
    const std::wstring names[][3] = {
        {L"none", L"none", L"none"},
        {L"Shift_JIS", L"Shift_JIS", L"Shift_JIS"},
        {L"ISO-2022-JP", L"ISO-2022-JP", L"ISO-2022-JP"},
        {L"EUC-JP", L"EUC-JP", L"EUC-JP"},
        {L"UTF-8", L"UTF-8", L"UTF-8"},
        {L"none", L"UTF-16LE", L"UTF-16BE"},
        {L"none", L"UTF-32LE", L"UTF-32BE"},
    };
    for (int32_t encoding = -1; encoding <= 7; ++encoding) {
        for (int32_t byteOrder = 0; byteOrder < 4; ++byteOrder) {
            const bool isKnown = encoding >= 0 && encoding < 7;
            EXPECT_EQ(nameOf(encoding, byteOrder),
                      isKnown ? names[encoding][byteOrder % 3] : L"none")
                << encoding << byteOrder;
        }
    }
}

} // namespace zelmora::test
