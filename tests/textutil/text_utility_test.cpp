// Line breaks, katakana and places in a text, and the one object that knows about them.
#include "textutil/text_utility_private.h"

#include "platform/events/notification_center.h"
#include "textutil/text_position.h"

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <thread>

namespace zelmora {
namespace {

using enum OrvLineBreak;

TEST(TextUtility, OneObjectFromFirstUseToTermination) {
    std::array<std::shared_ptr<OrvTextUtility>, 4> seen;
    {
        std::vector<std::jthread> threads;
        for (auto& utility : seen)
            threads.emplace_back([&utility] { utility = OrvTextUtility::instance(); });
    }
    for (const auto& utility : seen)
        EXPECT_EQ(utility, seen[0]);
    const std::weak_ptr<OrvTextUtility> watcher = seen[0];
    seen.fill(nullptr);
    EXPECT_FALSE(watcher.expired());
    platform::NotificationCenter::defaultCenter().post(
        platform::applicationWillTerminateNotification);
    EXPECT_TRUE(watcher.expired());
}

TEST(LineBreaks, TheFirstOneDecides) {
    const std::pair<std::u16string, OrvLineBreak> cases[] = {
        {u"a\u2029\u0085\v\f\u2027\u0A0D\u0D0Ab", OrvLineBreak::none},
        {u"\r", cr},
        {u"a\r\nb", crlf},
        {u"a\nb\r\n", lf},
        {u"\u2028\n", ls},
        {u"\n\r", lf},
    };
    for (const auto& [text, kind] : cases) {
        for (size_t before = 0; before <= 33; ++before) // across the fast search's blocks
            EXPECT_EQ(
                OrvTextUtilityPrivate().lineBreakTypeOfString(std::u16string(before, u'あ') + text),
                kind)
                << &text << ", " << before << " before";
    }
}

/// Search and replace, occurrence by occurrence.
std::u16string plainlyConverted(std::u16string text, std::u16string_view from,
                                std::u16string_view to) {
    for (size_t at = 0; (at = text.find(from, at)) != text.npos; at += to.size())
        text.replace(at, from.size(), to);
    return text;
}

TEST(LineBreaks, AreSearchedAndReplaced) {
    const OrvTextUtilityPrivate utility;
    const std::pair<OrvLineBreak, std::u16string_view> kinds[] = {
        {lf, u"\n"}, {cr, u"\r"}, {crlf, u"\r\n"}, {ls, u"\u2028"}};
    for (unsigned seed = 0; seed < 2000; ++seed) {
        std::mt19937 random(seed);
        std::u16string text(random() % 80, u'x');
        for (char16_t& unit : text)
            unit = u"\r\n\u2028a」\u0D0A"[random() % 6]; // some halves of units are CR, too
        for (const auto& [from, old] : kinds) {
            EXPECT_EQ(utility.lineBreakString(from), old);
            for (const auto& [to, replacement] : kinds) {
                std::u16string converted = text;
                utility.convertLineBreakOfString(converted, from, to);
                ASSERT_EQ(converted, plainlyConverted(text, old, replacement))
                    << "seed " << seed << ", " << static_cast<int>(from) << " to "
                    << static_cast<int>(to);
            }
        }
    }
    for (const int kind : {-1, 0, 5})
        EXPECT_EQ(utility.lineBreakString(OrvLineBreak{kind}), std::nullopt) << kind;
}

// What a keyboard's half-width row and full-width row show, key by key.
constexpr std::u16string_view kHalf =
    u"｡｢｣､･ｦｧｨｩｪｫｬｭｮｯｰｱｲｳｴｵｶｷｸｹｺｻｼｽｾｿﾀﾁﾂﾃﾄﾅﾆﾇﾈﾉﾊﾋﾌﾍﾎﾏﾐﾑﾒﾓﾔﾕﾖﾗﾘﾙﾚﾛﾜﾝﾞﾟ";
constexpr std::u16string_view kFull =
    u"。「」、・ヲァィゥェォャュョッーアイウエオカキクケコサシスセソタチツテトナニヌネノ"
    u"ハヒフヘホマミムメモヤユヨラリルレロワンﾞﾟ";
constexpr std::u16string_view kVoiceable = u"ｳｶｷｸｹｺｻｼｽｾｿﾀﾁﾂﾃﾄﾊﾋﾌﾍﾎ";
constexpr std::u16string_view kVoiced = u"ヴガギグゲゴザジズゼゾダヂヅデドバビブベボ";
constexpr std::u16string_view kSemiVoiced = u"パピプペポ"; // of the last five

TEST(Katakana, EveryUnitBeforeEverything) {
    for (size_t i = 0; i < kHalf.size(); ++i) {
        const char16_t half = kHalf[i];
        const std::u16string full(1, kFull[i]);
        const size_t voiceable = kVoiceable.find(half);
        const bool isVoiceable = voiceable != kVoiceable.npos;
        const bool isSemiVoiceable = isVoiceable && voiceable >= kVoiceable.size() - 5;
        const std::pair<std::u16string, std::u16string> cases[] = {
            {u"", full},
            {u"x", full + u"x"},
            {u"ｱ", full + u"ア"},
            {u"ﾞ", isVoiceable ? std::u16string(1, kVoiced[voiceable]) : full + u"ﾞ"},
            {u"ﾟ", isSemiVoiceable
                       ? std::u16string(1, kSemiVoiced[voiceable + 5 - kVoiceable.size()])
                       : full + u"ﾟ"},
        };
        for (const auto& [after, expected] : cases) {
            for (const std::u16string before : {u"", u"漢", u"ｶﾞ"}) {
                std::u16string text = before + half + after;
                OrvTextUtilityPrivate().convertHalfToFullKatakanaOfString(text);
                EXPECT_EQ(text, (before == u"ｶﾞ" ? u"ガ" : before) + expected) << i;
            }
        }
    }
}

TEST(Katakana, OtherTextStaysWhereItIs) {
    const std::u16string original =
        std::u16string(40, u'x') + u"カタカナ\u3099\uFF60\uFFA0ＡＢ\xD83D\xDE00";
    std::u16string text = original;
    const char16_t* const units = text.data();
    OrvTextUtilityPrivate().convertHalfToFullKatakanaOfString(text);
    EXPECT_EQ(text, original);
    EXPECT_EQ(text.data(), units);
}

TEST(TextPosition, CountsLinesAndCharacters) {
    // Every kind of line break, an empty line, and a character of two units.
    const std::u16string text = u"a\nb\r\r\nc\u2028\xD83D\xDE00!\r";
    using Place = std::pair<uint64_t, uint64_t>;
    const std::pair<size_t, Place> places[] = {
        {0, {1, 1}}, {1, {1, 2}}, {2, {2, 1}},  {4, {3, 1}},  {6, {4, 1}},
        {7, {4, 2}}, {8, {5, 1}}, {10, {5, 2}}, {11, {5, 3}}, {12, {6, 1}},
    };
    TextPosition step(text);
    for (const auto& [offset, place] : places) {
        TextPosition leap(text);
        leap.advanceTo(offset);
        step.advanceTo(offset);
        EXPECT_EQ(Place(leap.line(), leap.column()), place) << offset;
        EXPECT_EQ(Place(step.line(), step.column()), place) << offset;
    }
}

} // namespace
} // namespace zelmora
