// Mutable strings of 32-bit characters, one for each code point; lengths and positions count them.
//
// Ownership, threads and failures: orv_base.h. White space and upper case are those of the "C"
// locale, whatever the process's locale is.
#pragma once

#include "foundation/orv_base.h"

#include <optional>
#include <string>
#include <string_view>

namespace zelmora {

/// Passed by value: the first character and the number of characters.
struct OrvRange {
    int32_t location;
    int32_t length;
};

/// A new string of the characters up to the NUL; empty for null.
[[nodiscard]] OrvIBase* OrvStringCreateWithWideCString(const wchar_t* characters) noexcept;
/// A new string of `count` characters, NULs included; empty, whatever `count` is, for null.
[[nodiscard]] OrvIBase* OrvStringCreateWithCharacters(const wchar_t* characters,
                                                      uint64_t count) noexcept;
[[nodiscard]] OrvIBase* OrvStringCreateEmpty() noexcept;
/// A new string, formatted as wprintf does; "%ls" and "%C" take any character in any locale. The
/// result is cut to one character less than the larger of twice the format's length and 1024.
[[nodiscard]] OrvIBase* OrvStringCreateWithFormat(const OrvIBase* format, ...) noexcept;

/// A new string of the platform's text, lossless even for lone surrogates.
[[nodiscard]] OrvIBase* OrvStringCreateWithNSString(std::u16string_view text) noexcept;
/// The same as a temporary object.
[[nodiscard]] OrvIBase* OrvTemporaryStringWithNSString(std::u16string_view text) noexcept;
/// The string as the platform's text, the inverse of the above (OrvCopyCocoaObject answers a
/// property-list value, which is UTF-8). nullopt when memory runs out.
[[nodiscard]] std::optional<std::u16string> OrvStringCopyNSString(const OrvIBase* string) noexcept;

/// The current pool's string for a literal: the same object for equal literals until the pool is
/// drained. Callers must not change it. Without a pool nobody owns it, which a line tells.
[[nodiscard]] OrvIBase* OrvTemporaryString(const wchar_t* literal) noexcept;

/// The NUL-terminated characters, valid until the string changes or dies.
[[nodiscard]] const wchar_t* OrvStringGetCharacters(const OrvIBase* string) noexcept;
/// The number of characters, without the NUL that follows them.
[[nodiscard]] uint64_t OrvStringGetLength(const OrvIBase* string) noexcept;
/// A new string of the part of `range` that lies within `string`; empty for a negative location.
[[nodiscard]] OrvIBase* OrvStringCreateSubstring(const OrvIBase* string, OrvRange range) noexcept;
/// Negative, 0 or positive, by code points up to the first NUL.
[[nodiscard]] int32_t OrvStringCompare(const OrvIBase* left, const OrvIBase* right) noexcept;
/// The same for the upper-case forms.
[[nodiscard]] int32_t OrvStringCompareCaseInsensitive(const OrvIBase* left,
                                                      const OrvIBase* right) noexcept;
/// A new string with ASCII a to z in upper case; it ends at the first NUL.
[[nodiscard]] OrvIBase* OrvStringCreateUppercase(const OrvIBase* string) noexcept;
/// The value of the hexadecimal digits that the string begins with, modulo 2^32.
[[nodiscard]] uint32_t OrvStringGetHexValue(const OrvIBase* string) noexcept;

// What cannot grow for want of memory stays as it was; nothing is reported.

/// Appends the characters of `appended`, which may be the same string.
void OrvStringAppend(OrvIBase* string, const OrvIBase* appended) noexcept;
/// Removes the white space at both ends.
void OrvStringTrimWhitespace(OrvIBase* string) noexcept;
/// Replaces `count` characters, or those there are, from `location`, or the end.
void OrvStringReplaceCharacters(OrvIBase* string, const OrvIBase* replacement, uint64_t location,
                                uint64_t count) noexcept;
/// Replaces every line break of kind `from` by kind `to` (1 LF, 2 CR, 3 CRLF, 4 U+2028; another
/// kind changes nothing). Linear; what was put is not searched, so CR to CRLF makes CR LF LF of
/// CR LF.
void OrvStringConvertLineBreaks(OrvIBase* string, int32_t from, int32_t to) noexcept;

/// The characters of a kind of line break; null for another kind.
[[nodiscard]] OrvIBase* OrvLineBreakString(int32_t kind) noexcept;

/// The MIME charset name of an encoding and a byte order, in the numbering of the encoding record;
/// null when there is none (UTF-16 and UTF-32 without a byte order, other codes) and while the
/// library is not initialised. It belongs to the registry, and callers must not change it. The
/// first call changes the registry and needs a pool.
[[nodiscard]] OrvIBase* OrvMIMECharSetName(int32_t encoding, int32_t byteOrder) noexcept;

} // namespace zelmora
