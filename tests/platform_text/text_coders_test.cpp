// A text in pieces gives what the whole text gives, wherever the pieces end.
#include "platform/text/text_coders.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>

namespace zelmora::platform {
namespace {

using enum TextEncoding;

constexpr std::u16string_view kLegacyText =
    u"<p>ab\u3042\u6F22\uFF71\uFF9E\r\n\u2460\u3000\u3042\uFF71</p>\n\u3042";

struct Sample {
    TextEncoding encoding;
    std::u16string text;
};

std::vector<Sample> samples() {
    const std::u16string legacy(kLegacyText);
    std::vector<Sample> all = {
        {macJapanese, legacy + u"\\\u00A5\uF862XIII\u3001\uF87E\u5927\u20DD"},
        {codePage932, legacy + u"\u0080\uF8F1"},
        {iso2022JP, legacy + u"\u00A5\u02D8\u203Ea\u02D8"},
        {eucJP, legacy + u"\u02D8\u02D8"},
        {macOSRoman, u"a\u00C4\u20AC\r\nb"},
    };
    for (const TextEncoding encoding : {utf8, utf16LE, utf16BE, utf32LE, utf32BE})
        all.push_back({encoding, legacy + u"\u00E9\U0001F600\U0001F600\u0100\U0010FFFFa"});
    return all;
}

/// Decodes `piece` bytes at a time, from a copy of exactly this size, so that the address sanitizer
/// sees a read past its end.
std::optional<std::u16string> decodedInPieces(const Bytes& bytes, TextEncoding encoding,
                                              size_t piece) {
    ByteView rest = bytes;
    std::u16string text;
    const auto decoder = makeTextDecoder(encoding);
    while (!rest.empty()) {
        const size_t before = rest.size();
        if (!decoder->decode(rest, piece, text))
            return std::nullopt;
        EXPECT_LE(rest.size() + piece, std::max(before, piece)) << "took less than it was given";
    }
    return text;
}

TEST(TextDecoder, PiecesOfEverySizeGiveTheWholeText) {
    for (const auto& [encoding, text] : samples()) {
        const Bytes bytes = encodeText(text, encoding).value();
        for (size_t piece = 1; piece <= bytes.size() + 1; ++piece)
            EXPECT_EQ(decodedInPieces(bytes, encoding, piece), text)
                << static_cast<int>(encoding) << " in pieces of " << piece;
    }
}

TEST(TextDecoder, BrokenBytesAreRefusedInPiecesOfEverySize) {
    for (const auto& [encoding, text] : samples()) {
        const Bytes whole = encodeText(text, encoding).value();
        for (unsigned seed = 0; seed < 60; ++seed) {
            std::mt19937 random(seed);
            Bytes bytes(whole.begin(),
                        whole.begin() + static_cast<std::ptrdiff_t>(1 + random() % whole.size()));
            bytes[random() % bytes.size()] = static_cast<std::byte>(random());
            for (size_t piece = 1; piece < 12; ++piece)
                ASSERT_EQ(decodedInPieces(bytes, encoding, piece), decodeText(bytes, encoding))
                    << static_cast<int>(encoding) << ", seed " << seed << ", pieces of " << piece;
        }
    }
}

TEST(TextEncoder, TwoPiecesGiveTheBytesOfTheWholeText) {
    for (const auto& [encoding, text] : samples()) {
        const Bytes whole = encodeText(text, encoding).value();
        // Behind this stand what Macintosh Japanese writes as one code.
        const size_t last = encoding == macJapanese ? kLegacyText.size() : text.size();
        for (size_t split = 0; split <= last; ++split) {
            if ((text[split] & 0xFC00) == 0xDC00)
                continue;
            const char16_t* const middle = text.data() + split;
            const char16_t* const end = text.data() + text.size();
            const auto encoder = makeTextEncoder(encoding);
            Bytes bytes;
            EXPECT_EQ(encoder->encode(text.data(), middle, bytes), middle);
            EXPECT_EQ(encoder->encode(middle, end, bytes), end);
            encoder->finish(bytes);
            EXPECT_EQ(bytes, whole) << static_cast<int>(encoding) << " split at " << split;
        }
    }
}

} // namespace
} // namespace zelmora::platform
