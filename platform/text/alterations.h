// What a text loses when an encoding cannot hold all of its characters.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace zelmora::platform {

/// A character that could not be kept, and what was written in its place.
struct AlteredCharacter {
    size_t offset;          ///< of its first unit in the text that was encoded
    char32_t codePoint;     ///< a lone surrogate as it is
    std::u16string written; ///< empty: it was left out
};

/// All that one text lost: the number is exact, the list stops at a limit, since a text can be
/// nothing but such characters.
struct Alterations {
    static constexpr size_t kMostListed = 100'000;

    uint64_t count = 0;
    std::vector<AlteredCharacter> listed; ///< the first ones, in the text's order

    void add(size_t offset, char32_t codePoint, std::u16string_view written) {
        ++count;
        if (listed.size() < kMostListed)
            listed.push_back({offset, codePoint, std::u16string(written)});
    }
};

} // namespace zelmora::platform
