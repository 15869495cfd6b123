// The mapping tables of the legacy encodings. The build makes them from platform/text/data with
// tools/generate_text_tables.py.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace zelmora::platform {

/// What each UTF-16 unit is written as, by the unit. 0 means that it has no code of its own; U+0000
/// has none here.
using EncodeTable = const uint16_t*;

/// A code that stands for several units; `_units` is filled up with U+0000.
struct Sequence {
    uint16_t _code;
    uint16_t _length;
    std::array<char16_t, 5> _units;
};

/// Cells of a decoding table that are no character, all in the range of the surrogates.
constexpr char16_t kUnassigned = 0xD800;
constexpr char16_t kFirstSequence = 0xD801; ///< plus the index of the sequence

inline bool isNoCharacter(char16_t cell) {
    return (cell & 0xF800) == kUnassigned;
}

/// One of the encodings of the Shift_JIS family. A cell of `_encode` is a one-byte code, or a
/// two-byte code with the lead byte above the trail byte.
struct ShiftJISTable {
    static constexpr uint8_t kSingles = 60; ///< the row of the codes of one byte

    const char16_t* _cells; ///< rows of 256: by lead byte, then by the code's last byte
    EncodeTable _encode;
    std::span<const Sequence> _sequences; ///< the longest ones first

    /// The row of a byte: the lead bytes 81 to 9F and E0 to FC count from 0, every other one begins
    /// no pair and has kSingles.
    static uint8_t rowOf(uint8_t byte) {
        return std::min(static_cast<uint8_t>((byte ^ 0x20) - 0xA1), kSingles);
    }
};

/// JIS X 0208 (plane 0) and JIS X 0212 (plane 1) with their extensions. A cell of `_encode` is the
/// EUC-JP code; one of plane 1 has no high bit in its second byte, which tells the planes apart,
/// and half-width katakana are 00A1 to 00DF.
struct JISTable {
    static constexpr uint8_t kASCII = 0x80;    ///< the row of ASCII in plane 0
    static constexpr uint8_t kKatakana = 0x0E; ///< the row of half-width katakana in plane 0

    /// Rows of 256 cells: by the first byte without its high bit, then by the second one with it;
    /// so the pairs of EUC-JP find their cell as they are, and only they. Only ASCII has no high
    /// bit in its columns.
    std::array<const char16_t*, 2> _planes;
    EncodeTable _encode;

    /// Whether a cell of `_encode` is a code of plane 0.
    static bool isInPlane0(uint16_t code) { return (code & 0x8080) == 0x8080; }

    /// The cell of the two bytes, whatever their high bits are.
    char16_t cell(size_t plane, uint8_t row, uint8_t column) const {
        return _planes[plane][static_cast<size_t>(row & 0x7F) << 8 | column | 0x80];
    }
};

/// Mac OS Roman: every byte is a character.
struct MacOSRomanTable {
    std::span<const char16_t, 256> _singles;
    EncodeTable _encode;
};

extern const ShiftJISTable kMacJapaneseTable;
extern const ShiftJISTable kCodePage932Table;
extern const JISTable kJISTable;
extern const MacOSRomanTable kMacOSRomanTable;

} // namespace zelmora::platform
