// UTF-8, UTF-16 and UTF-32, to UTF-16 text and back, exactly or not at all.
//
// Every function is stateless, safe on any thread, linear, and allocates its result once. U+FEFF is
// a character like any other: none of these reads, skips or writes a byte-order mark.
#pragma once

#include "platform/text/bytes.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace zelmora::platform {

/// nullopt when `bytes` hold an overlong form, a surrogate, a code point beyond U+10FFFF, or a
/// sequence that is broken or cut off.
[[nodiscard]] std::optional<std::u16string> decodeUTF8(ByteView bytes);

/// nullopt when `bytes` are odd in number or hold a lone surrogate.
[[nodiscard]] std::optional<std::u16string> decodeUTF16(ByteView bytes, bool littleEndian);

/// nullopt when `bytes` are no multiple of four or hold a surrogate or a value beyond U+10FFFF.
[[nodiscard]] std::optional<std::u16string> decodeUTF32(ByteView bytes, bool littleEndian);

/// The three below answer nullopt when `text` holds a lone surrogate, and only then.
[[nodiscard]] std::optional<Bytes> encodeUTF8(std::u16string_view text);
[[nodiscard]] std::optional<Bytes> encodeUTF16(std::u16string_view text, bool littleEndian);
[[nodiscard]] std::optional<Bytes> encodeUTF32(std::u16string_view text, bool littleEndian);

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

/// The offset of the first lone surrogate in `text` at or after `from`, `text.size()` when there is
/// none. REQUIRES: `from` does not split a pair.
[[nodiscard]] size_t findLoneSurrogate(std::u16string_view text, size_t from = 0);

} // namespace zelmora::platform
