#include "plain_detector.h"
#include "textutil/encoding_detector.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <random>
#include <span>
#include <string>
#include <vector>

namespace zelmora {
namespace {

using platform::bytesOf;
using namespace std::string_literals;

/// "UTF-16 little mark", "EUC-JP", "none": a record in one readable string.
std::string nameOf(OrvEncodingInfo info) {
    const char* const encodings[] = {"none",  "Shift_JIS", "ISO-2022-JP", "EUC-JP",
                                     "UTF-8", "UTF-16",    "UTF-32"};
    const char* const orders[] = {"", " little", " big"};
    std::string name = encodings[static_cast<size_t>(info.encoding)];
    name += orders[static_cast<size_t>(info.byteOrder)];
    name += info.hasBOM ? " mark" : "";
    name += info.characterMapping == OrvCharacterMapping::mac ? "" : " mapped";
    return name;
}

std::string hexOf(std::string_view bytes) {
    std::string hex;
    for (const char byte : bytes.substr(0, 64)) {
        char digits[4];
        std::snprintf(digits, sizeof digits, "%02X ", static_cast<unsigned char>(byte));
        hex += digits;
    }
    return hex + (bytes.size() > 64 ? "..." : "");
}

std::string repeated(std::string_view piece, size_t times) {
    std::string text;
    for (; times > 0; --times)
        text += piece;
    return text;
}

TEST(EncodingDetector, KnownAnswers) {
    const std::string ascii(1000, 'x');
    const struct {
        std::string bytes;
        const char* answer;
    } cases[] = {
        {"", "none"},
        {"A", "none"},
        {"\0"s, "UTF-16 big"},
        {"\x1B", "none"},
        {"\x8E", "EUC-JP"},
        {"\x81", "Shift_JIS"},
        {"\xA1", "none"},
        {"\xFE", "none"},
        {"\xFF", "EUC-JP"},
        {"tab\tline\r\n\x1B[0m", "none"},
        // Byte-order marks, whole, cut off and continued otherwise.
        {"\xEF\xBB\xBF", "UTF-8 mark"},
        {"\xEF\xBB\xBF\x81\0"s, "UTF-8 mark"},
        {"\xEF\xBB", "EUC-JP"},
        {"\xEF\xBB\x41", "EUC-JP"},
        {"\xEF\xBB\x81", "UTF-8"},
        {"\xFF\xFE", "UTF-16 little mark"},
        {"\xFF\xFE\0"s, "UTF-16 little mark"},
        {"\xFF\xFE\0\0"s, "UTF-32 little mark"},
        {"\xFF\xFE\x41\0"s, "UTF-16 little mark"},
        {"\xFF\x41", "EUC-JP"},
        {"\xFE\xFF", "UTF-16 big mark"},
        {"\xFE\x41", "none"},
        {"\0\0\xFE\xFF"s, "UTF-32 big mark"},
        {"\0\0\xFE"s, "UTF-32 big"},
        // Escape sequences.
        {"\x1B$B", "ISO-2022-JP"},
        {"\x1B$@", "ISO-2022-JP"},
        {"\x1B$", "none"},
        {ascii + "\x1B$B\x81", "ISO-2022-JP"},
        {"\x81\x1B$B", "Shift_JIS"},
        {"\x1B(B", "ISO-2022-JP"},
        {"\x1B(J", "ISO-2022-JP"},
        {"\x1B(", "none"},
        {"\x1B(I", "none"},
        {"\x1B(B\xC3\xA9", "ISO-2022-JP"},
        {"\x1B(B\xC3\xA9-\xC3\xA9", "UTF-8"},
        {"\x1B\x1B(B", "ISO-2022-JP"},
        {"\xA4\xA2\x1B(B", "ISO-2022-JP"},
        {"\xC6\xFC\xCB\xDC\x1B(B", "ISO-2022-JP"},
        // Bytes that only Shift_JIS uses; UTF-8 counted before turns them.
        {"\x8D", "Shift_JIS"},
        {"\x90", "Shift_JIS"},
        {"\x9F", "Shift_JIS"},
        {"\x8F", "EUC-JP"},
        {"\x93\xFA\x96{", "Shift_JIS"},
        {"\xE3\x81\x82", "UTF-8"},
        {"\xC3\xA9\xFF\x81", "Shift_JIS"},
        {"\x1B(B\xC3\xA9x\xC3\xA9x\xFEx", "ISO-2022-JP"}, // FE clears the count of UTF-8
        {"\xC3\xA9\x81", "UTF-8"},
        {"\xFE" + repeated("\x80", 6), "Shift_JIS"},
        {"\xFF" + repeated("\x80", 7), "Shift_JIS"},
        // UTF-8 without such a byte must outweigh the rest.
        {"\xC3\xA9", "none"},
        {"\xC3\xA9\xC3\xA9", "UTF-8"},
        {"\xF8\xA8\xA8\xA8\xA8", "EUC-JP"},
        {"\xFC\xA8\xA8\xA8\xA8\xA8\x80", "UTF-8"},
        {"\xFD\xA8\xA8\xA8\xA8\x80", "UTF-8"},
        {"\xC0\x80", "UTF-8"},     // overlong passes
        {"\xED\xA0\x80", "UTF-8"}, // so does a surrogate
        {"\xA9\xC3", "EUC-JP"},
        {"\xC6\xFC\xCB\xDC", "EUC-JP"},
        {"\xB1", "none"},
        {"\x8E\xB1", "EUC-JP"},
        // Zero bytes: two together are UTF-32's, one by its place and the length.
        {"\0A"s, "UTF-16 big"},
        {"A\0"s, "UTF-16 little"},
        {"A\0\0\1"s, "UTF-32 little"},
        {"\0\0"s, "UTF-32 big"},
        {"\0\0\0A"s, "UTF-32 big"},
        {"\0ABC"s, "none"},
        {"\0AB\0"s, "UTF-16 big"},
        {"\0A\0B"s, "UTF-16 big"},
        {"ABC\0"s, "none"},
        {"ABC\0DEFG"s, "none"},
        {"ABC\0D\0FG"s, "UTF-16 little"},
        {"ABC\0DE\0G"s, "UTF-16 little"},
        {"AB\0D"s, "UTF-16 big"},
        {"\0ABCD"s, "UTF-16 big"},
        {"ABC\0D"s, "UTF-16 little"},
        // The search for zero bytes goes on behind a byte of Shift_JIS.
        {"\x81" + ascii + "\0\0"s, "UTF-32 little"},
        {"\x81" + ascii + "\0"s, "UTF-16 little"},
        {"\x81@@\0"s, "Shift_JIS"},
        {"\x81@@\0AAAA\0\0AA"s, "UTF-32 big"},
        {repeated("\xC6\xFC", 100) + "\0"s, "UTF-16 big"},
        {repeated("\xC6\xFC", 100) + "\x80", "Shift_JIS"},
        {repeated("\xC6\xFC", 100) + "\x1B$B", "ISO-2022-JP"},
    };
    for (const auto& testCase : cases) {
        EXPECT_EQ(nameOf(detectEncodingInfo(bytesOf(testCase.bytes))), testCase.answer)
            << hexOf(testCase.bytes);
        EXPECT_EQ(nameOf(plainDetect(bytesOf(testCase.bytes))), testCase.answer)
            << "by the plain rules: " << hexOf(testCase.bytes);
    }
    EXPECT_EQ(detectEncodingInfo({}), OrvEncodingInfo{});
}

/// One byte, or a few, of a kind of file.
std::string pieceOf(unsigned kind, std::mt19937& random) {
    const auto byte = [&](unsigned first, unsigned last) {
        return static_cast<char>(first + random() % (last - first + 1));
    };
    const bool odd = random() % 16 == 0; // what should not stand in such a file
    switch (odd ? random() % 6 : kind) {
    case 0: // anything
        return {byte(0x00, 0xFF)};
    case 1: { // escapes, whole and broken
        const char* const escapes[] = {"\x1B",  "\x1B(", "\x1B(B", "\x1B(J",
                                       "\x1B$", "$B",    "(B",     "x"};
        return odd ? escapes[random() % 8]
                   : std::string(1 + random() % 40, 'a') + escapes[random() % 8];
    }
    case 2: // zero bytes among others
        return random() % 4 == 0 ? "\0"s : std::string(random() % 5, 'a');
    case 3: { // UTF-8
        std::string piece;
        const size_t length = 1 + random() % 6;
        const unsigned leads[] = {0, 'a', 0xC3, 0xE3, 0xF0, 0xF9, 0xFC};
        piece += static_cast<char>(leads[length]);
        for (size_t i = 1; i < length; ++i)
            piece += byte(0xA0, 0xBF);
        return piece;
    }
    case 4: // Shift_JIS
        return random() % 3 == 0 ? std::string{byte(0xA1, 0xDF)}
                                 : std::string{byte(0x88, 0x9F), byte(0x40, 0xFC)};
    default: // EUC-JP
        return random() % 8 == 0 ? std::string{byte(0x8E, 0x8F), byte(0xA1, 0xFE)}
                                 : std::string{byte(0xA1, 0xFE), byte(0xA1, 0xFE)};
    }
}

TEST(EncodingDetector, AgreesWithThePlainRules) {
    const std::string_view marks[] = {"", "\xEF\xBB\xBF", "\xFF\xFE", "\xFE\xFF", "\xEF\xBB"};
    for (unsigned seed = 0; seed < 40000; ++seed) {
        std::mt19937 random(seed);
        std::string bytes(random() % 8 == 0 ? marks[random() % std::size(marks)] : "");
        const unsigned kind = seed % 6;
        const size_t length = random() % (seed % 50 == 0 ? 2000 : 100);
        while (bytes.size() < length + 8)
            bytes += random() % 4 == 0 ? std::string(random() % 40, 'a') : pieceOf(kind, random);
        // Half of them end where their memory ends, half where a look beyond would tell more.
        const std::vector<char> exact(bytes.begin(), bytes.begin() + static_cast<long>(length));
        const platform::ByteView data =
            random() % 2 == 0 ? std::as_bytes(std::span(exact)) : bytesOf(bytes).first(length);
        ASSERT_EQ(nameOf(detectEncodingInfo(data)), nameOf(plainDetect(data)))
            << "seed " << seed << ": " << hexOf(bytes);
    }
}

// Inputs that tempt a detector to look at the same bytes over and over. A quadratic one would take
// hours here, so that the generous limit cannot fail by chance.
TEST(EncodingDetector, LongInputsTakeOnePass) {
    constexpr size_t kSize = 8u << 20;
    const std::string pieces[] = {"a",        "\0aaa"s,   "aaa\0"s,   "\x1B",
                                  "\x1B(",    "\xFC\xA8", "\xC3\xA9", "\xC6\xFC",
                                  "\xA4\xA2", "\x8E\xB1", "a\xE9",    "\x81@aaa\0a"s};
    for (const std::string& piece : pieces) {
        const std::string bytes = repeated(piece, kSize / piece.size() / 4 * 4);
        const auto start = std::chrono::steady_clock::now();
        const OrvEncodingInfo info = detectEncodingInfo(bytesOf(bytes));
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10))
            << hexOf(piece);
        EXPECT_EQ(nameOf(info), nameOf(plainDetect(bytesOf(bytes)))) << hexOf(piece);
    }
}

} // namespace
} // namespace zelmora
