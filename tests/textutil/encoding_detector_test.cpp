#include "plain_detector.h"
#include "textutil/encoding_detector.h"

#include <gtest/gtest.h>

#include <chrono>
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
    EXPECT_EQ(info.characterMapping, OrvCharacterMapping::mac);
    return std::string(encodings[static_cast<size_t>(info.encoding)]) +
           orders[static_cast<size_t>(info.byteOrder)] + (info.hasBOM ? " mark" : "");
}

std::string repeated(std::string_view piece, size_t times) {
    std::string text;
    for (; times > 0; --times)
        text += piece;
    return text;
}

// They fix the plain rules, too, by which everything else is judged.
TEST(EncodingDetector, KnownAnswers) {
    const std::string ascii(1000, 'x');
    const std::string kanji = repeated("\xC6\xFC", 100); // EUC-JP
    const struct {
        std::string bytes;
        const char* answer;
    } cases[] = {
        {"", "none"},
        {"tab\tline\r\n\x1B[0m", "none"},
        // Byte-order marks, whole, cut off and continued otherwise.
        {"\xEF\xBB\xBF\x81\0"s, "UTF-8 mark"},
        {"\xEF\xBB", "EUC-JP"},
        {"\xEF\xBB\x81", "UTF-8"},
        {"\xFF\xFE", "UTF-16 little mark"},
        {"\xFF\xFE\0"s, "UTF-16 little mark"},
        {"\xFF\xFE\0\0"s, "UTF-32 little mark"},
        {"\xFE\xFF", "UTF-16 big mark"},
        {"\xFE\x41", "none"},
        {"\0\0\xFE\xFF"s, "UTF-32 big mark"},
        {"\0\0\xFE"s, "UTF-32 big"},
        // Escape sequences: one settles it, the other counts.
        {ascii + "\x1B$B\x81", "ISO-2022-JP"},
        {"\x1B$@", "ISO-2022-JP"},
        {"\x1B$", "none"},
        {"\x81\x1B$B", "Shift_JIS"},
        {"\x1B(J", "ISO-2022-JP"},
        {"\x1B(I", "none"},
        {"\x1B(B\xC3\xA9", "ISO-2022-JP"},
        {"\x1B(B\xC3\xA9-\xC3\xA9", "UTF-8"},
        {"\x1B\x1B(B", "ISO-2022-JP"},
        {"\xC6\xFC\xCB\xDC\x1B(B", "ISO-2022-JP"},
        {kanji + "\x1B$B", "ISO-2022-JP"},
        // Bytes that only Shift_JIS uses; UTF-8 counted before turns them.
        {"\x8D", "Shift_JIS"},
        {"\x90", "Shift_JIS"},
        {"\x8E", "EUC-JP"},
        {"\x8F", "EUC-JP"},
        {"\xA0", "EUC-JP"},
        {"\x93\xFA\x96{", "Shift_JIS"},
        {"\xE3\x81\x82", "UTF-8"},
        {"\xC3\xA9\x81", "UTF-8"},
        {"\xC3\xA9\xFF\x81", "Shift_JIS"},
        {"\x1B(B\xC3\xA9x\xC3\xA9x\xFEx", "ISO-2022-JP"}, // FE clears the count of UTF-8
        {"\xFF" + repeated("\x80", 7), "Shift_JIS"},
        {kanji + "\x80", "Shift_JIS"},
        // UTF-8 without such a byte must outweigh the rest.
        {"\xC3\xA9", "none"},
        {"\xC3\xA9\xC3\xA9", "UTF-8"},
        {"\xF8\xA8\xA8\xA8\xA8", "EUC-JP"},
        {"\xFC\xA8\xA8\xA8\xA8\xA8\x80", "UTF-8"},
        {"\xFD\xA8\xA8\xA8\xA8\x80", "UTF-8"},
        {"\xC0\x80", "UTF-8"},     // overlong passes
        {"\xED\xA0\x80", "UTF-8"}, // so does a surrogate
        {"\xC6\xFC\xCB\xDC", "EUC-JP"},
        {"\xB1", "none"},
        // Zero bytes: two together are UTF-32's, one by its place and the length.
        {"\0"s, "UTF-16 big"},
        {"A\0"s, "UTF-16 little"},
        {"A\0\0\1"s, "UTF-32 little"},
        {"\0\0\0A"s, "UTF-32 big"},
        {"\0ABC"s, "none"},
        {"\0AB\0"s, "UTF-16 big"},
        {"\0A\0B"s, "UTF-16 big"},
        {"ABC\0DEFG"s, "none"},
        {"ABC\0D\0FG"s, "UTF-16 little"},
        {"ABC\0DE\0G"s, "UTF-16 little"},
        {"AB\0D"s, "UTF-16 big"},
        {"ABC\0D"s, "UTF-16 little"},
        // The search for zero bytes goes on behind a byte of Shift_JIS.
        {"\x81" + ascii + "\0\0"s, "UTF-32 little"},
        {"\x81@@\0"s, "Shift_JIS"},
        {"\x81@@\0AAAA\0\0AA"s, "UTF-32 big"},
    };
    for (const auto& [bytes, answer] : cases) {
        SCOPED_TRACE(testing::PrintToString(bytes.substr(0, 64)));
        EXPECT_EQ(nameOf(plainDetect(bytesOf(bytes))), answer) << "by the plain rules";
        EXPECT_EQ(nameOf(detectEncodingInfo(bytesOf(bytes))), answer);
    }
}

