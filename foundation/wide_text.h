// Plain functions on texts of 32-bit characters, under the library's objects. They are the same in
// every locale. Those that answer a container throw std::bad_alloc, as it does.
#pragma once

#include <cstdarg>
#include <span>
#include <string>
#include <string_view>

namespace zelmora {

static_assert(sizeof(wchar_t) == 4, "a library character is one code point");

/// One character for each code point of `text`; a lone surrogate stands for itself.
[[nodiscard]] std::wstring wideFromUTF16(std::u16string_view text);

/// The inverse of wideFromUTF16, for any UTF-16. What is no code point (beyond 10FFFF) becomes
/// U+FFFD.
[[nodiscard]] std::u16string utf16FromWide(std::wstring_view text);

/// Bytes of the longest UTF-8 sequence.
inline constexpr size_t longestUTF8 = 4;

/// Writes `character` as UTF-8 to `out`, which has room for `longestUTF8` bytes, and answers the
/// end of what it wrote. A surrogate or what is no code point becomes U+FFFD.
char* putUTF8(wchar_t character, char* out) noexcept;

[[nodiscard]] std::string utf8FromWide(std::wstring_view text);

/// Formats as vswprintf does, "%ls" and "%C" without a look at the locale. A result that does not
/// fit is cut to one character less than `buffer` holds; `buffer` always ends in a NUL.
void formatWide(std::span<wchar_t> buffer, const wchar_t* format, va_list arguments) noexcept;

/// White space of the "C" locale: U+0009 to U+000D and U+0020.
[[nodiscard]] constexpr bool isSpace(wchar_t character) noexcept {
    return character == L' ' || (character >= L'\t' && character <= L'\r');
}

/// `text` without the white space at both ends; valid as long as `text`'s buffer.
[[nodiscard]] std::wstring_view trimmed(std::wstring_view text) noexcept;

/// ASCII a to z become A to Z; every other character stays.
[[nodiscard]] constexpr wchar_t uppercase(wchar_t character) noexcept {
    return character >= L'a' && character <= L'z' ? character - L'a' + L'A' : character;
}

/// `text` up to its first NUL.
[[nodiscard]] std::wstring_view upToNUL(std::wstring_view text) noexcept;

/// -1, 0 or 1 by the first difference between the upper-case forms of both texts up to their first
/// NUL.
[[nodiscard]] int compareCaseInsensitive(std::wstring_view left, std::wstring_view right) noexcept;

} // namespace zelmora
