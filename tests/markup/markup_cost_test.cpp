// A search costs nothing worse than linear time.
#include "markup/html_parser.h"
#include "markup/markup_parser.h"

#include <gtest/gtest.h>

namespace zelmora {
namespace {

// Each of these takes hours when every "<" or every tag costs a look at the rest of the text.
TEST(MarkupCost, HostileTextsTakeLinearTime) {
    const struct {
        std::string_view front, piece;
    } cases[] = {
        {"", "<"},   {"", "\""},      {"", "<!--"},        {"<p a=\"", "<b "}, {"", "<\""},
        {"", "<p>"}, {"", "<meta >"}, {"<meta ", "/\"\""}, {"<meta ", "a "},   {"<", "meta"},
    };
    constexpr std::size_t kLength = 3'000'000;
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.front) + "(" + std::string(c.piece) + ")*");
        std::string data(c.front);
        while (data.size() < kLength)
            data += c.piece;
        data += ">";
        OrvHTMLParser text;
        text.setHTMLString(std::u16string(data.begin(), data.end()));
        EXPECT_FALSE(text.findEncodingSpecifier());
        EXPECT_FALSE(text.findMarkupTagName(u"head", 0));
        OrvMarkupParser bytes;
        bytes.setRawData(platform::bytesOf(data));
        EXPECT_FALSE(bytes.findMarkupTagName(u"head", 0));
    }
}

} // namespace
} // namespace zelmora
