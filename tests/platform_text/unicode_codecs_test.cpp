#include "platform/text/unicode_codecs.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <iconv.h>
#include <random>

namespace zelmora::platform {
namespace {

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

std::string hexOf(std::string_view bytes) {
    std::string hex;
    for (const char byte : bytes) {
        char digits[4];
        std::snprintf(digits, sizeof digits, "%02X ", static_cast<unsigned char>(byte));
        hex += digits;
    }
    return hex;
}

struct Codec {
    const char* name;
    TextEncoding encoding;

    [[nodiscard]] auto decode(ByteView bytes) const { return decodeText(bytes, encoding); }
    [[nodiscard]] auto encode(std::u16string_view text) const { return encodeText(text, encoding); }
};

constexpr Codec kUTF8 = {"UTF-8", TextEncoding::utf8};
constexpr std::array kCodecs = {
    kUTF8, Codec{"UTF-16LE", TextEncoding::utf16LE}, Codec{"UTF-16BE", TextEncoding::utf16BE},
    Codec{"UTF-32LE", TextEncoding::utf32LE}, Codec{"UTF-32BE", TextEncoding::utf32BE}};

std::string everyCodePointUTF32() {
    std::string bytes;
    for (uint32_t codePoint = 0; codePoint <= 0x10FFFF; ++codePoint) {
        if (codePoint >= 0xD800 && codePoint <= 0xDFFF)
            continue;
        bytes.append(reinterpret_cast<const char*>(&codePoint), sizeof codePoint);
    }
    return bytes;
}

std::u16string unitsOf(std::string_view native) {
    std::u16string text(native.size() / sizeof(char16_t), u'\0');
    std::memcpy(text.data(), native.data(), native.size());
    return text;
}

TEST(UnicodeCodecs, EveryCodePointAgreesWithTheCLibrary) {
    const std::string source = everyCodePointUTF32();
    const std::u16string text = unitsOf(*iconvConvert(source, "UTF-32LE", "UTF-16LE"));
    for (const Codec& codec : kCodecs) {
        const std::string bytes = *iconvConvert(source, "UTF-32LE", codec.name);
        EXPECT_TRUE(codec.decode(bytesOf(bytes)) == text) << codec.name;
        const auto encoded = codec.encode(text);
        EXPECT_TRUE(encoded && charsOf(*encoded) == bytes) << codec.name;
    }
}

// Every case stands at each distance from a block's begin and end, behind ASCII and behind
// three-byte characters, so that the fast runs meet it as well as the slow path.
TEST(UnicodeCodecs, ValidityOfUTF8InEveryPosition) {
    const struct {
        std::string_view bytes;
        bool valid;
    } cases[] = {
        {"\x7F", true},
        {"\xC2\x80", true},
        {"\xDF\xBF", true},
        {"\xE0\xA0\x80", true},
        {"\xED\x9F\xBF", true},
        {"\xEE\x80\x80", true},
        {"\xEF\xBB\xBF", true},
        {"\xEF\xBF\xBF", true},
        {"\xF0\x90\x80\x80", true},
        {"\xF4\x8F\xBF\xBF", true},
        {"\x80", false}, // continuation alone
        {"\xBF", false},
        {"\xC0\x80", false}, // overlong
        {"\xC1\xBF", false},
        {"\xE0\x9F\xBF", false},
        {"\xF0\x8F\xBF\xBF", false},
        {"\xED\xA0\x80", false}, // surrogates
        {"\xED\xBF\xBF", false},
        {"\xF4\x90\x80\x80", false}, // beyond U+10FFFF
        {"\xF5\x80\x80\x80", false},
        {"\xF8\x88\x80\x80\x80", false}, // lengths that do not exist
        {"\xFC\x84\x80\x80\x80\x80", false},
        {"\xFE", false},
        {"\xFF", false},
        {"\xC2", false}, // cut off
        {"\xE3\x81", false},
        {"\xF0\x9F\x98", false},
        {"\xE3\x41\x81", false},
    };
    for (const auto& testCase : cases) {
        for (size_t before = 0; before <= 18; ++before) {
            for (const size_t after : {0u, 1u, 16u, 17u}) {
                for (const std::string_view padding : {"a", "\xE3\x81\x82"}) {
                    std::string bytes;
                    for (size_t i = 0; i < before; ++i)
                        bytes += padding;
                    bytes += testCase.bytes;
                    for (size_t i = 0; i < after; ++i)
                        bytes += padding;
                    EXPECT_EQ(kUTF8.decode(bytesOf(bytes)).has_value(), testCase.valid)
                        << hexOf(bytes);
                    EXPECT_EQ(utf8SequenceLength(bytesOf(bytes.substr(before * padding.size()))),
                              testCase.valid ? testCase.bytes.size() : 0)
                        << hexOf(bytes);
                }
            }
        }
    }
}

TEST(UnicodeCodecs, RandomUTF8AgreesWithTheCLibrary) {
    const std::string_view pieces[] = {"a",
                                       "bcdefghijklmnopqrstuvwxyz",
                                       "\xC3\xA9",
                                       "\xE3\x81\x82",
                                       "\xE6\xBC\xA2\xE5\xAD\x97",
                                       "\xF0\x9F\x98\x80"};
    for (unsigned seed = 0; seed < 3000; ++seed) {
        std::mt19937 random(seed);
        std::string bytes;
        for (size_t i = random() % 40; i > 0; --i)
            bytes += pieces[random() % std::size(pieces)];
        if (seed % 2 == 1 && !bytes.empty()) // broken in one place
            bytes[random() % bytes.size()] = static_cast<char>(random());
        const auto expected = iconvConvert(bytes, "UTF-8", "UTF-16LE");
        const auto text = kUTF8.decode(bytesOf(bytes));
        ASSERT_EQ(text.has_value(), expected.has_value())
            << "seed " << seed << ": " << hexOf(bytes);
        if (text) {
            ASSERT_TRUE(*text == unitsOf(*expected)) << "seed " << seed << ": " << hexOf(bytes);
            const auto encoded = kUTF8.encode(*text);
            ASSERT_TRUE(encoded && charsOf(*encoded) == bytes) << "seed " << seed;
        }
    }
}

TEST(UnicodeCodecs, LongTextsOfOneCharacterAtEveryOffset) {
    for (const std::string_view piece : {"\xC3\xA9", "\xE3\x81\x82", "\xF0\x9F\x98\x80"}) {
        for (size_t before = 0; before <= 4; ++before) {
            std::string bytes(before, 'a');
            for (size_t i = 0; i < 5000; ++i)
                bytes += piece;
            const std::u16string text = unitsOf(*iconvConvert(bytes, "UTF-8", "UTF-16LE"));
            EXPECT_TRUE(kUTF8.decode(bytesOf(bytes)) == text) << piece << " after " << before;
            const auto encoded = kUTF8.encode(text);
            EXPECT_TRUE(encoded && charsOf(*encoded) == bytes) << piece << " after " << before;
            bytes.pop_back();
            EXPECT_FALSE(kUTF8.decode(bytesOf(bytes))) << piece << " cut off, after " << before;
        }
    }
}

TEST(UnicodeCodecs, WrongSizesAndLoneSurrogatesAreRefused) {
    using namespace std::string_view_literals;
    const struct {
        std::string_view bytes;
        const char* codec;
    } cases[] = {
        {"A"sv, "UTF-16LE"},
        {"\0A\0"sv, "UTF-16BE"},
        {"\x00\xD8"sv, "UTF-16LE"},
        {"\x00\xDC"sv, "UTF-16LE"},
        {"\xDC\x00\xD8\x00"sv, "UTF-16BE"},
        {"\xD8\x00\xD8\x00\xDC\x00"sv, "UTF-16BE"},
        {"A\0\0"sv, "UTF-32LE"},
        {"\x00\xD8\0\0"sv, "UTF-32LE"},
        {"\xFF\xDF\0\0"sv, "UTF-32LE"},
        {"\0\0\x11\0"sv, "UTF-32LE"},
        {"\0\x11\0\0"sv, "UTF-32BE"},
        {"\xFF\0\0\x41"sv, "UTF-32BE"},
    };
    for (const auto& testCase : cases) {
        for (const Codec& codec : kCodecs) {
            if (std::string_view(codec.name) == testCase.codec) {
                EXPECT_FALSE(codec.decode(bytesOf(testCase.bytes)))
                    << codec.name << ": " << hexOf(testCase.bytes);
            }
        }
    }
}

TEST(UnicodeCodecs, LoneSurrogatesAreFoundInEveryPosition) {
    for (const std::u16string lone : {u"\xD800", u"\xDBFF", u"\xDC00", u"\xDFFF"}) {
        for (size_t before = 0; before <= 34; ++before) {
            for (const size_t after : {0u, 1u, 17u}) {
                // Pairs before, so that a block's border falls inside one.
                std::u16string text = before % 2 == 1 ? u"x" : u"";
                for (size_t i = 0; i < before / 2; ++i)
                    text += u"\U0001F600";
                const size_t offset = text.size();
                text += lone;
                text.append(after, u'あ');
                EXPECT_EQ(findLoneSurrogate(text), offset) << before << " before, " << after;
                for (const Codec& codec : kCodecs)
                    EXPECT_FALSE(codec.encode(text)) << codec.name << ", " << before << " before";
            }
        }
    }
}

TEST(UnicodeCodecs, NothingBecomesNothing) {
    for (const Codec& codec : kCodecs) {
        EXPECT_EQ(codec.decode(ByteView{}), std::u16string()) << codec.name;
        EXPECT_EQ(codec.encode({}), Bytes()) << codec.name;
    }
    EXPECT_EQ(utf8SequenceLength({}), 0u);
}

} // namespace
} // namespace zelmora::platform
