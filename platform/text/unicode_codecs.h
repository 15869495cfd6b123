// UTF-8, UTF-16 and UTF-32, to UTF-16 text and back, exactly or not at all.
//
// U+FEFF is a character like any other: none of these reads, skips or writes a byte-order mark.
#pragma once

#include "platform/text/text_coders.h"

#include <cstddef>
#include <memory>
#include <string_view>

namespace zelmora::platform {

/// Rejects overlong forms, surrogates, code points beyond U+10FFFF, broken and cut off sequences.
std::unique_ptr<TextDecoder> makeUTF8Decoder();
/// Rejects an odd number of bytes and lone surrogates.
std::unique_ptr<TextDecoder> makeUTF16Decoder(bool littleEndian);
/// Rejects a number of bytes that is no multiple of four, surrogates and values beyond U+10FFFF.
std::unique_ptr<TextDecoder> makeUTF32Decoder(bool littleEndian);

/// All that these cannot encode is a lone surrogate.
std::unique_ptr<TextEncoder> makeUTF8Encoder();
std::unique_ptr<TextEncoder> makeUTF16Encoder(bool littleEndian);
std::unique_ptr<TextEncoder> makeUTF32Encoder(bool littleEndian);

/// The number of bytes of the valid UTF-8 sequence at the start of `bytes`, 1 to 4; 0 when they
/// start with none.
[[nodiscard]] size_t utf8SequenceLength(ByteView bytes);

inline bool isHighSurrogate(char16_t unit) {
    return (unit & 0xFC00) == 0xD800;
}
inline bool isLowSurrogate(char16_t unit) {
    return (unit & 0xFC00) == 0xDC00;
}
inline bool isSurrogate(char16_t unit) {
    return (unit & 0xF800) == 0xD800;
}

/// REQUIRES: a high surrogate and a low one.
inline char32_t codePointOfPair(char16_t high, char16_t low) {
    return 0x10000 + ((high & 0x3FFu) << 10) + (low & 0x3FFu);
}

/// Writes one unit, or the pair that `codePoint` is beyond the basic plane. REQUIRES: it is none
/// beyond U+10FFFF.
inline void writeUnits(char32_t codePoint, char16_t*& out) {
    if (codePoint >= 0x10000) {
        *out++ = static_cast<char16_t>(0xD7C0 + (codePoint >> 10));
        codePoint = 0xDC00 | (codePoint & 0x3FF);
    }
    *out++ = static_cast<char16_t>(codePoint);
}

/// The offset of the first lone surrogate in `text` at or after `from`, `text.size()` when there is
/// none. REQUIRES: `from` does not split a pair.
[[nodiscard]] size_t findLoneSurrogate(std::u16string_view text, size_t from = 0);

} // namespace zelmora::platform
