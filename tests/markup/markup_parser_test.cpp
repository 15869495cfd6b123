#include "markup/markup_parser.h"
#include "tag_summary.h"

#include <gtest/gtest.h>

#include <string_view>

namespace zelmora {
namespace {

using namespace std::string_view_literals;

std::size_t note(const OrvMarkupTag& tag, std::u16string_view key) {
    return std::get<std::size_t>(tag.parserAdditional()->at(std::u16string(key)));
}

TEST(MarkupParser, FindsTagsByName) {
    const struct {
        std::string_view data;
        const char16_t* name;
        std::size_t start;
        const char* found; // "OFFSET LENGTH TAG"
    } cases[] = {
        {"", u"p", 0, "none"},
        {"<p>", u"p", 3, "none"},
        {"<p>", u"p", std::string::npos, "none"},
        {"<p", u"p", 0, "none"},
        {"<p <", u"p", 0, "none"},
        {"<>", u"", 0, "none"},
        // あいうえお, in Shift_JIS
        {"\x82\xA0\x82\xA2\x82\xA4\x82\xA6\x82\xA8<meta http-equiv=\"Content-Type\" "
         "content=\"text/html; charset=Shift_JIS\">",
         u"meta", 0, "10 71 meta http-equiv=[Content-Type] content=[text/html; charset=Shift_JIS]"},
        {"<header><HEAD a><head>", u"head", 0, "8 8 HEAD a=[]"},
        {"<header><HEAD a><head>", u"heaD", 9, "16 6 head"},
        {"<p\0re><p\0>"sv, u"p", 0, "6 4 p"},
        {"<p>\x83<\x8E\xAE>", u"\u00E9\u00C6", 0, "4 4 \u00E9\u00C6"},
        {"<\x83>", u"\u00E9", 0, "none"}, // capital É
        {"<p>", u"\u3042", 0, "none"},    // no Macintosh Roman
    };
    for (const auto& c : cases) {
        OrvMarkupParser parser;
        parser.setRawData(platform::bytesOf(c.data));
        const auto tag = parser.findMarkupTagName(c.name, c.start);
        std::string found = summary(tag);
        if (tag)
            found = std::to_string(note(*tag, OrvMarkupParserAdditionalKeyByteOffset)) + " " +
                    std::to_string(note(*tag, OrvMarkupParserAdditionalKeyByteLength)) + " " +
                    found;
        EXPECT_EQ(found, c.found) << c.data << " from " << c.start;
    }
}

TEST(MarkupParser, CutsATagFromTheFrontOfBytes) {
    const std::pair<const char*, const char*> cases[] = {
        {"", ""},
        {"<", ""},
        {"<a", ""},
        {"<a<b>", ""},
        {"<>", "<>"},
        {"<a b=\">\">", "<a b=\">"},
        {"<\x81>text", "<\x81>"},
    };
    for (const auto& [bytes, expected] : cases) {
        const auto tag = OrvMarkupParser::markupTagDataFromBytes(platform::bytesOf(bytes));
        EXPECT_EQ(platform::charsOf(tag.value_or(platform::Bytes())), expected) << bytes;
        EXPECT_NE(tag, platform::Bytes()) << bytes;
    }
}

} // namespace
} // namespace zelmora
