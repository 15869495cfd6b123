// What tables of single codes do not show: broken codes, states, sequences, runs and chunks.
#include "platform/text/text_encoding.h"

#include <gtest/gtest.h>
#include <ostream>
#include <string>

namespace zelmora::platform {
namespace {

using enum TextEncoding;
using Text = std::optional<std::u16string>;
using namespace std::string_literals;

/// Decodes a copy of exactly this size, so that the address sanitizer sees a read past its end.
Text decoded(const std::string& bytes, TextEncoding encoding) {
    const ByteView view = bytesOf(bytes);
    return decodeText(Bytes(view.begin(), view.end()), encoding);
}

std::optional<std::string> encoded(std::u16string_view text, TextEncoding encoding) {
    const auto bytes = encodeText(text, encoding);
    return bytes ? std::optional<std::string>(charsOf(*bytes)) : std::nullopt;
}

TEST(LegacyDecoding, brokenCodesAreInvalidAndOthersAreNot) {
    const struct {
        TextEncoding _encoding;
        std::string _bytes;
        Text _text;
    } cases[] = {
        {codePage932, "", u""},
        {codePage932, "a\x82", std::nullopt},          // cut off
        {codePage932, "\x82\n\x82\xA0", std::nullopt}, // a trail byte that is none
        {codePage932, "\x82\xFD", std::nullopt},
        {codePage932, "\x81\xAD", std::nullopt}, // unassigned
        {codePage932, "\x81\x5C\x81\x60", u"\u2015\uFF5E"},
        {codePage932, "\x5C\x7E\xB1\x80\xA0\xFD\xFE\xFF",
         u"\\~\uFF71\u0080\u00A0\uF8F1\uF8F2\uF8F3"},
        {codePage932, "\xF0\x40\xF9\xFC\x87\x40\xFB\xFC", u"\uE000\uE757\u2460\u9AD9"},
        {macJapanese, "\x81\x5C\x81\x60", u"\u2014\u301C"},
        {macJapanese, "\x5C\x7E\x80\xA0\xFD\xFE\xFF", u"\u00A5~\\\u00A0\u00A9\u2122\u2026\uF87F"},
        {macJapanese, "\x85\xAB\xEB\x41", u"\uF862XIII\u3001\uF87E"},
        {macJapanese, "a\xEB", std::nullopt},
        {macJapanese, "\xEB\x40", std::nullopt},
        {eucJP, "\xA1\xC1\xAD\xA1\xFC\xE2", u"\u301C\u2460\u9AD9"},
        {eucJP, "\x8E\xB1\x8F\xA2\xAF\x8F\xF3\xFE", u"\uFF71\u02D8\u2161"},
        {eucJP, "\xA4", std::nullopt},
        {eucJP, "\xA4\x22", std::nullopt},
        {eucJP, "a\x8E", std::nullopt},
        {eucJP, "\x8E\xE0", std::nullopt},
        {eucJP, "\x8F\xB0", std::nullopt},
        {eucJP, "\x8F", std::nullopt},
        {eucJP, "\x80", std::nullopt},
        {eucJP, "\xA0\xA0", std::nullopt},
        {macOSRoman, "\x80\xDB\xF0\xFF", u"\u00C4\u20AC\uF8FF\u02C7"},
        // The text may end, and a line may end, in any state.
        {iso2022JP, "a\x1B$B$\"", u"a\u3042"},
        {iso2022JP, "\x1B$@$\"\n $\"\t\x1B(B\\~", u"\u3042\n \u3042\t\\~"},
        {iso2022JP, "\x1B(J\\~a\r\x1B(I1_\x1B$(D\"/", u"\u00A5\u203Ea\r\uFF71\uFF9F\u02D8"},
        {iso2022JP, "\x1B$B-!\x1B$B|b", u"\u2460\u9AD9"},
        {iso2022JP, "\x1B$B$\"$", std::nullopt},
        {iso2022JP, "\x1B$B$\x1B(B", std::nullopt},
        {iso2022JP, "\x1B$B$\n", std::nullopt},
        {iso2022JP, "\x1B$B\x7F", std::nullopt},
        {iso2022JP, "\x1B$B\x24\xA2", std::nullopt},
        {iso2022JP, "\x1B(I`", std::nullopt},
        {iso2022JP, "\x1B(J\xB1", std::nullopt},
        {iso2022JP, "\xB1", std::nullopt},
        {iso2022JP, "a\x0E", std::nullopt},
        {iso2022JP, "\x1B$B\x0F", std::nullopt},
        {iso2022JP, "\x1B", std::nullopt},
        {iso2022JP, "\x1B$(", std::nullopt},
        {iso2022JP, "\x1B$A", std::nullopt},
        {iso2022JP, "\x1B[m", std::nullopt},
    };
    for (const auto& [encoding, bytes, text] : cases)
        EXPECT_EQ(decoded(bytes, encoding), text) << testing::PrintToString(bytes);
}

TEST(LegacyEncoding, statesAndSequences) {
    const struct {
        TextEncoding _encoding;
        std::u16string _text;
        std::optional<std::string> _bytes;
    } cases[] = {
        {iso2022JP, u"", ""},
        {iso2022JP, u"a\u3042\u3044\nb", "a\x1B$B$\"$$\x1B(B\nb"},
        {iso2022JP, u"\u3042", "\x1B$B$\"\x1B(B"},
        {iso2022JP, u"\u00A5\u203E\uFF71\u3042\u02D8\u02C7",
         "\x1B(J\\~\x1B(I1\x1B$B$\"\x1B$(D\"/\"0\x1B(B"},
        {iso2022JP, u"a\x1B", std::nullopt},
        {iso2022JP, u"\x0E", std::nullopt},
        {iso2022JP, u"\uFF5E", std::nullopt},
        {codePage932, u"\u301C", std::nullopt},
        {codePage932, u"\u00A5", std::nullopt},
        {codePage932, u"a\xD842\xDFB7", std::nullopt},
        {codePage932, u"\xD842", std::nullopt},
        {macJapanese, u"\\\u00A5", "\x80\x5C"},
        // The longest sequence first; what only begins one is not written.
        {macJapanese, u"\u2026\u2026\uF87F\u2026\uF87E", "\x81\x63\xFF\xEB\x63"},
        {macJapanese, u"\uF860XV\uF862XIII\u3001\uF87E\u3001", "\x85\xAD\x85\xAB\xEB\x41\x81\x41"},
        {macJapanese, u"\u5927\u20DD\u5927", "\x87\x91\x91\xE5"},
        {macJapanese, u"\u5927\u3001\uF87F", std::nullopt},
        {macJapanese, u"\uF862XII", std::nullopt},
        {macJapanese, u"\uF87E", std::nullopt},
    };
    for (const auto& [encoding, text, bytes] : cases)
        EXPECT_EQ(encoded(text, encoding), bytes) << testing::PrintToString(text);
}

const struct Sample {
    TextEncoding _encoding;
    std::u16string _text;
    std::string _bytes;
} kSamples[] = {
    {codePage932, u"\u3042", "\x82\xA0"},
    {codePage932, u"\uFF71", "\xB1"},
    {macJapanese, u"\u3042", "\x82\xA0"},
    {macJapanese, u"\\", "\x80"},
    {macJapanese, u"\uF862XIII", "\x85\xAB"},
    {macJapanese, u"\u5927\u20DD", "\x87\x91"},
    {eucJP, u"\u3042", "\xA4\xA2"},
    {eucJP, u"\uFF71", "\x8E\xB1"},
    {eucJP, u"\u02D8", "\x8F\xA2\xAF"},
    {iso2022JP, u"\u3042\u3044", "\x1B$B$\"$$\x1B(B"},
    {iso2022JP, u"\u02D8", "\x1B$(D\"/\x1B(B"},
    {iso2022JP, u"\u00A5", "\x1B(J\\\x1B(B"},
    {macOSRoman, u"\u00C4", "\x80"},
};

/// Checks `sample` between ASCII runs of these lengths, in both directions.
void checkBetweenRuns(const Sample& sample, size_t before, size_t after) {
    const std::string bytes = std::string(before, 'a') + sample._bytes + std::string(after, 'b');
    const std::u16string text =
        std::u16string(before, u'a') + sample._text + std::u16string(after, u'b');
    SCOPED_TRACE(testing::PrintToString(sample._bytes) + " after " + std::to_string(before) +
                 " and before " + std::to_string(after));
    EXPECT_TRUE(decoded(bytes, sample._encoding) == text);
    EXPECT_TRUE(encoded(text, sample._encoding) == bytes);
}

TEST(LegacyCodecs, charactersBetweenRunsOfASCII) {
    for (const Sample& sample : kSamples) {
        for (size_t before = 0; before < 32; ++before) {
            for (size_t after = 0; after < 32; ++after)
                checkBetweenRuns(sample, before, after);
        }
    }
}

/// The codecs work on 4096 bytes or units at a time.
TEST(LegacyCodecs, charactersAcrossTheEndOfAChunk) {
    for (const Sample& sample : kSamples) {
        for (size_t before = 4096 - 10; before <= 4096; ++before) {
            checkBetweenRuns(sample, before, 0);
            checkBetweenRuns(sample, before, 5000);
        }
    }
}

/// A chunk of nothing but one character, among them those that grow most.
TEST(LegacyCodecs, longRunsOfOneCharacter) {
    for (const Sample& sample : kSamples) {
        std::u16string text;
        std::string bytes;
        for (int i = 0; i < 10000; ++i) {
            text += sample._text + (i % 3 != 0 ? u"" : u" ");
            bytes += sample._bytes + (i % 3 != 0 ? "" : " ");
        }
        EXPECT_TRUE(decoded(bytes, sample._encoding) == text) << testing::PrintToString(text[0]);
        const auto again = encoded(text, sample._encoding);
        ASSERT_TRUE(again) << testing::PrintToString(text[0]);
        EXPECT_TRUE(decoded(*again, sample._encoding) == text) << testing::PrintToString(text[0]);
    }
}

TEST(LegacyCodecs, aTextCutAnywhereIsInvalidOrAPrefix) {
    const std::u16string text = u"<p>\u3042\uFF71\u02D8\u2460 \u9AD9</p>\r\n";
    for (const TextEncoding encoding : {codePage932, macJapanese, eucJP, iso2022JP}) {
        Alterations alterations;
        const Bytes whole = encodeTextLossy(text, encoding, alterations);
        const std::u16string all = decodeText(whole, encoding).value();
        for (size_t length = 0; length < whole.size(); ++length) {
            const std::string cut(charsOf(whole).substr(0, length));
            const Text prefix = decoded(cut, encoding);
            EXPECT_TRUE(!prefix || all.starts_with(*prefix)) << testing::PrintToString(cut);
        }
    }
}

} // namespace
} // namespace zelmora::platform
