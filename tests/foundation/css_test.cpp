// Elements and parser of style sheets.
#include "foundation_fixture.h"

#include "foundation/orv_css.h"

#include <ctime>

namespace zelmora::test {

namespace {

using namespace std::string_literals;

class CSSTest : public FoundationTest {};

std::wstring rendered(const OrvIBase* element) {
    const OrvIBase* text = OrvCSSElementGetText(element);
    return text ? stringOf(text) : L"nothing";
}

/// All elements of a sheet, a line each: "start+length" and the text without breaks and tabs.
std::wstring elementsOf(std::wstring_view sheet) {
    const Owned parser(OrvCSSParserCreate(makeText(sheet).get()));
    std::wstring all;
    int32_t start = 0, length = 0, error = -1;
    while (const OrvIBase* element =
               OrvCSSParserParseElement(parser.get(), start + length, &start, &length, &error)) {
        std::wstring text = rendered(element);
        std::erase_if(text, [](wchar_t c) { return c == L'\n' || c == L'\t'; });
        all += std::to_wstring(start) + L"+" + std::to_wstring(length) + L" " + text + L"\n";
    }
    EXPECT_EQ(start + length + error, 0);
    return all;
}

} // namespace

TEST_F(CSSTest, ReadsSheets) {
    const std::pair<std::wstring, std::wstring> cases[] = {
        {L"", L""},
        {L" ", L"0+1 nothing\n"},
        {L"\t\r\n\x00E9あ\x7F", L""},
        {L"\n@charset \"UTF-8\";", L"1+17 @charset \"UTF-8\";\n"},
        {L"@charset\"UTF-8\";", L"0+16 @charset\"UTF-8\";\n"},
        {L"𠮷 @charset \"x\";", L"1+14 @charset \"x\";\n"},
        {L"h1, h2 ,h3,\r\n,h4{}", L"0+18 h1, h2, h3, h4\n"},
        // Comments: everywhere, leaving nothing, and never closed.
        {L"/* @charset \"x\"; */ body { }", L"19+9 body\n"},
        {L"/*/ @charset \"x\";", L"3+14 @charset \"x\";\n"},
        {L"a/**/b{c/*:*/d:e/*;*/f}", L"0+23 ab {cd: ef;}\n"},
        {L"a/*;*/ /*{*/{b:c}", L"0+17 a {b: c;}\n"},
        {L"/* a { b: c }", L""},
        {L"a { b: c; /* d: e }", L"0+19 a {b: c;}\n"},
        {L"a { b: c /* d: e; }", L"0+19 a\n"},
        // Blocks: cut off, empty, nested, and at-rules.
        {L"a { color: red", L"0+14 a\n"},
        {L"{b:c}", L"0+5 nothing\n"},
        {L"p { b: 1; b: 2 }", L"0+16 p {b: 2;b: 2;}\n"},
        {L"a { b { c: d } e: f }", L"0+14 a {b { c: d;}\n14+7 e:, f, }\n"},
        {L"a{b:c;}d{e:f}", L"0+7 a {b: c;}\n7+6 d {e: f;}\n"},
        {L";}a;", L"0+1 ;\n1+1 }\n2+2 a;\n"},
        {L"@media screen { a { color: red } }",
         L"0+15 @media screen\n15+17 a {color: red;}\n32+2 }\n"},
        {L"@charset  \"UTF-8\" ;", L"0+19 @charset \"UTF-8\", ;\n"},
        {L"@media x; a{}", L"0+9 @media x;\n9+4 a\n"},
        // Neither quotes nor parentheses protect anything.
        {L"a { content: \"}\"; b: c }", L"0+15 a {content: \";}\n15+2 \";\n17+7 b:, c, }\n"},
        // White space that is no separator, NUL and what is beyond ASCII.
        {L"a\fb\v {\vc\f:\vd\f}", L"0+14 a\fb {c: d;}\n"},
        {L"\0a\0b{c\0:\0d}"s, L"1+10 a\0b {c\0: \0d;}\n"s},
        {L"a\x00E9{あ:𠮷}", L"0+7 a\x00E9 {あ: 𠮷;}\n"},
    };
    for (const auto& [sheet, expected] : cases)
        EXPECT_EQ(elementsOf(sheet), expected) << utf8FromWide(sheet);
}

TEST_F(CSSTest, FindsTheFirstRuleWithAKeyword) {
    const struct {
        std::wstring sheet;
        int32_t offset, start, length; // length 0: none
    } cases[] = {
        {L"@CHARSET \"x\";", 0, 0, 13},
        {L"@charset\"UTF-8\";", 0, 0, 0},
        {L"a { } @charset \"x\"; @charset \"y\";", 0, 5, 14},
        {L"a { } @charset \"x\"; @charset \"y\";", 6, 6, 13},
        {L"a { } @charset \"x\"; @charset \"y\";", 7, 19, 14},
        {L"{} @media x { @charset \"x\"; }", 0, 13, 14},
        {L"@charset \"x\";", 13, 0, 0},
    };
    for (const auto& [sheet, offset, start, length] : cases) {
        const Owned parser(OrvCSSParserCreate(makeText(sheet).get()));
        int32_t foundStart = -7, foundLength = -7;
        OrvIBase* found = OrvCSSParserFindElement(parser.get(), OrvTemporaryString(L"@charset"),
                                                  offset, &foundStart, &foundLength);
        EXPECT_EQ(found != nullptr, length > 0) << utf8FromWide(sheet);
        EXPECT_EQ(foundStart, found ? start : -7) << utf8FromWide(sheet);
        EXPECT_EQ(foundLength, found ? length : -7) << utf8FromWide(sheet);
        EXPECT_EQ(OrvGetRetainCount(found), found ? 1U : 0U);
    }
}

// The time per character must not grow with the sheet, nor may a search leave anything behind.
TEST_F(CSSTest, SearchIsLinearAndKeepsNothing) {
    for (const std::wstring piece : {L"a { b: c; d: e }\n", L"a,", L"/*/", L"a{b:c", L"}", L"a/"}) {
        double seconds[2] = {};
        for (std::wstring sheet; double& each : seconds) {
            while (sheet.size() < (&each == seconds ? 20'000 : 320'000))
                sheet += sheet.empty() ? piece : sheet;
            const Owned parser(OrvCSSParserCreate(makeText(sheet).get()));
            const int64_t live = OrvLiveObjectCount();
            const std::clock_t start = std::clock();
            EXPECT_EQ(OrvCSSParserFindElement(parser.get(), nullptr, 0, nullptr, nullptr), nullptr);
            each = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
            EXPECT_EQ(OrvLiveObjectCount(), live);
        }
        EXPECT_LT(seconds[1], 16 * (seconds[0] + 1e-3) * 4) << utf8FromWide(piece);
    }
}

TEST_F(CSSTest, BuildsRules) {
    const Owned sheet(OrvCSSParserCreate(makeText(L"p{b: 1; a\0x:2\0}"s).get()));
    EXPECT_EQ(rendered(OrvCSSParserParseElement(sheet.get(), 0, nullptr, nullptr, nullptr)),
              L"p {\n\tb: 1;\n\ta\0x: 2\0;\n}"s);
    EXPECT_EQ(rendered(Owned(OrvCSSElementCreate()).get()), L"nothing");

    const Owned text = makeText(L"a{} @charset \"x\" ; b{}");
    const Owned parser(OrvCSSParserCreate(text.get()));
    int32_t start = 0, length = 0;
    OrvIBase* rule =
        OrvCSSParserFindElement(parser.get(), OrvTemporaryString(L"@charset"), 0, &start, &length);
    OrvCSSParserUpdateCharsetElement(parser.get(), rule, 5, 0);
    EXPECT_EQ(rendered(rule), L"@charset \"x\", ;");
    OrvCSSParserUpdateCharsetElement(parser.get(), rule, 5, 2);
    EXPECT_EQ(rendered(rule), L"@charset \"UTF-16BE\";");
    OrvCSSParserReplaceElement(parser.get(), rule, start, length);
    EXPECT_EQ(stringOf(text.get()), L"a{}@charset \"UTF-16BE\"; b{}");

    const Owned made(OrvCSSParserCreateCharsetElement(parser.get(), 1, 0));
    EXPECT_EQ(rendered(made.get()), L"@charset \"Shift_JIS\";");
    EXPECT_EQ(OrvCSSParserCreateCharsetElement(parser.get(), 0, 0), nullptr);
}

} // namespace zelmora::test
