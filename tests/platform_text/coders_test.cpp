// Random texts and broken bytes through every coder, whole and in pieces, with the kernels and
// without. The plain loops' own answers are checked by the round trip and by the other tests.
#include "codec_helpers.h"
#include "platform/text/text_coders.h"
#include "platform/text/wide_kernels.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>

namespace zelmora::platform {
namespace {

using enum TextEncoding;

struct Pieces {
    TextEncoding _encoding;
    std::vector<std::u16string> _text;
    std::vector<std::string> _rare; ///< codes that the kernels leave to the plain loop, or invalid
};

const std::u16string kKana = u"\u3042", kWords = u"\u6F22\u5B57\u3068\u30AB\u30CA\u3002";
const std::u16string kHalfWidth = u"\uFF71\uFF9E", kPlane1 = u"\U0001F600\U0010FFFF";

const Pieces kPieces[] = {
    {codePage932,
     {kKana, kWords, u"a", u"\r\n", kHalfWidth, u"\u2015\u0080\uF8F1"},
     {"\x81\xAD", "\x82", std::string(1, '\0'), "\x80\xA0\xFD\xFF", "\xF0\x40\xFC\x4B",
      "\xFC\xFC"}},
    {macJapanese,
     {kKana, kWords, u"a", u"\r", kHalfWidth, u"\\\u00A5", u"\u5927\u20DD", u"\u2026\uF87F",
      u"\uF862XIII\u3001\uF87E"},
     {"\x85\xAB\xEB\x41", "\xEB\x40", "\x82", "\x80\xA0\xFD\xFF", "\x87\x91"}},
    {eucJP,
     {kKana, kWords, u"a", u"\r\n", kHalfWidth, u"\u2460", u"\u02D8"},
     {"\x8F\xA2\xAF", "\x8E\xE0", "\x80\x41", "\x80\xA1", "\xA4\x22", "\xA4", "\xFF\xFF"}},
    {iso2022JP,
     {kKana, kWords, u"\u3042\u3044a\u3046", u"a", u"\r\n", kHalfWidth, u"\u00A5", u"\u02D8"},
     {"\x1B", "\x1B(", "\x1B(B", "\x1B$B", "\x1B$@", "\x1B(J", "\x0E", "\x0F", "\n", " ", "\x7F",
      "$", "\xA4\xA2"}},
    {utf8,
     {kKana, kWords, u"a", u"\r\n", u"\u00E9\u03B1\u07FF\u0800", u"\uD7FF\uE000\uFFFF", kPlane1},
     {"\xC1\xBF", "\xC0\x80", "\xE0\x9F\xBF", "\xED\xA0\x80", "\x80", "\xE3\x81", "\xC2", "\xF8",
      "\xFF"}},
    {utf16LE, {kKana, u"a", kPlane1}, {std::string("\0\xD8", 2), "a"}},
    {utf16BE, {kKana, u"a", kPlane1}, {std::string("\xDF\0", 2), "a"}},
    {utf32LE, {kKana, u"a", kPlane1}, {std::string("\0\xD8\0\0", 4), "a"}},
    {utf32BE, {kKana, u"a", kPlane1}, {std::string("\0\x11\0\0", 4), "a"}},
    {macOSRoman, {u"\u00C4\u20AC", u"a", u"\r\n"}, {"\x80"}},
};

class Coders : public testing::TestWithParam<Pieces> {
  protected:
    template<typename T>
    const T& anyOf(const std::vector<T>& all) {
        return all[_random() % all.size()];
    }

    /// Some of the pieces: texts of only one or two kinds are what the kernels get furthest in.
    std::vector<std::u16string> somePieces() {
        std::vector<std::u16string> some;
        for (const std::u16string& piece : GetParam()._text)
            if (_random() % 2 == 0)
                some.push_back(piece);
        return some.empty() ? GetParam()._text : some;
    }

    /// A text with much, little or no ASCII in a row, from no unit to some windows long, every now
    /// and then over the border of a chunk, of some chunks, or of some of nothing but one piece.
    std::u16string makeText() {
        const std::vector<std::u16string> pieces = somePieces();
        std::u16string text;
        _middle = 0;
        if (_random() % 16 == 0)
            text.assign(static_cast<size_t>(kChunk - 100) + _random() % 100, u'a');
        const bool isLong = _random() % 16 == 0;
        for (size_t left = _random() % (isLong ? 1000 : 60); left > 0; --left) {
            text += repeated(_random() % 4096 == 0 ? 9000 : 1, anyOf(pieces));
            if (_random() % (isLong ? 512 : 16) == 0)
                text.append(_random() % 150, u'x');
            if (left > 30)
                _middle = text.size();
        }
        return text;
    }

