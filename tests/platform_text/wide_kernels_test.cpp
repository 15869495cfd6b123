// Every kernel against the plain loop, whose own answers the other tests check.
#include "platform/text/wide_kernels.h"

#include "platform/text/text_encoding.h"

#include <gtest/gtest.h>
#include <random>
#include <string>

namespace zelmora::platform {
namespace {

using enum TextEncoding;

/// `convert`'s answer without kernels.
template<typename Convert>
auto plainly(Convert convert) {
    setUsesWideKernels(false);
    auto result = convert();
    setUsesWideKernels(true);
    return result;
}

struct Pieces {
    TextEncoding _encoding;
    std::vector<std::u16string> _text;
    std::vector<std::string> _rare; ///< codes that the kernels leave to the plain loop, or invalid
};

const Pieces kPieces[] = {
    {codePage932,
     {u"\u3042", u"\u6F22\u5B57\u3068\u30AB\u30CA\u3002", u"a", u"\r\n", u"\uFF71\uFF9E",
      u"\u2015"},
     {"\x81\xAD", "\x82", std::string(1, '\0'), "\x80\xA0\xFD\xFF", "\xF0\x40\xFC\x4B",
      "\xFC\xFC"}},
    {macJapanese,
     {u"\u3042", u"\u6F22\u5B57\u3068\u30AB\u30CA\u3002", u"a", u"\r", u"\uFF71\uFF9E", u"\\\u00A5",
      u"\u5927\u20DD", u"\u2026\uF87F", u"\uF862XIII"},
     {"\x85\xAB\xEB\x41", "\xEB\x40", "\x82", "\x80\xA0\xFD\xFF", "\x87\x91"}},
    {eucJP,
     {u"\u3042", u"\u6F22\u5B57\u3068\u30AB\u30CA\u3002", u"a", u"\r\n", u"\uFF71\uFF9E",
      u"\u2460"},
     {"\x8F\xA2\xAF", "\x8E\xE0", "\x80\x41", "\x80\xA1", "\xA4\x22", "\xA4", "\xFF\xFF"}},
    {iso2022JP,
     {u"\u3042", u"\u6F22\u5B57\u3068\u30AB\u30CA\u3002", u"\u3042\u3044a\u3046", u"a", u"\r\n",
      u"\uFF71\uFF9E", u"\u00A5", u"\u02D8"},
     {"\x1B", "\x1B(", "\x1B(B", "\x1B$B", "\x1B$@", "\x1B(J", "\x0E", "\x0F", "\n", " ", "\x7F",
      "$", "\xA4\xA2"}},
    {utf8,
     {u"\u3042", u"\u6F22\u5B57\u3068\u30AB\u30CA\u3002", u"a", u"\r\n",
      u"\u00E9\u03B1\u07FF\u0800", u"\uD7FF\uE000\uFFFF"},
     {"\xF0\x9F\x98\x80", "\xC1\xBF", "\xC0\x80", "\xE0\x9F\xBF", "\xED\xA0\x80", "\x80",
      "\xE3\x81", "\xC2", "\xF8", "\xFF"}},
};

class WideKernels : public testing::TestWithParam<Pieces> {
  protected:
    /// A text with much, little or no ASCII in a row, from no unit to some windows long.
    std::u16string makeText() {
        std::u16string text;
        for (size_t left = _random() % 60; left > 0; --left) {
            text += anyOf(GetParam()._text);
            if (_random() % 16 == 0)
                text.append(_random() % 150, u'x');
        }
        return text;
    }

    /// `bytes` with none, one or two things in it that are rare or wrong.
    std::string spoilt(std::string bytes) {
        for (size_t left = _random() % 3; left > 0 && !bytes.empty(); --left) {
            const size_t at = _random() % bytes.size();
            if (_random() % 3 == 0)
                bytes[at] = static_cast<char>(_random());
            else
                bytes.insert(at, anyOf(GetParam()._rare));
        }
        return bytes;
    }

    template<typename T>
    const T& anyOf(const std::vector<T>& all) {
        return all[_random() % all.size()];
    }

    const TextEncoding _encoding = GetParam()._encoding;
    std::mt19937 _random{1};
};

TEST_P(WideKernels, decodeWhatThePlainLoopDecodes) {
    for (int round = 0; round < 20'000; ++round) {
        const Bytes encoded = encodeText(makeText(), _encoding).value();
        std::string bytes = spoilt(std::string(charsOf(encoded)));
        if (round % 16 == 0) // over the border of a chunk
            bytes.insert(0, static_cast<size_t>(kChunk - 100) + _random() % 100, 'a');
        const std::vector<std::byte> exact(bytesOf(bytes).begin(), bytesOf(bytes).end());
        const auto decode = [&] { return decodeText(exact, _encoding); };
        ASSERT_EQ(decode(), plainly(decode)) << testing::PrintToString(bytes);
    }
}

TEST_P(WideKernels, encodeWhatThePlainLoopEncodes) {
    for (int round = 0; round < 20'000; ++round) {
        std::u16string text = makeText();
        for (size_t left = _random() % 3; left > 0 && !text.empty(); --left)
            text[_random() % text.size()] = static_cast<char16_t>(_random());
        if (round % 16 == 0)
            text.insert(0, static_cast<size_t>(kChunk - 100) + _random() % 100, u'a');
        const std::vector<char16_t> exact(text.begin(), text.end());
        const std::u16string_view view(exact.data(), exact.size());
        const auto encode = [&] { return encodeText(view, _encoding); };
        ASSERT_EQ(encode(), plainly(encode)) << testing::PrintToString(text);
    }
}

INSTANTIATE_TEST_SUITE_P(Encodings, WideKernels, testing::ValuesIn(kPieces), [](const auto& suite) {
    return std::to_string(static_cast<int>(suite.param._encoding));
});

} // namespace
} // namespace zelmora::platform
