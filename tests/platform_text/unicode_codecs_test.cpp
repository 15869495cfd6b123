#include "codec_helpers.h"
#include "platform/text/unicode_codecs.h"

#include <array>
#include <cstring>
#include <gtest/gtest.h>
#include <iconv.h>
#include <random>

namespace zelmora::platform {
namespace {

using enum TextEncoding;
using namespace std::literals;

/// The C library's converter, as a second opinion; nullopt when it refuses `bytes`.
std::optional<std::string> iconvConvert(std::string bytes, const char* from, const char* to) {
    const iconv_t converter = iconv_open(to, from);
    std::string result(bytes.size() * 4 + 4, '\0');
    char* in = bytes.data();
    char* out = result.data();
    size_t inLeft = bytes.size();
    size_t outLeft = result.size();
    const size_t status = iconv(converter, &in, &inLeft, &out, &outLeft);
    iconv_close(converter);
    if (status == static_cast<size_t>(-1) || inLeft != 0)
        return std::nullopt;
    result.resize(result.size() - outLeft);
    return result;
}

std::u16string unitsOf(std::string_view native) {
    std::u16string text(native.size() / sizeof(char16_t), u'\0');
    std::memcpy(text.data(), native.data(), native.size());
    return text;
}

constexpr std::array<std::pair<TextEncoding, const char*>, 5> kEncodings = {
    {{utf8, "UTF-8"},
     {utf16LE, "UTF-16LE"},
     {utf16BE, "UTF-16BE"},
     {utf32LE, "UTF-32LE"},
     {utf32BE, "UTF-32BE"}}};

TEST(UnicodeCodecs, EveryCodePointAgreesWithTheCLibrary) {
    std::string source;
    for (uint32_t codePoint = 0; codePoint <= 0x10FFFF; ++codePoint) {
        if (codePoint < 0xD800 || codePoint > 0xDFFF)
            source.append(reinterpret_cast<const char*>(&codePoint), sizeof codePoint);
    }
    const std::u16string text = unitsOf(*iconvConvert(source, "UTF-32LE", "UTF-16LE"));
    for (const auto& [encoding, name] : kEncodings) {
        const std::string bytes = *iconvConvert(source, "UTF-32LE", name);
        EXPECT_TRUE(decoded(bytes, encoding) == text) << name;
        EXPECT_TRUE(encoded(text, encoding) == bytes) << name;
        EXPECT_EQ(decoded("", encoding), u"") << name;
    }
}

/// All that four bytes may be at the borders of what is valid, with what the fast runs take around
/// them.
TEST(UnicodeCodecs, EveryBorderOfUTF8AgreesWithTheCLibrary) {
    const std::string borders =
        "A\x7F\x80\x8F\x90\x9F\xA0\xBF\xC1\xC2\xDF\xE0\xE1\xED\xEF\xF0\xF1\xF4\xF5\xFF";
    const std::string runs[] = {"", "a", std::string(40, 'a'), repeated(15, "\xE6\xBC\xA2"s),
                                "\xC3\xA9\xF0\x9F\x98\x80"};
    std::mt19937 random(1);
    const auto next = [&](const auto& all) { return all[random() % std::size(all)]; };
    for (int round = 0; round < 200'000; ++round) {
        const std::string code = {next(borders), next(borders), next(borders), next(borders)};
        const std::string bytes = next(runs) + next(runs) + code.substr(random() % 3) + next(runs);
        const auto native = iconvConvert(bytes, "UTF-8", "UTF-16LE");
        const auto text = decoded(bytes, utf8);
        ASSERT_EQ(text.has_value(), native.has_value()) << testing::PrintToString(bytes);
        ASSERT_TRUE(!text || *text == unitsOf(*native)) << testing::PrintToString(bytes);
        size_t length = 1; // of the first character
        while (length <= 4 && !iconvConvert(code.substr(0, length), "UTF-8", "UTF-16LE"))
            ++length;
        ASSERT_EQ(utf8SequenceLength(bytesOf(code)), length % 5) << testing::PrintToString(code);
    }
    EXPECT_EQ(utf8SequenceLength({}), 0u);
}

TEST(UnicodeCodecs, WrongSizesAndLoneSurrogatesAreRefused) {
    const std::pair<TextEncoding, std::string_view> cases[] = {
        {utf16LE, "A"sv},
        {utf16BE, "\0A\0"sv},
        {utf16LE, "\x00\xD8"sv},
        {utf16BE, "\xD8\x00\xD8\x00\xDC\x00"sv},
        {utf32LE, "A\0\0"sv},
        {utf32LE, "\x00\xD8\0\0"sv},
        {utf32LE, "\0\0\x11\0"sv},
        {utf32BE, "\0\x11\0\0"sv},
        {utf32BE, "\xFF\0\0\x41"sv},
    };
    for (const auto& [encoding, bytes] : cases)
        EXPECT_FALSE(decoded(bytes, encoding)) << testing::PrintToString(bytes);
}

TEST(UnicodeCodecs, LoneSurrogatesAreFoundInEveryPosition) {
    for (const std::u16string lone : {u"\xD800", u"\xDBFF", u"\xDC00", u"\xDFFF"}) {
        for (size_t before = 0; before <= 34; ++before) {
            for (const size_t after : {0u, 1u, 17u}) {
                // Pairs before, so that a block's border falls inside one.
                const std::u16string pairs =
                    (before % 2 == 1 ? u"x" : u"") + repeated(before / 2, u"\U0001F600"s);
                const std::u16string text = pairs + lone + std::u16string(after, u'あ');
                EXPECT_EQ(findLoneSurrogate(text), pairs.size()) << before << ", " << after;
                for (const auto& [encoding, name] : kEncodings)
                    EXPECT_FALSE(encoded(text, encoding)) << name << ", " << before << " before";
            }
        }
    }
}

} // namespace
} // namespace zelmora::platform
