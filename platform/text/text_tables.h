// The mapping tables of the legacy encodings. The build makes them from platform/text/data with
// tools/generate_text_tables.py.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace zelmora::platform {

/// What each UTF-16 unit is written as, in two levels: 64 neighbouring units make a block, and
/// blocks that hold nothing are one and the same. 0 means that the unit has no code of its own;
/// U+0000 has none here.
struct EncodeTable {
    std::span<const uint16_t, 1024>
        _blocks; ///< by the unit's upper ten bits: where its cells start
    const uint16_t* _cells;

    uint16_t operator[](char16_t unit) const { return _cells[_blocks[unit >> 6] + (unit & 63)]; }
};

/// A code that stands for several units; `_units` is filled up with U+0000.
struct Sequence {
    uint16_t _code;
    uint16_t _length;
    std::array<char16_t, 5> _units;
};

/// Cells of a decoding table that are no character, all in the range of the surrogates.
constexpr char16_t kUnassigned = 0xD800;
constexpr char16_t kFirstSequence = 0xD801; ///< plus the index of the sequence

/// One of the encodings of the Shift_JIS family. A cell of `_encode` is a one-byte code, or a
/// two-byte code with the lead byte above the trail byte.
struct ShiftJISTable {
    std::span<const char16_t, 256> _singles; ///< kUnassigned for lead bytes
    std::span<const uint8_t, 256> _rows;     ///< by lead byte; row 0 is empty, for all other bytes
    const char16_t* _doubles;                ///< rows of 256 cells, by trail byte
    EncodeTable _encode;
    std::span<const Sequence> _sequences; ///< the longest ones first

    /// What the two bytes stand for; the first one may be any byte.
    char16_t cell(uint8_t lead, uint8_t trail) const {
        return _doubles[size_t{_rows[lead]} << 8 | trail];
    }
};

/// JIS X 0208 (plane 0) and JIS X 0212 (plane 1) with their extensions; 0 is unassigned. A cell of
/// `_encode` is the EUC-JP code; one of plane 1 has no high bit in its second byte, which tells the
/// planes apart, and half-width katakana are 00A1 to 00DF.
struct JISTable {
    std::array<const char16_t*, 2> _planes; ///< 128 rows of 128 cells
    EncodeTable _encode;

    /// Whether a cell of `_encode` is a code of plane 0.
    static bool isInPlane0(uint16_t code) { return (code & 0x8080) == 0x8080; }

    /// The character of the two bytes, whatever their high bits are.
    char16_t cell(size_t plane, uint8_t row, uint8_t column) const {
        return _planes[plane][static_cast<size_t>(row & 0x7F) << 7 | (column & 0x7F)];
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
