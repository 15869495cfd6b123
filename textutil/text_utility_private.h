// The text utility that does the work.
#pragma once

#include "textutil/text_utility.h"

#include <array>
#include <cstdint>

namespace zelmora {

/// Made by OrvTextUtility::instance. Immutable, so safe on any thread.
class OrvTextUtilityPrivate final : public OrvTextUtility {
  public:
    [[nodiscard]] OrvLineBreak lineBreakTypeOfString(std::u16string_view text) const override;
    [[nodiscard]] OrvEncodingInfo
    encodingInfoOfTextData(std::optional<platform::ByteView> data) const override;
    [[nodiscard]] std::optional<std::u16string>
    stringWithData(std::optional<platform::ByteView> data,
                   OrvEncodingInfo encodingInfo) const override;
    void convertLineBreakOfString(std::u16string& text, OrvLineBreak from,
                                  OrvLineBreak to) const override;
    [[nodiscard]] std::optional<platform::Bytes>
    dataWithString(std::optional<std::u16string_view> text,
                   OrvEncodingInfo encodingInfo) const override;
    [[nodiscard]] std::optional<platform::Bytes>
    dataWithString(std::optional<std::u16string_view> text, OrvEncodingInfo encodingInfo,
                   platform::Alterations& alterations) const override;
    void convertHalfToFullKatakanaOfString(std::u16string& text) const override;

    /// The characters of a line break; nullopt for a kind outside 1 to 4.
    [[nodiscard]] std::optional<std::u16string> lineBreakString(OrvLineBreak kind) const;

    /// U+FF61 to U+FF9F: punctuation, letters and the two sound marks.
    [[nodiscard]] static bool isHalfwidthKatakana(char16_t unit) {
        return unit >= kFirstHalfwidth && unit <= kLastHalfwidth;
    }

    /// The unit to write for `unit`, before `nextChar` (0 at the end of the text), and how many
    /// units it replaces: 0 for a unit that is no half-width katakana, 2 for a letter with its
    /// sound mark. A letter before a mark that it cannot take is reported to the platform's log.
    [[nodiscard]] char16_t
    convertHalfwidthToFullwidthKatakana(char16_t unit, char16_t nextChar,
                                        uint64_t& numOfCharsBeReplaced) const;

  private:
    static constexpr char16_t kFirstHalfwidth = 0xFF61;
    static constexpr char16_t kLastHalfwidth = 0xFF9F;

    /// Full-width units by half-width ones, U+FF61 first; 0 where there is none.
    using KatakanaMap = std::array<char16_t, kLastHalfwidth - kFirstHalfwidth + 1>;

    static KatakanaMap makeHalfToFullMap();
    static KatakanaMap makeHalfToFullDullnessMap();
    static KatakanaMap makeHalfToFullSemiMap();
    static char16_t lookUp(const KatakanaMap& map, char16_t unit) {
        return map[unit - kFirstHalfwidth];
    }

    const KatakanaMap _halfToFullMap = makeHalfToFullMap();
    const KatakanaMap _halfToFullDullnessMap = makeHalfToFullDullnessMap(); ///< before U+FF9E
    const KatakanaMap _halfToFullSemiMap = makeHalfToFullSemiMap();         ///< before U+FF9F
};

} // namespace zelmora
