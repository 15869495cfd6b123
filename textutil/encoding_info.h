// The encoding record that passes between detection, decoding, encoding, declarations and the log.
#pragma once

#include <cstdint>

namespace zelmora {

// Each code below is a 32-bit integer that settings fill in; a value outside the named ones is
// representable and is treated as each reader of the record says.

enum class OrvEncoding : int32_t {
    none = 0, ///< nothing determined; decoded and encoded in the fallback encoding
    shiftjis = 1,
    jis = 2, ///< ISO-2022-JP
    eucjp = 3,
    utf8 = 4,
    utf16 = 5,
    utf32 = 6,
};

enum class OrvByteOrder : int32_t { none = 0, littleEndian = 1, bigEndian = 2 };

/// Which vendor mapping of Shift_JIS to use; any other value acts as `mac`.
enum class OrvCharacterMapping : int32_t { mac = 0, windows = 1 };

enum class OrvLineBreak : int32_t {
    none = 0, ///< no line break found; as a setting, leave line breaks as they are
    lf = 1,   ///< U+000A
    cr = 2,   ///< U+000D
    crlf = 3, ///< U+000D U+000A
    ls = 4,   ///< U+2028
};

/// Passed by value. All zero: nothing is known.
struct OrvEncodingInfo {
    OrvEncoding encoding = OrvEncoding::none;
    OrvByteOrder byteOrder = OrvByteOrder::none; ///< for UTF-16 and UTF-32
    bool hasBOM = false; ///< the data begins, or is to begin, with a byte-order mark
    OrvCharacterMapping characterMapping = OrvCharacterMapping::mac; ///< for Shift_JIS

    bool operator==(const OrvEncodingInfo&) const = default;
};

} // namespace zelmora
