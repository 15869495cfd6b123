// What a search costs: no maps for tags of other names, and nothing worse than linear.
#include "markup/html_parser.h"
#include "markup/markup_parser.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

namespace {
std::size_t allocationCount = 0;
}

void* operator new(std::size_t size) {
    ++allocationCount;
    if (void* memory = std::malloc(size))
        return memory;
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace zelmora {
namespace {

template<class Unit>
std::basic_string<Unit> repeated(std::string_view piece, std::size_t count) {
    std::basic_string<Unit> text;
    while (count-- != 0)
        text.append(piece.begin(), piece.end());
    return text;
}

TEST(MarkupCost, TagsOfOtherNamesAreNotParsed) {
    constexpr std::string_view kTag = "<a-name-longer-than-any-short-string href=\"a\" id='b'>";
    constexpr std::size_t kTags = 1000;
    OrvHTMLParser text;
    text.setHTMLString(repeated<char16_t>(kTag, kTags));
    const auto data = repeated<char>(kTag, kTags);
    OrvMarkupParser bytes;
    bytes.setRawData(platform::bytesOf(data));

    allocationCount = 0;
    EXPECT_FALSE(text.findEncodingSpecifier());
    EXPECT_FALSE(text.findMarkupTagName(u"head", 0));
    EXPECT_FALSE(text.findXMLProcInstTag());
    EXPECT_EQ(allocationCount, 0u);
    EXPECT_FALSE(bytes.findMarkupTagName(u"meta", 0));
    EXPECT_LE(allocationCount, 3 * kTags) << "the bytes of each long name are gathered";
}

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
        const auto count = kLength / c.piece.size();
        OrvHTMLParser text;
        text.setHTMLString(repeated<char16_t>(c.front, 1) + repeated<char16_t>(c.piece, count) +
                           u">");
        EXPECT_FALSE(text.findEncodingSpecifier());
        EXPECT_FALSE(text.findMarkupTagName(u"head", 0));
        const auto data = repeated<char>(c.front, 1) + repeated<char>(c.piece, count) + ">";
        OrvMarkupParser bytes;
        bytes.setRawData(platform::bytesOf(data));
        EXPECT_FALSE(bytes.findMarkupTagName(u"head", 0));
    }
}

} // namespace
} // namespace zelmora