    /// `bytes` with none, one or two things in it that are rare or wrong, or cut off.
    std::string spoilt(std::string bytes) {
        for (size_t left = _random() % 3; left > 0 && !bytes.empty(); --left) {
            const size_t at = _random() % bytes.size();
            if (_random() % 3 == 0)
                bytes[at] = static_cast<char>(_random());
            else
                bytes.insert(at, anyOf(GetParam()._rare));
        }
        if (_random() % 8 == 0)
            bytes.resize(bytes.size() - std::min<size_t>(bytes.size(), _random() % 4));
        return bytes;
    }

    /// `convert`'s answer without kernels. Runs either of the levels then.
    template<typename Convert>
    auto plainly(Convert convert) {
        setWideKernels(WideKernels::none);
        auto result = convert();
        setWideKernels(_random() % 2 == 0 ? WideKernels::avx2 : WideKernels::vbmi2);
        return result;
    }

    std::optional<std::u16string> decodedInPieces(const std::string& bytes, size_t piece) const {
        const Bytes exact(bytesOf(bytes).begin(), bytesOf(bytes).end());
        ByteView rest = exact;
        std::u16string text;
        const auto decoder = makeTextDecoder(_encoding);
        while (!rest.empty()) {
            const size_t before = rest.size();
            if (!decoder->decode(rest, piece, text))
                return std::nullopt;
            EXPECT_LE(rest.size() + piece, std::max(before, piece))
                << "took less than it was given";
        }
        return text;
    }

    std::string encodedInTwo(std::u16string_view text) const {
        const char16_t* const end = text.data() + text.size();
        const char16_t* const middle = text.data() + _middle;
        const auto encoder = makeTextEncoder(_encoding);
        Bytes bytes;
        EXPECT_EQ(encoder->encode(text.data(), middle, bytes), middle);
        EXPECT_EQ(encoder->encode(middle, end, bytes), end);
        encoder->finish(bytes);
        return std::string(charsOf(bytes));
    }

    const TextEncoding _encoding = GetParam()._encoding;
    std::mt19937 _random{1};
    size_t _middle = 0; ///< between two pieces of the last text
};

TEST_P(Coders, decodeInEveryWayTheSame) {
    for (int round = 0; round < 20'000; ++round) {
        const std::u16string text = makeText();
        std::string bytes = encoded(text, _encoding).value();
        ASSERT_TRUE(decoded(bytes, _encoding) == text);
        bytes = spoilt(bytes);
        const auto plain = plainly([&] { return decoded(bytes, _encoding); });
        ASSERT_EQ(decoded(bytes, _encoding), plain) << testing::PrintToString(bytes);
        const size_t piece = 1 + _random() % (bytes.size() < 1000 ? 12 : 5000);
        ASSERT_EQ(decodedInPieces(bytes, piece), plain) << testing::PrintToString(bytes) << piece;
    }
}

/// Pairs, and what is none, at even and at odd places; some windows of them.
TEST_P(Coders, noticeEveryBitThatIsWrong) {
    for (const std::u16string& piece : GetParam()._text) {
        const std::string right =
            encoded(u"a" + piece + repeated(100, kKana) + piece + u"xx" + repeated(60, kKana),
                    _encoding)
                .value_or("");
        for (size_t bit = 0; bit < 8 * right.size(); ++bit) {
            std::string wrong = right;
            wrong[bit / 8] = static_cast<char>(wrong[bit / 8] ^ 1 << bit % 8);
            const auto decode = [&] { return decoded(wrong, _encoding); };
            ASSERT_EQ(decode(), plainly(decode)) << testing::PrintToString(wrong);
        }
    }
}

TEST_P(Coders, encodeInEveryWayTheSame) {
    for (int round = 0; round < 20'000; ++round) {
        std::u16string text = makeText();
        ASSERT_EQ(encodedInTwo(text), encoded(text, _encoding)) << testing::PrintToString(text);
        for (size_t left = _random() % 3; left > 0 && !text.empty(); --left)
            text[_random() % text.size()] = static_cast<char16_t>(_random());
        const std::vector<char16_t> exact(text.begin(), text.end());
        const auto encode = [&] { return encodeText({exact.data(), exact.size()}, _encoding); };
        ASSERT_EQ(encode(), plainly(encode)) << testing::PrintToString(text);
    }
}

INSTANTIATE_TEST_SUITE_P(Encodings, Coders, testing::ValuesIn(kPieces), [](const auto& suite) {
    return std::to_string(static_cast<int>(suite.param._encoding));
});

} // namespace
} // namespace zelmora::platform
