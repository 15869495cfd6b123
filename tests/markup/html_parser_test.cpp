#include "markup/html_parser.h"
#include "tag_summary.h"

#include <gtest/gtest.h>

namespace zelmora {
namespace {

/// "OFFSET SOURCE" of a found tag, "none" without one.
std::string place(const std::optional<OrvMarkupTag>& tag) {
    if (!tag)
        return "none";
    const OrvMarkupNotes& notes = *tag->parserAdditional();
    const auto& offset = notes.find(OrvHTMLParserAdditionalKeyOffset)->second;
    const auto& source = notes.find(OrvHTMLParserAdditionalKeyString)->second;
    return std::to_string(std::get<std::size_t>(offset)) + " " +
           platform::utf8FromUTF16(std::get<std::u16string>(source));
}

struct FindingCase {
    const char16_t* text;
    const char16_t* name; // null: whatever the name
    std::size_t start;
    const char* found;
};

const FindingCase kFinding[] = {
    {u"", nullptr, 0, "none"},
    {u"<p", nullptr, 0, "none"},
    {u"<<<<", nullptr, 0, "none"},
    {u"a < b <p>", nullptr, 0, "6 <p>"},
    {u"\u3042\U0001F600<p>", nullptr, 0, "3 <p>"}, // UTF-16 units
    {u"<p title=\"a>b\">", nullptr, 0, "0 <p title=\"a>"},
    {u"<p><q>", nullptr, 1, "3 <q>"},
    {u"<p><q>", nullptr, 3, "3 <q>"},
    {u"<p>", nullptr, std::u16string::npos, "none"},
    {u"<>", nullptr, 0, "0 <>"},
    {u"<>", u"", 0, "none"},
    {u"<az`{><aZ@[>", u"Az@[", 0, "6 <aZ@[>"},
    {u"<header><HEAD a=b><head>", u"head", 0, "8 <HEAD a=b>"},
    {u"<header><HEAD a=b><head>", u"Head", 9, "18 <head>"},
    {u"<head/><head", u"head", 0, "none"},
    {u"<\"he<\"head\">", u"head", 0, "4 <\"head\">"},
    {u"x<?XML?><?xml ?>", u"?xml", 0, "8 <?xml ?>"},
};

TEST(HTMLParser, FindsTags) {
    for (const FindingCase& c : kFinding) {
        OrvHTMLParser parser;
        parser.setHTMLString(c.text);
        EXPECT_EQ(place(c.name ? parser.findMarkupTagName(c.name, c.start)
                               : parser.findNextMarkupTagFromOffset(c.start)),
                  c.found)
            << platform::utf8FromUTF16(c.text) << " from " << c.start;
    }
}

TEST(HTMLParser, AnswersTheTagSourceAtItsOffsetOnly) {
    OrvHTMLParser parser;
    parser.setHTMLString(u"<a <b c=\">\"> <");
    for (std::size_t offset = 0; offset < 16; ++offset)
        EXPECT_EQ(parser.markupTagStringFromOffset(offset).value_or(u"none"),
                  offset == 3 ? u"<b c=\">" : u"none")
            << offset;
}

TEST(HTMLParser, FindsTheEncodingDeclarationOnly) {
    const struct {
        const char16_t* text;
        const char* found;
    } cases[] = {
        {u"<META http-equiv=\"content-type\" content=\"x\">",
         "0 <META http-equiv=\"content-type\" content=\"x\">"},
        {u"<meta HTTP-EQUIV=CONTENT-TYPE>", "0 <meta HTTP-EQUIV=CONTENT-TYPE>"},
        {u"<meta Http-Equiv=refresh http-equiv=Content-Type>",
         "0 <meta Http-Equiv=refresh http-equiv=Content-Type>"},
        {u"<meta http-equiv=Content-Type http-equiv=refresh>", "none"}, // the last value counts
        {u"<meta http-equiv=Content-Type http-equiv>", "none"},         // became the suffix
        {u"<meta content=\"http-equiv=Content-Type\">", "none"},
        {u"<meta http-equiv=Content-Type2><meta xhttp-equiv=Content-Type>", "none"},
        {u"<metal http-equiv=Content-Type><p http-equiv=Content-Type>", "none"},
        {u"<meta http-equiv=\"Content-Type \">", "none"},
        {u"<meta http-equiv=\" Content-Type\">", "0 <meta http-equiv=\" Content-Type\">"},
        {u"<meta http\u2010equiv=Content-Type><meta HTTP-EQU\u0130V=Content-Type>", "none"},
        {u"<meta content=text/html; http-equiv=Content-Type>", "none"}, // the value of "html;"
        {u"<meta charset=x><meta http-equiv=Content-Type><meta http-equiv=Content-Type a=b>",
         "16 <meta http-equiv=Content-Type>"},
    };
    for (const auto& c : cases) {
        OrvHTMLParser parser;
        parser.setHTMLString(c.text);
        EXPECT_EQ(place(parser.findEncodingSpecifier()), c.found)
            << platform::utf8FromUTF16(c.text);
    }
}

TEST(HTMLParser, EditsOnlyInsideTheText) {
    constexpr std::size_t kHuge = std::u16string::npos;
    const struct {
        std::size_t offset, length;
        const char16_t* result; // null: refused
    } cases[] = {
        {0, 0, u"XYabc"}, {1, 1, u"aXYc"},     {3, 0, u"abcXY"},
        {0, 3, u"XY"},    {0, 4, nullptr},     {3, 1, nullptr},
        {4, 0, nullptr},  {kHuge, 1, nullptr}, {1, kHuge, nullptr},
    };
    for (const auto& c : cases) {
        OrvHTMLParser parser;
        parser.setHTMLString(u"abc");
        EXPECT_EQ(parser.replaceFromOffset(c.offset, c.length, u"XY"), c.result != nullptr);
        EXPECT_EQ(parser.htmlString(), c.result ? c.result : u"abc") << c.offset << " " << c.length;
    }
}

TEST(HTMLParser, ATagThatWritesNothingChangesNothing) {
    OrvHTMLParser parser;
    parser.setHTMLString(u"<p>");
    const auto found = parser.findNextMarkupTagFromOffset(0);
    EXPECT_FALSE(parser.replaceMarkupTag(*found, OrvMarkupTag()));
    EXPECT_FALSE(parser.replaceMarkupTag(OrvMarkupTag(), *found)) << "never found";
    parser.insertMarkupTag(OrvMarkupTag(), 0);
    EXPECT_EQ(parser.htmlString(), u"<p>");
}

TEST(HTMLParser, EditsTheCallersTextOrItsOwnAsAsked) {
    std::u16string text = u"<p>";
    OrvHTMLParser parser;
    parser.setMutableHTMLString(text);
    const auto found = parser.findNextMarkupTagFromOffset(0);
    parser.insertString(u"12", 0);
    EXPECT_EQ(text, u"12<p>");
    EXPECT_TRUE(parser.replaceMarkupTag(*found, *found));
    EXPECT_EQ(text, u"<p>p>") << "at its old place";
    parser.setHTMLString(text);
    parser.insertMarkupTag(*found, 0);
    EXPECT_EQ(parser.htmlString(), u"<p><p>p>");
    EXPECT_EQ(text, u"<p>p>");
}

} // namespace
} // namespace zelmora
