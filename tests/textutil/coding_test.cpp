#include "textutil/text_utility_private.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

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

std::string nameOf(OrvEncodingInfo info) {
    return "encoding " + std::to_string(static_cast<int>(info.encoding)) + ", order " +
           std::to_string(static_cast<int>(info.byteOrder)) + (info.hasBOM ? ", mark" : "") +
           ", mapping " + std::to_string(static_cast<int>(info.characterMapping));
}

std::string encoded(std::u16string_view text, OrvEncodingInfo info) {
    const auto data = OrvTextUtilityPrivate().dataWithString(text, info);
    return data ? std::string(platform::charsOf(*data)) : "nothing";
}

std::optional<std::u16string> decoded(std::string_view bytes, OrvEncodingInfo info) {
    return OrvTextUtilityPrivate().stringWithData(bytesOf(bytes), info);
}

TEST(Coding, BytesAndMarksOfEveryRecord) {
    const struct {
        OrvEncodingInfo info;
        std::u16string_view text;
        std::string_view mark;
        std::string_view bytes;
    } cases[] = {
        {{shiftjis, kNoOrder, true, kMac}, u"Aあ", "", "A\x82\xA0"},
        {{shiftjis, kNoOrder, true, kWindows}, u"Aあ", "", "A\x82\xA0"},
        {{jis, kNoOrder, true}, u"Aあ", "", "A\x1B$B$\"\x1B(B"},
        {{eucjp, kNoOrder, true}, u"Aあ", "", "A\xA4\xA2"},
        {{utf8, kNoOrder, true}, u"Aあ", "\xEF\xBB\xBF", "A\xE3\x81\x82"},
        {{utf8, bigEndian, true}, u"Aあ", "\xEF\xBB\xBF", "A\xE3\x81\x82"},
        {{utf16, littleEndian, true}, u"Aあ", "\xFF\xFE", "A\0B0"sv},
        {{utf16, bigEndian, true}, u"Aあ", "\xFE\xFF", "\0A0B"sv},
        {{utf32, littleEndian, true}, u"Aあ", "\xFF\xFE\0\0"sv, "A\0\0\0B0\0\0"sv},
        {{utf32, bigEndian, true},
         u"Aあ",
         "\0\0\xFE\xFF"sv,
         "\0\0\0A\0\0"
         "0B"sv},
        {{none, kNoOrder, true}, u"Aé", "", "A\x8E"},
        {{OrvEncoding{7}, kNoOrder, true}, u"Aé", "", "A\x8E"},
        {{OrvEncoding{-1}, kNoOrder, true}, u"Aé", "", "A\x8E"},
        {{utf8, kNoOrder, true}, u"", "\xEF\xBB\xBF", ""},
        {{utf16, bigEndian, true}, u"\uFEFF", "\xFE\xFF", "\xFE\xFF"}, // a character, not the mark
        // The two mappings agree on JIS X 0208 and differ on what vendors added.
        {{shiftjis, kNoOrder, false, kMac}, u"①", "", "\x85\x40"},
        {{shiftjis, kNoOrder, false, kWindows}, u"①", "", "\x87\x40"},
        {{shiftjis, kNoOrder, false, OrvCharacterMapping{9}}, u"①", "", "\x85\x40"},
    };
    for (const auto& testCase : cases) {
        const std::string whole = std::string(testCase.mark) + std::string(testCase.bytes);
        OrvEncodingInfo info = testCase.info;
        EXPECT_EQ(encoded(testCase.text, info), whole) << nameOf(info);
        EXPECT_EQ(decoded(whole, info), testCase.text) << nameOf(info);
        info.hasBOM = false;
        EXPECT_EQ(encoded(testCase.text, info), testCase.bytes) << nameOf(info);
        const std::u16string_view mark = testCase.mark.empty() ? u"" : u"\uFEFF";
        EXPECT_EQ(decoded(whole, info), std::u16string(mark) + std::u16string(testCase.text))
            << nameOf(info);
    }
}

TEST(Coding, WithoutByteOrderNothingIsDecodedAndMacintoshRomanIsWritten) {
    for (const OrvEncoding encoding : {utf16, utf32}) {
        for (const int order : {0, 3, -1}) {
            const OrvEncodingInfo info = {encoding, OrvByteOrder{order}, true, kMac};
            EXPECT_EQ(decoded("\0A\0\0"sv, info), std::nullopt) << nameOf(info);
            EXPECT_EQ(encoded(u"Aé", info), "A\x8E") << nameOf(info);
        }
    }
}

