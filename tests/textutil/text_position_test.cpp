#include "textutil/text_position.h"

#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace zelmora {
namespace {

using Place = std::pair<uint64_t, uint64_t>;

TEST(TextPosition, countsLinesAndCharacters) {
    // Every kind of line break, an empty line, and a character of two units.
    const std::u16string text = u"a\nb\r\r\nc\u2028\xD83D\xDE00!\r";
    const std::vector<std::pair<size_t, Place>> places = {
        {0, {1, 1}}, {1, {1, 2}}, {2, {2, 1}},  {4, {3, 1}},  {6, {4, 1}},
        {7, {4, 2}}, {8, {5, 1}}, {10, {5, 2}}, {11, {5, 3}}, {12, {6, 1}},
    };
    TextPosition step(text);
    for (const auto& [offset, place] : places) {
        TextPosition leap(text);
        leap.advanceTo(offset);
        step.advanceTo(offset);
        EXPECT_EQ(Place(leap.line(), leap.column()), place) << offset;
        EXPECT_EQ(Place(step.line(), step.column()), place) << offset;
    }
}

} // namespace
} // namespace zelmora
