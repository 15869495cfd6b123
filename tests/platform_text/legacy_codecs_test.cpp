// What tables of single codes do not show: states and sequences.
#include "codec_helpers.h"

#include <gtest/gtest.h>

namespace zelmora::platform {
namespace {

using enum TextEncoding;

TEST(LegacyCodecs, escapeSequencesMayStandAndEndWhereTheyMay) {
    const std::pair<std::string, std::u16string> valid[] = {
        // The text may end, and a line may end, in any state.
        {"a\x1B$B$\"", u"a\u3042"},
        {"\x1B$@$\"\n $\"\t\x1B(B\\~", u"\u3042\n \u3042\t\\~"},
        {"\x1B(J\\~a\r\x1B(I1_\x1B$(D\"/", u"\u00A5\u203Ea\r\uFF71\uFF9F\u02D8"},
        {"\x1B$B-!\x1B$B|b", u"\u2460\u9AD9"},
    };
    for (const auto& [bytes, text] : valid)
        EXPECT_EQ(decoded(bytes, iso2022JP), text) << testing::PrintToString(bytes);
    for (const std::string bytes :
         {"\x1B$B$\"$", "\x1B$B$\x1B(B", "\x1B$B$\n", "\x1B$B\x7F", "\x1B$B\x24\xA2", "\x1B(I`",
          "\x1B(J\xB1", "\x1B$B\x0F", "\x1B", "\x1B$(", "\x1B$A", "\x1B[m"})
        EXPECT_EQ(decoded(bytes, iso2022JP), std::nullopt) << testing::PrintToString(bytes);
}

TEST(LegacyCodecs, statesAndSequencesAreWrittenInTheShortestWay) {
    const struct {
        TextEncoding encoding;
        std::u16string text;
        std::optional<std::string> bytes;
    } cases[] = {
        {iso2022JP, u"a\u3042\u3044\nb", "a\x1B$B$\"$$\x1B(B\nb"},
        {iso2022JP, u"\u00A5\u203E\uFF71\u3042\u02D8\u02C7",
         "\x1B(J\\~\x1B(I1\x1B$B$\"\x1B$(D\"/\"0\x1B(B"},
        {iso2022JP, u"a\x1B", std::nullopt},
        // The longest sequence first; what only begins one is not written.
        {macJapanese, u"\u2026\u2026\uF87F\u2026\uF87E", "\x81\x63\xFF\xEB\x63"},
        {macJapanese, u"\uF860XV\uF862XIII\u3001\uF87E\u3001", "\x85\xAD\x85\xAB\xEB\x41\x81\x41"},
        {macJapanese, u"\u5927\u20DD\u5927", "\x87\x91\x91\xE5"},
        {macJapanese, u"\u5927\u3001\uF87F", std::nullopt},
        {macJapanese, u"\uF862XII", std::nullopt},
    };
    for (const auto& [encoding, text, bytes] : cases)
        EXPECT_EQ(encoded(text, encoding), bytes) << testing::PrintToString(text);
}

} // namespace
} // namespace zelmora::platform
