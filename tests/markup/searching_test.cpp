// Tags are found in text and in bytes, and text is edited.
#include "markup/html_parser.h"
#include "markup/markup_parser.h"
#include "platform/text/utf8.h"

#include <gtest/gtest.h>

#include <string_view>

namespace zelmora {
namespace {

using namespace std::string_view_literals;

constexpr std::size_t kHuge = std::u16string::npos;

std::size_t sizeNote(const OrvMarkupTag& tag, std::u16string_view key) {
    return std::get<std::size_t>(tag.parserAdditional()->at(std::u16string(key)));
}

/// "OFFSET SOURCE" of a found tag, "none" without one.
std::string placeInText(const std::optional<OrvMarkupTag>& tag) {
    if (!tag)
        return "none";
    const auto& source = tag->parserAdditional()->find(OrvHTMLParserAdditionalKeyString)->second;
    return std::to_string(sizeNote(*tag, OrvHTMLParserAdditionalKeyOffset)) + " " +
           platform::utf8FromUTF16(std::get<std::u16string>(source));
}

std::string findInText(std::string_view text, std::u16string_view name, std::size_t start) {
    OrvHTMLParser parser;
    parser.setHTMLString(platform::utf16FromUTF8(text));
    return placeInText(parser.findMarkupTagName(name, start));
}

std::string findInBytes(std::string_view bytes, std::u16string_view name, std::size_t start) {
    OrvMarkupParser parser;
    parser.setRawData(platform::bytesOf(bytes));
    const auto tag = parser.findMarkupTagName(name, start);
    if (!tag)
        return "none";
    const auto offset = sizeNote(*tag, OrvMarkupParserAdditionalKeyByteOffset);
    return std::to_string(offset) + " " +
           std::string(
               bytes.substr(offset, sizeNote(*tag, OrvMarkupParserAdditionalKeyByteLength)));
}

TEST(Searching, FindsTagsByNameInTextAndBytes) {
    const struct {
        std::string_view source;
        const char16_t* name;
        std::size_t start;
        const char* found;
    } cases[] = {
        {"<p", u"p", 0, "none"},
        {"<p>", u"p", kHuge, "none"},
        {"<>", u"", 0, "none"},
        {"<p><p>", u"p", 1, "3 <p>"},
        {"<az`{><aZ@[>", u"Az@[", 0, "6 <aZ@[>"},
        {"<header><HEAD a=b><head>", u"Head", 9, "18 <head>"},
        {"<head/><head", u"head", 0, "none"},
        {"</head><head>", u"head", 0, "7 <head>"},
        {"x<?XML?><?xml ?>", u"?xml", 0, "8 <?xml ?>"},
        {"<?xml-stylesheet href=\"a\"?><a/>", u"?xml", 0, "none"},
    };
    for (const auto& [source, name, start, found] : cases) {
        EXPECT_EQ(findInText(source, name, start), found) << source << " from " << start;
        EXPECT_EQ(findInBytes(source, name, start), found) << source << " from " << start;
        OrvHTMLParser parser;
        parser.setHTMLString(platform::utf16FromUTF8(source));
        if (name == u"?xml"sv) {
            EXPECT_EQ(placeInText(parser.findXMLProcInstTag()), found) << source;
        }
    }
    // In Shift_JIS, and as the Macintosh Roman that bytes are taken for.
    EXPECT_EQ(findInBytes("\x82\xA0\x82\xA2<meta content=\x82\xA0>", u"meta", 0),
              "4 <meta content=\x82\xA0>");
    EXPECT_EQ(findInBytes("<p\0re><p\0>"sv, u"p", 0), "6 <p\0>"sv);
    EXPECT_EQ(findInBytes("<p>\x83<\x8E\xAE>", u"\u00E9\u00C6", 0), "4 <\x8E\xAE>");
    EXPECT_EQ(findInBytes("<\x83>", u"\u00E9", 0), "none"); // capital É
}

TEST(Searching, FindsTheEncodingDeclarationOnly) {
    const std::pair<const char*, const char*> cases[] = {
        {"<META http-equiv=\"content-type\" content=\"x\">",
         "0 <META http-equiv=\"content-type\" content=\"x\">"},
        {"if (a < b) <meta\r\n\tHTTP-EQUIV=CONTENT-TYPE\r\n><meta http-equiv=Content-Type a=b>",
         "11 <meta\r\n\tHTTP-EQUIV=CONTENT-TYPE\r\n>"},
        {"<!-- <meta http-equiv=Content-Type> -->", "5 <meta http-equiv=Content-Type>"},
        // The tag ends at the first ">", whatever quotes are open.
        {"<meta http-equiv=Content-Type content=\"a>b\">",
         "0 <meta http-equiv=Content-Type content=\"a>"},
        {"<meta content=\"a>b\" http-equiv=Content-Type>", "none"},
        {"<meta http-equiv=Content-Type content=\"te", "none"},        // cut off
        {"<meta http-equiv=Content-Type http-equiv=refresh>", "none"}, // the last value counts
        {"<meta content=\"http-equiv=Content-Type\">", "none"},
        {"<meta http-equiv=Content-Type2><meta xhttp-equiv=Content-Type>", "none"},
        {"<meta http\u2010equiv=Content-Type><meta HTTP-EQU\u0130V=Content-Type>", "none"},
        {"<meta content=text/html; http-equiv=Content-Type>", "none"}, // the value of "html;"
    };
    for (const auto& [text, found] : cases) {
        OrvHTMLParser parser;
        parser.setHTMLString(platform::utf16FromUTF8(text));
        EXPECT_EQ(placeInText(parser.findEncodingSpecifier()), found) << text;
    }
}

TEST(Editing, StaysInsideTheText) {
    const auto replaced = [](std::size_t offset, std::size_t length) {
        OrvHTMLParser parser;
        parser.setHTMLString(u"abc");
        const bool isChanged = parser.replaceFromOffset(offset, length, u"XY");
        EXPECT_EQ(isChanged, parser.htmlString() != u"abc") << offset << " " << length;
        return parser.htmlString();
    };
    EXPECT_EQ(replaced(1, 1), u"aXYc");
    EXPECT_EQ(replaced(3, 0), u"abcXY");
    EXPECT_EQ(replaced(0, 3), u"XY");
    for (const auto& [offset, length] : std::initializer_list<std::pair<std::size_t, std::size_t>>{
             {0, 4}, {3, 1}, {4, 0}, {kHuge, 1}, {1, kHuge}})
        EXPECT_EQ(replaced(offset, length), u"abc");
}

} // namespace
} // namespace zelmora
