// Half-width katakana to full-width. The full-width forms are the compatibility decompositions that
// the Unicode Character Database gives U+FF61 to U+FF9F; a letter and its sound mark become one.
#include "platform/text/block_scan.h"
#include "platform/text/diagnostic_log.h"
#include "textutil/text_utility_private.h"

#include <algorithm>

namespace zelmora {
namespace {

constexpr char16_t kVoicedMark = 0xFF9E;
constexpr char16_t kSemiVoicedMark = 0xFF9F;

} // namespace

OrvTextUtilityPrivate::KatakanaMap OrvTextUtilityPrivate::makeHalfToFullMap() {
    // From U+FF61 to U+FF9D, without a gap; the two sound marks have no entry.
    constexpr std::u16string_view kFull =
        u"。「」、・ヲァィゥェォャュョッーアイウエオカキクケコサシスセソタチツテトナニヌネノ"
        u"ハヒフヘホマミムメモヤユヨラリルレロワン";
    KatakanaMap map{};
    static_assert(kFull.size() == map.size() - 2);
    std::ranges::copy(kFull, map.begin());
    return map;
}

OrvTextUtilityPrivate::KatakanaMap OrvTextUtilityPrivate::makeHalfToFullDullnessMap() {
    KatakanaMap map{};
    const auto fill = [&](char16_t first, std::u16string_view full) {
        std::ranges::copy(full, map.begin() + (first - kFirstHalfwidth));
    };
    fill(u'ｳ', u"ヴ");
    fill(u'ｶ', u"ガギグゲゴザジズゼゾダヂヅデド");
    fill(u'ﾊ', u"バビブベボ");
    return map;
}

OrvTextUtilityPrivate::KatakanaMap OrvTextUtilityPrivate::makeHalfToFullSemiMap() {
    KatakanaMap map{};
    std::ranges::copy(std::u16string_view(u"パピプペポ"), map.begin() + (u'ﾊ' - kFirstHalfwidth));
    return map;
}

char16_t
OrvTextUtilityPrivate::convertHalfwidthToFullwidthKatakana(char16_t unit, char16_t nextChar,
                                                           uint64_t& numOfCharsBeReplaced) const {
    numOfCharsBeReplaced = 0;
    if (!isHalfwidthKatakana(unit))
        return unit;
    const bool isMarked = nextChar == kVoicedMark || nextChar == kSemiVoicedMark;
    if (isMarked && lookUp(_halfToFullDullnessMap, unit) != 0) {
        const char16_t joined =
            lookUp(nextChar == kVoicedMark ? _halfToFullDullnessMap : _halfToFullSemiMap, unit);
        if (joined != 0) {
            numOfCharsBeReplaced = 2;
            return joined;
        }
        platform::platformLog("error");
    }
    numOfCharsBeReplaced = 1;
    const char16_t full = lookUp(_halfToFullMap, unit);
    return full != 0 ? full : unit;
}

void OrvTextUtilityPrivate::convertHalfToFullKatakanaOfString(std::u16string& text) const {
    const size_t length = text.size();
    char16_t* const units = text.data();
    size_t in = platform::findFirstUnit(units, length, [](char16_t unit) {
        return (unit >= kFirstHalfwidth) & (unit <= kLastHalfwidth);
    });
    size_t out = in;
    while (in < length) {
        uint64_t replaced = 0; // behind the last unit stands the string's own zero
        units[out++] = convertHalfwidthToFullwidthKatakana(units[in], units[in + 1], replaced);
        in += std::max<uint64_t>(replaced, 1);
    }
    text.resize(out);
}

} // namespace zelmora
