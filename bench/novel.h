// Japanese prose to measure with: every table entry and branch is met about as often as in a novel,
// and no short piece repeats, so that neither caches nor branch predictors learn the text by heart.
#pragma once

#include "platform/text/text_encoding.h"

#include <cstdint>
#include <random>
#include <string>

namespace zelmora {

/// The 2,965 kanji of JIS X 0208's first level.
inline std::u16string commonKanji() {
    platform::Bytes codes;
    for (int row = 0xB0; row <= 0xCF; ++row)
        for (int cell = 0xA1; cell <= (row == 0xCF ? 0xD3 : 0xFE); ++cell) {
            codes.push_back(static_cast<std::byte>(row));
            codes.push_back(static_cast<std::byte>(cell));
        }
    return platform::decodeText(codes, platform::TextEncoding::eucJP).value();
}

/// At least `length` units of prose, the same in every run: lines of 20 to 59 characters that end
/// in `lineBreak`, half hiragana, a third kanji with few of them frequent, some katakana and marks.
inline std::u16string makeNovel(size_t length, std::u16string_view lineBreak) {
    std::mt19937 random(20'230'610);
    const auto below = [&random](uint32_t limit) {
        return static_cast<uint32_t>(uint64_t{random()} * limit >> 32);
    };
    const std::u16string kanji = commonKanji();
    std::u16string text;
    text.reserve(length + 64);
    while (text.size() < length) {
        text += u'\u3000';
        for (uint32_t left = 18 + below(40); left > 0; --left) {
            const uint32_t kind = below(100);
            if (kind < 52)
                text += static_cast<char16_t>(0x3042 + below(82));
            else if (kind < 84)
                text += kanji[uint64_t{below(54)} * below(54)];
            else if (kind < 92)
                text += static_cast<char16_t>(0x30A2 + below(82));
            else if (kind < 97)
                text += u"、。「」ー・…？"[below(8)];
            else
                text += static_cast<char16_t>(u'0' + below(75));
        }
        text += u'。';
        text += lineBreak;
    }
    return text;
}

} // namespace zelmora
