// Text-encoding conversion: bytes to UTF-16 text and back.
//
// Every function here is stateless and safe on any thread. All are linear in their input and
// allocate their result, nothing per character.
#pragma once

#include "platform/text/alterations.h"
#include "platform/text/bytes.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zelmora::platform {

/// The encodings that files are read from and written to. UTF-16 and UTF-32 come in explicit byte
/// order only; no encoding reads, skips or writes a byte-order mark of its own (U+FEFF is a
/// character like any other).
enum class TextEncoding : int32_t {
    macJapanese, ///< Shift_JIS as the Macintosh maps it, sequences included
    codePage932, ///< Shift_JIS as Windows maps it
    iso2022JP,   ///< escape-switched; written so that the text ends in ASCII; see iso_2022_jp.cpp
    eucJP,       ///< JIS X 0208, half-width katakana (8E), JIS X 0212 (8F), vendors' extensions
    utf8,
    utf16LE,
    utf16BE,
    utf32LE,
    utf32BE,
    macOSRoman,
};

/// Decodes all of `bytes`. Answers nullopt when any part of them is not valid in `encoding`:
/// unassigned or truncated codes, for UTF-8 overlong forms, surrogates and code points beyond
/// U+10FFFF, for UTF-16 an odd length or a lone surrogate, likewise for UTF-32. Mac OS Roman
/// accepts every byte. Empty input gives empty text.
[[nodiscard]] std::optional<std::u16string> decodeText(ByteView bytes, TextEncoding encoding);

/// Encodes all of `text` exactly. Answers nullopt when any character of it, a lone surrogate
/// included, has no form in `encoding`. Empty text gives no bytes.
[[nodiscard]] std::optional<Bytes> encodeText(std::u16string_view text, TextEncoding encoding);

/// Encodes all of `text` and never fails: a character that `encoding` cannot hold is altered, by
/// the first of these that can be encoded: its twin of a wave-dash pair (U+301C/FF5E and the
/// like); its canonical composition with the marks that follow; its compatibility decomposition;
/// its base letter, so that a mark on another character is left out; "?". A lone surrogate becomes
/// "?" in every encoding. Half-width katakana stay what they are: all encodings that have katakana
/// hold them. Characters that `encoding` holds come out as encodeText writes them, but for letters
/// that composition takes up. Every character that reads differently afterwards is added to
/// `alterations`; a letter composed with its marks is the same character.
[[nodiscard]] Bytes encodeTextLossy(std::u16string_view text, TextEncoding encoding,
                                    Alterations& alterations);

} // namespace zelmora::platform