TEST(Coding, WhatCannotBeDecodedIsNoText) {
    const struct {
        std::string_view bytes;
        OrvEncodingInfo info;
    } cases[] = {
        {"\x81", {shiftjis, kNoOrder, false, kMac}},
        {"\x81", {shiftjis, kNoOrder, false, kWindows}},
        {"\x1B$B0", {jis, kNoOrder, false, kMac}},
        {"\xA4", {eucjp, kNoOrder, false, kMac}},
        {"\xE3\x81", {utf8, kNoOrder, false, kMac}},
        {"A\0B"sv, {utf16, littleEndian, false, kMac}},
        {"\0\0\0"sv, {utf32, bigEndian, false, kMac}},
    };
    for (const auto& testCase : cases)
        EXPECT_EQ(decoded(testCase.bytes, testCase.info), std::nullopt) << nameOf(testCase.info);
    const OrvTextUtilityPrivate utility;
    EXPECT_EQ(utility.stringWithData(std::nullopt, {utf8, kNoOrder, false, kMac}), std::nullopt);
    EXPECT_EQ(utility.dataWithString(std::nullopt, {utf8, kNoOrder, true, kMac}), std::nullopt);
    EXPECT_EQ(utility.encodingInfoOfTextData(std::nullopt), OrvEncodingInfo{});
    EXPECT_EQ(decoded("\xEF\xBB", {utf8, kNoOrder, true, kMac}), u""); // shorter than its mark
}

TEST(Coding, WhatCannotBeEncodedIsAlteredAndTheRestKept) {
    for (const OrvEncoding encoding : {none, shiftjis, jis, eucjp}) {
        for (const OrvCharacterMapping mapping : {kMac, kWindows}) {
            const OrvEncodingInfo info = {encoding, kNoOrder, false, mapping};
            EXPECT_EQ(encoded(u"a\U0001F600z", info), "a?z") << nameOf(info);
        }
    }
    EXPECT_EQ(encoded(u"a\xD800z", {utf8, kNoOrder, true, kMac}), "\xEF\xBB\xBF"
                                                                  "a?z");
}

std::vector<OrvEncodingInfo> everyJapaneseRecord() {
    std::vector<OrvEncodingInfo> records = {{shiftjis, kNoOrder, false, kMac},
                                            {shiftjis, kNoOrder, false, kWindows},
                                            {jis, kNoOrder, false, kMac},
                                            {eucjp, kNoOrder, false, kMac}};
    for (const bool mark : {false, true}) {
        records.push_back({utf8, kNoOrder, mark, kMac});
        for (const OrvEncoding encoding : {utf16, utf32}) {
            for (const OrvByteOrder order : {littleEndian, bigEndian})
                records.push_back({encoding, order, mark, kMac});
        }
    }
    return records;
}

// Each file is written, detected, read, given new line breaks, written as the next kind, and read
// again: what the converter does with it, twice.
TEST(Coding, EveryRecordAndLineBreakToEveryOther) {
    const OrvTextUtilityPrivate utility;
    const auto isUnicode = [](OrvEncodingInfo info) { return info.encoding >= utf8; };
    const auto textWith = [&](OrvLineBreak kind) {
        const std::u16string lineBreak = *utility.lineBreakString(kind);
        return u"漢字とカナ、ABC 123。" + lineBreak + lineBreak + u"「二行目」" + lineBreak;
    };
    const auto reread = [&](const platform::Bytes& data, OrvEncodingInfo written) {
        OrvEncodingInfo info = utility.encodingInfoOfTextData(data);
        info.characterMapping = written.characterMapping;
        EXPECT_EQ(nameOf(info), nameOf(written)) << "not what was written";
        return utility.stringWithData(data, info).value_or(u"no text");
    };
    using enum OrvLineBreak;
    for (const OrvEncodingInfo& source : everyJapaneseRecord()) {
        for (const OrvEncodingInfo& target : everyJapaneseRecord()) {
            for (const OrvLineBreak from : {lf, cr, crlf, ls}) {
                for (const OrvLineBreak to : {lf, cr, crlf, ls}) {
                    // Only the Unicode encodings hold U+2028.
                    if ((from == ls && !isUnicode(source)) || (to == ls && !isUnicode(target)))
                        continue;
                    SCOPED_TRACE(nameOf(source) + " to " + nameOf(target));
                    auto text = reread(*utility.dataWithString(textWith(from), source), source);
                    ASSERT_EQ(utility.lineBreakTypeOfString(text), from);
                    utility.convertLineBreakOfString(text, from, to);
                    ASSERT_EQ(reread(*utility.dataWithString(text, target), target), textWith(to));
                }
            }
        }
    }
}

} // namespace
} // namespace zelmora
