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
    const std::pair<const char*, std::vector<std::string>> cases[] = {
        {"none",
         {"", "tab\tline\r\n\x1B[0m", "\xFE\x41", "\x1B$", "\x1B(I", "\xC3\xA9", "\xB1",
          // One zero byte where a unit of UTF-32 has one.
          "\0ABC"s, "ABC\0DEFG"s}},
        // Bytes that only it uses, and whatever was counted before is not UTF-8.
        {"Shift_JIS",
         {"\x8D", "\x90", "\x93\xFA\x96{", "\x81\x1B$B", "\xC3\xA9\xFF\x81",
          "\xFF" + repeated("\x80", 7), kanji + "\x80", "\x81@@\0"s}},
        // An escape sequence settles it, or those counted outweigh UTF-8, whose count FE clears.
        {"ISO-2022-JP",
         {ascii + "\x1B$B\x81", "\x1B$@", "\x1B(J", "\x1B(B\xC3\xA9", "\x1B\x1B(B",
          "\xC6\xFC\xCB\xDC\x1B(B", kanji + "\x1B$B", "\x1B(B\xC3\xA9x\xC3\xA9x\xFEx"}},
        {"EUC-JP",
         {"\xEF\xBB", "\x8E", "\x8F", "\xA0", "\xF8\xA8\xA8\xA8\xA8", "\xC6\xFC\xCB\xDC"}},
        // Followed by a byte of Shift_JIS, or outweighing the rest; overlong and surrogates pass.
        {"UTF-8",
         {"\xEF\xBB\x81", "\x1B(B\xC3\xA9-\xC3\xA9", "\xE3\x81\x82", "\xC3\xA9\x81",
          "\xC3\xA9\xC3\xA9", "\xFC\xA8\xA8\xA8\xA8\xA8\x80", "\xFD\xA8\xA8\xA8\xA8\x80",
          "\xC0\x80", "\xED\xA0\x80"}},
        // Marks, whole and cut off.
        {"UTF-8 mark", {"\xEF\xBB\xBF\x81\0"s}},
        {"UTF-16 little mark", {"\xFF\xFE", "\xFF\xFE\0"s}},
        {"UTF-16 big mark", {"\xFE\xFF"}},
        {"UTF-32 little mark", {"\xFF\xFE\0\0"s}},
        {"UTF-32 big mark", {"\0\0\xFE\xFF"s}},
        // Zero bytes: one by its place and the length, two together are UTF-32's; also behind a
        // byte of Shift_JIS.
        {"UTF-16 little",
         {"A\0"s, "ABC\0D\0FG"s, "ABC\0DE\0G"s, "ABC\0D"s, "\x81" + ascii + "\0"s}},
        {"UTF-16 big", {"\0"s, "\0AB\0"s, "\0A\0B"s, "AB\0D"s, kanji + "\0"s}},
        {"UTF-32 little", {"A\0\0\1"s, "\x81" + ascii + "\0\0"s}},
        {"UTF-32 big", {"\0\0\xFE"s, "\0\0\0A"s, "\x81@@\0AAAA\0\0AA"s}},
    };
    for (const auto& [answer, inputs] : cases) {
        for (const auto& bytes : inputs) {
            SCOPED_TRACE(testing::PrintToString(bytes.substr(0, 64)));
            EXPECT_EQ(nameOf(plainDetect(bytesOf(bytes))), answer) << "by the plain rules";
            EXPECT_EQ(nameOf(detectEncodingInfo(bytesOf(bytes))), answer);
        }
    }
}

// Files of a few kinds of pieces each, with runs of ASCII and odd bytes between them.
TEST(EncodingDetector, AgreesWithThePlainRules) {
    const std::string pieces[] = {
        "a",        "(B",       "$B",       "\x1B",         "\x1B(",
        "\x1B(B",   "\x1B(J",   "\x1B$",    "\0"s,          "\0a"s,
        "a\0"s,     "\xC3\xA9", "\xE3\xB1", "\xE3\x81\x82", "\xF9\xA8\xA8\xA8\xA8",
        "\xFC\xA8", "\xA8\xA8", "\xFE",     "\xFF",         "\x93\xFA",
        "\x88@",    "\xB1",     "\xC6\xFC", "\x8E\xB1",     "\x8F\xB1\xA1"};
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
        EncodingDetector detector(data.size());
        bool isSettled = false;
        for (size_t at = 0; at < data.size() && !isSettled;) {
            const size_t count = std::min<size_t>(1 + random() % 20, data.size() - at);
            const size_t seen = count + EncodingDetector::kLookAhead;
            const std::vector<std::byte> piece(data.begin() + static_cast<long>(at),
                                               data.size() - at <= seen
                                                   ? data.end()
                                                   : data.begin() + static_cast<long>(at + seen));
            isSettled = detector.look(piece, count);
            at += count;
        }
        ASSERT_EQ(nameOf(detector.encodingInfo()), nameOf(plainDetect(data)))
            << "in pieces, seed " << seed << ": " << testing::PrintToString(bytes);
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
