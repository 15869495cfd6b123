// What the user is told when a file's new encoding could not hold all of its characters.
#pragma once

#include "platform/text/alterations.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zelmora {

/// A character that could not be kept.
struct LostCharacter {
    uint64_t line;   ///< in the text as it was encoded, from 1
    uint64_t column; ///< in characters, from 1
    char32_t codePoint;
    std::string written; ///< what stands there now, UTF-8; empty: nothing
};

/// The characters that one converted file lost.
struct LostCharacters {
    std::string path;                  ///< the source's, raw bytes
    uint64_t count = 0;                ///< of all
    std::vector<LostCharacter> listed; ///< the first of them; see platform::Alterations
};

/// "U+" and the code point in four to six hexadecimal digits.
[[nodiscard]] std::string codePointName(char32_t codePoint);

/// Where in `text`, which was encoded, each of `alterations` stands.
[[nodiscard]] LostCharacters lostCharacters(const std::string& path, std::u16string_view text,
                                            const platform::Alterations& alterations);

} // namespace zelmora
