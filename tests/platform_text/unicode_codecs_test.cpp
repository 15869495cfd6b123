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

/// What no encoder writes, and the borders of what one does, at each distance from a block's begin
/// and end, so that the fast runs meet it as well as the slow path.
TEST(UnicodeCodecs, RandomUTF8AgreesWithTheCLibrary) {
    const std::string characters[] = {"a",
                                      "bcdefghijklmnopqrstuvwxyz",
                                      "\xE6\xBC\xA2\xE5\xAD\x97",
                                      "\xC3\xA9",
                                      "\xE3\x81\x82",
                                      "\xF0\x9F\x98\x80"};
    const std::string rare[] = {"\x7F",
                                "\xC2\x80",
                                "\xDF\xBF",
                                "\xE0\xA0\x80",
                                "\xED\x9F\xBF",
                                "\xEE\x80\x80",
                                "\xEF\xBB\xBF",
                                "\xEF\xBF\xBF",
                                "\xF0\x90\x80\x80",
                                "\xF4\x8F\xBF\xBF",
                                "\x80",
                                "\xBF",
                                "\xC0\x80",
                                "\xC1\xBF",
                                "\xE0\x9F\xBF",
                                "\xF0\x8F\xBF\xBF",
                                "\xED\xA0\x80",
                                "\xED\xBF\xBF",
                                "\xF4\x90\x80\x80",
                                "\xF5\x80\x80\x80",
                                "\xF8\x88\x80\x80\x80",
                                "\xFC\x84\x80\x80\x80\x80",
                                "\xFE",
                                "\xFF",
                                "\xC2",
                                "\xE3\x81",
                                "\xF0\x9F\x98",
                                "\xE3\x41\x81"};
    std::mt19937 random(1);
    const auto make = [&] { // few, or more than the codecs take at a time
        std::string bytes;
        for (size_t i = random() % 20; i > 0; --i)
            bytes += repeated(random() % 512 == 0 ? 4500 : 1, characters[random() % 6]);
        return bytes;
    };
    for (int round = 0; round < 20'000; ++round) {
        const std::string before = make(), after = make(), code = rare[random() % std::size(rare)];
        std::string bytes = before + code + after;
        const bool isValid = iconvConvert(code, "UTF-8", "UTF-16LE").has_value();
        EXPECT_EQ(utf8SequenceLength(bytesOf(code + after)), isValid ? code.size() : 0) << round;
        if (round % 4 == 0)
            bytes[random() % bytes.size()] = static_cast<char>(random());
        const auto native = iconvConvert(bytes, "UTF-8", "UTF-16LE");
        const auto text = decoded(bytes, utf8);
        ASSERT_EQ(text.has_value(), native.has_value()) << testing::PrintToString(bytes);
        ASSERT_TRUE(!text || *text == unitsOf(*native)) << testing::PrintToString(bytes);
    }
    EXPECT_EQ(utf8SequenceLength({}), 0u);
}

TEST(UnicodeCodecs, WrongSizesAndLoneSurrogatesAreRefused) {
    const std::pair<TextEncoding, std::string_view> cases[] = {
        {utf16LE, "A"sv},
        {utf16BE, "\0A\0"sv},
        {utf16LE, "\x00\xD8"sv},
        {utf16LE, "\x00\xDC"sv},
        {utf16BE, "\xDC\x00\xD8\x00"sv},
        {utf16BE, "\xD8\x00\xD8\x00\xDC\x00"sv},
        {utf32LE, "A\0\0"sv},
        {utf32LE, "\x00\xD8\0\0"sv},
        {utf32LE, "\xFF\xDF\0\0"sv},
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
