#include "textutil/text_utility_private.h"

#include <gtest/gtest.h>

#include <map>

namespace zelmora {
namespace {

// What a keyboard's half-width row and full-width row show, key by key.
constexpr std::u16string_view kHalf =
    u"｡｢｣､･ｦｧｨｩｪｫｬｭｮｯｰｱｲｳｴｵｶｷｸｹｺｻｼｽｾｿﾀﾁﾂﾃﾄﾅﾆﾇﾈﾉﾊﾋﾌﾍﾎﾏﾐﾑﾒﾓﾔﾕﾖﾗﾘﾙﾚﾛﾜﾝﾞﾟ";
constexpr std::u16string_view kFull =
    u"。「」、・ヲァィゥェォャュョッーアイウエオカキクケコサシスセソタチツテトナニヌネノ"
    u"ハヒフヘホマミムメモヤユヨラリルレロワンﾞﾟ";
const std::map<char16_t, char16_t> kVoiced = {
    {u'ｳ', u'ヴ'}, {u'ｶ', u'ガ'}, {u'ｷ', u'ギ'}, {u'ｸ', u'グ'}, {u'ｹ', u'ゲ'}, {u'ｺ', u'ゴ'},
    {u'ｻ', u'ザ'}, {u'ｼ', u'ジ'}, {u'ｽ', u'ズ'}, {u'ｾ', u'ゼ'}, {u'ｿ', u'ゾ'}, {u'ﾀ', u'ダ'},
    {u'ﾁ', u'ヂ'}, {u'ﾂ', u'ヅ'}, {u'ﾃ', u'デ'}, {u'ﾄ', u'ド'}, {u'ﾊ', u'バ'}, {u'ﾋ', u'ビ'},
    {u'ﾌ', u'ブ'}, {u'ﾍ', u'ベ'}, {u'ﾎ', u'ボ'}};
const std::map<char16_t, char16_t> kSemiVoiced = {
    {u'ﾊ', u'パ'}, {u'ﾋ', u'ピ'}, {u'ﾌ', u'プ'}, {u'ﾍ', u'ペ'}, {u'ﾎ', u'ポ'}};

/// Converts `text` in place and answers what was written to the diagnostic log meanwhile.
std::string convert(std::u16string& text) {
    testing::internal::CaptureStderr();
    OrvTextUtilityPrivate().convertHalfToFullKatakanaOfString(text);
    return testing::internal::GetCapturedStderr();
}

TEST(Katakana, EveryUnitBeforeEverything) {
    ASSERT_EQ(kHalf.size(), 63u);
    ASSERT_EQ(kFull.size(), 63u);
    for (size_t i = 0; i < kHalf.size(); ++i) {
        const char16_t half = kHalf[i];
        ASSERT_EQ(half, 0xFF61 + i);
        const std::u16string full(1, kFull[i]);
        const bool voiced = kVoiced.contains(half);
        const bool semiVoiced = kSemiVoiced.contains(half);
        const struct {
            std::u16string after;
            std::u16string expected;
            std::string logged;
        } cases[] = {
            {u"", full, ""},
            {u"x", full + u"x", ""},
            {u"ｱ", full + u"ア", ""},
            {u"ﾞ", voiced ? std::u16string(1, kVoiced.at(half)) : full + u"ﾞ", ""},
            {u"ﾟ", semiVoiced ? std::u16string(1, kSemiVoiced.at(half)) : full + u"ﾟ",
             voiced && !semiVoiced ? "error\n" : ""},
        };
        for (const auto& testCase : cases) {
            for (const std::u16string before : {u"", u"漢", u"ｶﾞ"}) {
                std::u16string text = before + std::u16string(1, half) + testCase.after;
                const std::string logged = convert(text);
                EXPECT_EQ(text, (before == u"ｶﾞ" ? u"ガ" : before) + testCase.expected)
                    << std::hex << int{half} << ", case " << &testCase - cases;
                EXPECT_EQ(logged, testCase.logged) << std::hex << int{half};
            }
        }
    }
}

TEST(Katakana, OtherTextStaysWhereItIs) {
    const std::u16string original =
        std::u16string(40, u'x') + u"カタカナ\u3099\uFF60\uFFA0ＡＢ\xD83D\xDE00";
    std::u16string text = original;
    const char16_t* const units = text.data();
    EXPECT_EQ(convert(text), "");
    EXPECT_EQ(text, original);
    EXPECT_EQ(text.data(), units);
}

TEST(Katakana, MarksAfterMarksStay) {
    std::u16string text = u"ｶﾞﾞﾊﾟﾟﾞxｶ";
    convert(text);
    EXPECT_EQ(text, u"ガﾞパﾟﾞxカ");
}

TEST(Katakana, CountsWhatIsReplaced) {
    const OrvTextUtilityPrivate utility;
    const struct {
        char16_t unit;
        char16_t next;
        char16_t written;
        uint64_t count;
    } cases[] = {
        {u'A', u'ﾞ', u'A', 0},   {u'カ', u'ﾞ', u'カ', 0}, {u'ｶ', u'ﾞ', u'ガ', 2},
        {u'ｶ', u'\0', u'カ', 1}, {u'ﾜ', u'ﾞ', u'ワ', 1},  {u'ﾞ', u'ﾞ', u'ﾞ', 1},
    };
    for (const auto& testCase : cases) {
        uint64_t count = 99;
        EXPECT_EQ(utility.convertHalfwidthToFullwidthKatakana(testCase.unit, testCase.next, count),
                  testCase.written);
        EXPECT_EQ(count, testCase.count) << "case " << &testCase - cases;
    }
}

} // namespace
} // namespace zelmora
