// Between the UTF-8 that files, settings and messages hold and the UTF-16 that texts are.
#pragma once

#include <string>
#include <string_view>

namespace zelmora::platform {

/// UTF-8 of `text`; a lone surrogate becomes U+FFFD.
[[nodiscard]] std::string utf8FromUTF16(std::u16string_view text);

/// UTF-16 of `utf8`; every byte that is not part of a valid sequence becomes U+FFFD.
[[nodiscard]] std::u16string utf16FromUTF8(std::string_view utf8);

/// A file-system path as text: the bytes that are not valid UTF-8 are written as \xHH (two
/// upper-case hexadecimal digits), everything else stands as it is. The result is valid UTF-8.
[[nodiscard]] std::string displayPath(std::string_view path);

/// displayPath for a terminal: control characters (C0, DEL, C1) are escaped too, as \n, \r, \t or
/// \xHH of each of their UTF-8 bytes, so that no name can move the cursor or forge a line.
[[nodiscard]] std::string terminalPath(std::string_view path);

} // namespace zelmora::platform
