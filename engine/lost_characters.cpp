#include "engine/lost_characters.h"

#include "platform/text/utf8.h"
#include "textutil/text_position.h"

#include <array>
#include <cstdio>

namespace zelmora {

std::string codePointName(char32_t codePoint) {
    std::array<char, 16> name{};
    std::snprintf(name.data(), name.size(), "U+%04X", static_cast<unsigned>(codePoint));
    return name.data();
}

LostCharacters lostCharacters(const std::string& path, std::u16string_view text,
                              const platform::Alterations& alterations) {
    LostCharacters lost{.path = path, .count = alterations.count, .listed = {}};
    lost.listed.reserve(alterations.listed.size());
    TextPosition position(text);
    for (const auto& [offset, codePoint, written] : alterations.listed) {
        position.advanceTo(offset);
        lost.listed.push_back(
            {position.line(), position.column(), codePoint, platform::utf8FromUTF16(written)});
    }
    return lost;
}

} // namespace zelmora
