// A text read and written in pieces is the text read and written whole.
#include "textutil/text_pieces.h"
#include "textutil/text_utility_private.h"

#include <gtest/gtest.h>
#include <random>

namespace zelmora {
namespace {

using enum OrvEncoding;
using platform::Bytes;

constexpr size_t kPieceSize = 64 * 1024; // bytes that a reader takes at once

constexpr OrvEncodingInfo kRecords[] = {{shiftjis},
                                        {shiftjis, {}, false, OrvCharacterMapping::windows},
                                        {jis},
                                        {eucjp},
                                        {utf8},
                                        {utf8, {}, true},
                                        {utf16, OrvByteOrder::littleEndian, true},
                                        {utf16, OrvByteOrder::bigEndian},
                                        {utf32, OrvByteOrder::bigEndian, true}};

/// Reads all, and checks what each piece promises.
std::optional<std::u16string> readInPieces(const Bytes& data, OrvEncodingInfo info) {
    TextReader reader(data, info);
    std::u16string text;
    for (std::u16string piece; reader.read(piece); text += piece) {
        EXPECT_FALSE(piece.empty());
        if (text.empty())
            continue;
        const char16_t last = text.back();
        EXPECT_TRUE(last == u'\n' || last == u'\u2028' || (last == u'\r' && piece[0] != u'\n'))
            << "a piece ends in the middle of a line";
    }
    return reader.hasFailed() ? std::nullopt : std::optional(text);
}

void expectSameInPieces(const std::u16string& text, OrvEncodingInfo info, const std::string& what) {
    SCOPED_TRACE(what + ", encoding " + std::to_string(static_cast<int>(info.encoding)));
    const Bytes data = *OrvTextUtilityPrivate().dataWithString(text, info);
    EXPECT_TRUE(readInPieces(data, info) == text);
    Bytes written;
    TextReader reader(data, info);
    TextWriter writer(info, written);
    for (std::u16string piece; reader.read(piece);)
        EXPECT_TRUE(writer.write(piece));
    writer.finish();
    EXPECT_TRUE(written == data);
}

TEST(TextPieces, WhatBelongsTogetherAcrossTheEndOfAPiece) {
    for (const std::u16string_view sample :
         {u"\r\n", u"\r\r\n", u"\r", u"\n", u"\u3042\r\n", u"\uFF76\uFF9E\n", u"x"}) {
        for (const OrvEncodingInfo info : kRecords) {
            const size_t unitSize = info.encoding == utf16 ? 2 : info.encoding == utf32 ? 4 : 1;
            for (size_t before = 0; before < 12; ++before) {
                // Lines before, a long line, and the sample that ends it across a piece's end.
                std::u16string text = u"\u6F22\r\n";
                text.resize(kPieceSize / unitSize - before, u'a');
                text += sample;
                text += u"b\u6F22\n";
                expectSameInPieces(text, info, std::to_string(before) + " before");
            }
        }
    }
}

TEST(TextPieces, RandomTextsOfEveryRecord) {
    for (unsigned seed = 0; seed < 40; ++seed) {
        std::mt19937 random(seed);
        const std::u16string_view parts[] = {u"\n", u"\r\n", u"\r", u"\uFF76\uFF9E", u"\u3042"};
        std::u16string text;
        const size_t length = random() % 200'000;
        const unsigned longest = seed % 3 == 0 ? 150'000 : 90; // units of a line, about
        while (text.size() < length) {
            text.append(random() % longest, random() % 2 == 0 ? u'\u6F22' : u'a');
            text += parts[random() % std::size(parts)];
        }
        for (const OrvEncodingInfo info : kRecords)
            expectSameInPieces(text, info, "seed " + std::to_string(seed));
    }
}

TEST(TextPieces, BytesThatAreNoTextAndTextThatIsNoBytes) {
    const std::string good(3 * kPieceSize, '\n');
    for (const std::string& bytes : {std::string("\x81"), good + "\x81", "\x81" + good}) {
        TextReader reader(platform::bytesOf(bytes), {shiftjis, {}, false, {}});
        std::u16string piece;
        while (reader.read(piece)) {
        }
        EXPECT_TRUE(reader.hasFailed()) << bytes.size();
        EXPECT_FALSE(reader.read(piece)) << bytes.size();
    }
    TextReader unordered(platform::bytesOf("ab"), {utf16, OrvByteOrder::none, false, {}});
    std::u16string piece;
    EXPECT_FALSE(unordered.read(piece));
    EXPECT_TRUE(unordered.hasFailed());

    Bytes bytes;
    TextWriter writer({shiftjis, {}, true, {}}, bytes);
    EXPECT_TRUE(writer.write(u"a"));
    EXPECT_FALSE(writer.write(u"b\U0001F600"));
}

} // namespace
} // namespace zelmora
