#include "textutil/text_utility_private.h"

#include <gtest/gtest.h>

#include <string>

namespace zelmora {
namespace {

using namespace std::string_view_literals;
using platform::bytesOf;
using enum OrvEncoding;
using OrvByteOrder::bigEndian;
using OrvByteOrder::littleEndian;

constexpr auto kNoOrder = OrvByteOrder::none;
constexpr auto kMac = OrvCharacterMapping::mac;
constexpr auto kWindows = OrvCharacterMapping::windows;
const OrvTextUtilityPrivate utility;

std::string encoded(std::u16string_view text, OrvEncodingInfo info) {
    const auto data = utility.dataWithString(text, info);
    return data ? std::string(platform::charsOf(*data)) : "nothing";
}

std::optional<std::u16string> decoded(std::string_view bytes, OrvEncodingInfo info) {
    return utility.stringWithData(bytesOf(bytes), info);
}

TEST(Coding, BytesAndMarksOfEveryRecord) {
    const struct {
        OrvEncodingInfo info;
        std::u16string_view text;
        std::string_view mark, bytes;
    } cases[] = {
        {{shiftjis}, u"Aあ", "", "A\x82\xA0"},
        {{jis}, u"Aあ", "", "A\x1B$B$\"\x1B(B"},
        {{eucjp}, u"Aあ", "", "A\xA4\xA2"},
        {{utf8}, u"Aあ", "\xEF\xBB\xBF", "A\xE3\x81\x82"},
        {{utf16, littleEndian}, u"Aあ", "\xFF\xFE", "A\0B0"sv},
        {{utf16, bigEndian}, u"\uFEFFA", "\xFE\xFF", "\xFE\xFF\0A"sv}, // a character, not the mark
        {{utf32, littleEndian}, u"A", "\xFF\xFE\0\0"sv, "A\0\0\0"sv},
        {{utf32, bigEndian}, u"A", "\0\0\xFE\xFF"sv, "\0\0\0A"sv},
        {{none}, u"Aé", "", "A\x8E"},
        {{OrvEncoding{7}}, u"Aé", "", "A\x8E"},
        // The two mappings agree on JIS X 0208 and differ on what vendors added.
        {{shiftjis, kNoOrder, false, kMac}, u"①", "", "\x85\x40"},
        {{shiftjis, kNoOrder, false, kWindows}, u"①", "", "\x87\x40"},
    };
    for (const auto& [record, text, mark, bytes] : cases) {
        SCOPED_TRACE(testing::PrintToString(bytes));
        const std::string whole = std::string(mark) + std::string(bytes);
        OrvEncodingInfo marked = record;
        marked.hasBOM = true;
        EXPECT_EQ(encoded(text, marked), whole);
        EXPECT_EQ(decoded(whole, marked), text);
        EXPECT_EQ(encoded(text, record), bytes);
        EXPECT_EQ(decoded(whole, record),
                  std::u16string(mark.empty() ? u"" : u"\uFEFF") + std::u16string(text));
    }
}

TEST(Coding, WhatCannotBeDecodedIsNoText) {
    for (const OrvEncodingInfo info : {OrvEncodingInfo{shiftjis, kNoOrder, false, kWindows},
                                       {jis},
                                       {eucjp},
                                       {utf8},
                                       {utf16, littleEndian},
                                       {utf32, bigEndian}})
        EXPECT_EQ(decoded("A\x1B$B\xE0", info), std::nullopt) << static_cast<int>(info.encoding);
    EXPECT_EQ(decoded("\xEF\xBB", {utf8, kNoOrder, true}), u""); // shorter than its mark
    // Without a byte order nothing is decoded, and Macintosh Roman is written.
    for (const int order : {0, 3}) {
        for (const OrvEncoding encoding : {utf16, utf32}) {
            const OrvEncodingInfo info = {encoding, OrvByteOrder{order}, true};
            EXPECT_EQ(decoded("\0A\0\0"sv, info), std::nullopt) << static_cast<int>(info.encoding);
            EXPECT_EQ(encoded(u"Aé", info), "A\x8E") << static_cast<int>(info.encoding);
        }
    }
}

TEST(Coding, WhatCannotBeEncodedIsAlteredAndTheRestKept) {
    for (const OrvEncoding encoding : {none, shiftjis, jis, eucjp}) {
        for (const OrvCharacterMapping mapping : {kMac, kWindows})
            EXPECT_EQ(encoded(u"a\U0001F600z", {encoding, kNoOrder, false, mapping}), "a?z");
    }
    EXPECT_EQ(encoded(u"\xD800z", {utf8, kNoOrder, true}), "\xEF\xBB\xBF?z");
}

} // namespace
} // namespace zelmora
