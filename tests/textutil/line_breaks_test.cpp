#include "textutil/text_utility_private.h"

#include <gtest/gtest.h>

#include <random>

namespace zelmora {
namespace {

constexpr OrvLineBreak kKinds[] = {OrvLineBreak::lf, OrvLineBreak::cr, OrvLineBreak::crlf,
                                   OrvLineBreak::ls};

TEST(LineBreaks, TheFirstOneDecides) {
    const struct {
        std::u16string text;
        OrvLineBreak kind;
    } cases[] = {
        {u"", OrvLineBreak::none},
        {u"a\u2029\u0085\v\f\u2027\u0A0D\u0D0Ab", OrvLineBreak::none},
        {u"\r", OrvLineBreak::cr},
        {u"a\r\nb", OrvLineBreak::crlf},
        {u"\rx\n", OrvLineBreak::cr},
        {u"a\nb\r\n", OrvLineBreak::lf},
        {u"\u2028\n", OrvLineBreak::ls},
        {u"\n\r", OrvLineBreak::lf},
    };
    const OrvTextUtilityPrivate utility;
    for (const auto& testCase : cases) {
        for (size_t before = 0; before <= 33; ++before) // across the fast search's blocks
            EXPECT_EQ(utility.lineBreakTypeOfString(std::u16string(before, u'あ') + testCase.text),
                      testCase.kind)
                << &testCase - cases << ", " << before << " before";
    }
}

TEST(LineBreaks, Conversions) {
    using enum OrvLineBreak;
    const struct {
        std::u16string text;
        OrvLineBreak from;
        OrvLineBreak to;
        std::u16string expected;
    } cases[] = {
        {u"a\nb\r\nc", lf, crlf, u"a\r\nb\r\r\nc"},
        {u"\n\n", lf, crlf, u"\r\n\r\n"},
        {u"no break", lf, crlf, u"no break"},
        {u"", lf, crlf, u""},
        {u"a\r\nb\rc\nd\r\n", crlf, lf, u"a\nb\rc\nd\n"},
        {u"\r\r\n\n", crlf, ls, u"\r\u2028\n"},
        {u"\r\n\r", crlf, cr, u"\r\r"},
        {u"a\rb\r\nc", cr, ls, u"a\u2028b\u2028\nc"},
        {u"a\u2028b", ls, crlf, u"a\r\nb"},
        {u"a\nb\n", lf, cr, u"a\rb\r"},
        {u"\r\n", cr, crlf, u"\r\n\n"},
        {u"a\r\nb\n", crlf, crlf, u"a\r\nb\n"},
    };
    const OrvTextUtilityPrivate utility;
    for (const auto& testCase : cases) {
        std::u16string text = testCase.text;
        utility.convertLineBreakOfString(text, testCase.from, testCase.to);
        EXPECT_EQ(text, testCase.expected) << "case " << &testCase - cases;
    }
}

/// Search and replace, occurrence by occurrence.
std::u16string plainlyConverted(std::u16string text, const std::u16string& from,
                                const std::u16string& to) {
    for (size_t at = 0; (at = text.find(from, at)) != text.npos; at += to.size())
        text.replace(at, from.size(), to);
    return text;
}

TEST(LineBreaks, RandomTextsAgreeWithSearchAndReplace) {
    const OrvTextUtilityPrivate utility;
    for (unsigned seed = 0; seed < 2000; ++seed) {
        std::mt19937 random(seed);
        std::u16string text(random() % 80, u'x');
        for (char16_t& unit : text)
            unit = u"\r\n\u2028abc"[random() % 6];
        for (const OrvLineBreak from : kKinds) {
            for (const OrvLineBreak to : kKinds) {
                std::u16string converted = text;
                utility.convertLineBreakOfString(converted, from, to);
                ASSERT_EQ(converted, plainlyConverted(text, *utility.lineBreakString(from),
                                                      *utility.lineBreakString(to)))
                    << "seed " << seed << ", " << static_cast<int>(from) << " to "
                    << static_cast<int>(to);
            }
        }
    }
}

TEST(LineBreaks, CharactersOfEachKind) {
    const OrvTextUtilityPrivate utility;
    EXPECT_EQ(utility.lineBreakString(OrvLineBreak::lf), u"\n");
    EXPECT_EQ(utility.lineBreakString(OrvLineBreak::cr), u"\r");
    EXPECT_EQ(utility.lineBreakString(OrvLineBreak::crlf), u"\r\n");
    EXPECT_EQ(utility.lineBreakString(OrvLineBreak::ls), u"\u2028");
    for (const int kind : {-1, 0, 5})
        EXPECT_EQ(utility.lineBreakString(OrvLineBreak{kind}), std::nullopt) << kind;
}

} // namespace
} // namespace zelmora