// Files of a few kinds of pieces each, with runs of ASCII and odd bytes between them.
TEST(EncodingDetector, AgreesWithThePlainRules) {
    const std::string pieces[] = {
        "a",        "(B",       "$B",       "\x1B",         "\x1B(",
        "\x1B(B",   "\x1B(J",   "\x1B$",    "\0"s,          "\0a"s,
        "a\0"s,     "\xC3\xA9", "\xE3\xB1", "\xE3\x81\x82", "\xF9\xA8\xA8\xA8\xA8",
        "\xFC\xA8", "\xFE",     "\xFF",     "\x93\xFA",     "\x88@",
        "\xB1",     "\xC6\xFC", "\x8E\xB1", "\x8F\xB1\xA1"};
    const std::string_view marks[] = {"", "\xEF\xBB\xBF", "\xFF\xFE", "\xFE\xFF", "\xEF\xBB"};
    for (unsigned seed = 0; seed < 60000; ++seed) {
        std::mt19937 random(seed);
        std::string kinds[3];
        for (auto& kind : kinds)
            kind = pieces[random() % std::size(pieces)];
        std::string bytes(random() % 8 == 0 ? marks[random() % std::size(marks)] : "");
        const size_t length = random() % (seed % 50 == 0 ? 2000 : 100);
        while (bytes.size() < length + 8) {
            const auto choice = random() % 32;
            bytes += choice == 0  ? std::string(1, static_cast<char>(random()))
                     : choice < 6 ? std::string(random() % 40, 'a')
                                  : kinds[choice % 3];
        }
        // Half of them end where their memory ends, half where a look beyond would tell more.
        const std::vector<char> exact(bytes.begin(), bytes.begin() + static_cast<long>(length));
        const platform::ByteView data =
            seed % 2 == 0 ? std::as_bytes(std::span(exact)) : bytesOf(bytes).first(length);
        ASSERT_EQ(nameOf(detectEncodingInfo(data)), nameOf(plainDetect(data)))
            << "seed " << seed << ": " << testing::PrintToString(bytes);
    }
}

// Inputs that tempt a detector to look at the same bytes over and over. A quadratic one would take
// hours here, so that the generous limit cannot fail by chance.
TEST(EncodingDetector, LongInputsTakeOnePass) {
    constexpr size_t kSize = 8u << 20;
    for (const std::string& piece : {"a"s, "\0aaa"s, "aaa\0"s, "\x1B("s, "\xFC\xA8"s, "\xC3\xA9"s,
                                     "\xC6\xFC"s, "a\xE9"s, "\x81@aaa\0a"s}) {
        const std::string bytes = repeated(piece, kSize / piece.size() / 4 * 4);
        const auto start = std::chrono::steady_clock::now();
        const OrvEncodingInfo info = detectEncodingInfo(bytesOf(bytes));
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10)) << piece;
        EXPECT_EQ(nameOf(info), nameOf(plainDetect(bytesOf(bytes)))) << piece;
    }
}

} // namespace
} // namespace zelmora
