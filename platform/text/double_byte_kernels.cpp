// Decoding of one- and two-byte codes in windows of 64 bytes.
//
// A window begins with a character. Its bytes become, at every position, the cell that would be
// looked up if a character began there; bit operations on 64-bit masks find out where characters
// do begin; then the first 32 of them are looked up, however long they are. So nothing depends on a
// branch that mixed text would make unpredictable, and the next window is known at once.
#include "platform/text/text_tables.h"
#include "platform/text/wide_kernels.h"

#if defined(__x86_64__)
#include <array>
#include <bit>
#include <cstdint>
#include <immintrin.h>

#define ZELMORA_WIDE __attribute__((target("avx2,bmi")))

namespace zelmora::platform {
namespace {

constexpr size_t kHalf = 32; ///< bytes in a vector
constexpr int kCharacters = 32;

struct ShiftJIS {
    static constexpr char kSingles = ShiftJISTable::kSingles;

    /// ShiftJISTable::rowOf for every byte.
    ZELMORA_WIDE static __m256i rowsOf(__m256i bytes) {
        const __m256i folded = _mm256_xor_si256(bytes, _mm256_set1_epi8(0x20));
        const __m256i rows = _mm256_sub_epi8(folded, _mm256_set1_epi8(static_cast<char>(0xA1)));
        return _mm256_min_epu8(rows, _mm256_set1_epi8(kSingles));
    }
};

struct EUCJP {
    static constexpr char kSingles = static_cast<char>(JISTable::kASCII);

    ZELMORA_WIDE static __m256i rowsOf(__m256i bytes) {
        const __m256i rows = _mm256_xor_si256(bytes, _mm256_set1_epi8(kSingles));
        return _mm256_min_epu8(rows, _mm256_set1_epi8(kSingles));
    }
};

ZELMORA_WIDE inline __m256i load(const Octet* in) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(in));
}

ZELMORA_WIDE inline void store(void* out, __m256i value) {
    _mm256_storeu_si256(static_cast<__m256i*>(out), value);
}

/// Whether one byte of the window is not ASCII, or 5C and `isASCII` is not set.
ZELMORA_WIDE inline bool hasSpecial(__m256i low, __m256i high, bool isASCII) {
    __m256i special = _mm256_or_si256(low, high);
    if (!isASCII) {
        const __m256i backslash = _mm256_set1_epi8('\\');
        special = _mm256_or_si256(special, _mm256_cmpeq_epi8(low, backslash));
        special = _mm256_or_si256(special, _mm256_cmpeq_epi8(high, backslash));
    }
    return _mm256_movemask_epi8(special) != 0;
}

ZELMORA_WIDE inline void widen(__m256i bytes, char16_t* out) {
    store(out, _mm256_cvtepu8_epi16(_mm256_castsi256_si128(bytes)));
    store(out + kHalf / 2, _mm256_cvtepu8_epi16(_mm256_extracti128_si256(bytes, 1)));
}

/// Writes the cells of codes that would begin at each of the 32 bytes at `in`, and answers which of
/// them are codes of one byte.
template<typename Encoding>
ZELMORA_WIDE uint64_t findCells(const Octet* in, uint16_t* cells) {
    const __m256i bytes = load(in);
    const __m256i rows = Encoding::rowsOf(bytes);
    const __m256i singles = _mm256_cmpeq_epi8(rows, _mm256_set1_epi8(Encoding::kSingles));
    const __m256i columns = _mm256_blendv_epi8(load(in + 1), bytes, singles);
    const __m256i even = _mm256_unpacklo_epi8(columns, rows); // bytes 0 to 7 and 16 to 23
    const __m256i odd = _mm256_unpackhi_epi8(columns, rows);
    store(cells, _mm256_permute2x128_si256(even, odd, 0x20));
    store(cells + kHalf / 2, _mm256_permute2x128_si256(even, odd, 0x31));
    return static_cast<uint32_t>(_mm256_movemask_epi8(singles));
}

/// Of each run of bytes that can begin a pair, every second one does; the one behind each of those
/// is the pair's other byte. A run that begins at an odd place is told from one that begins at an
/// even place by the carry of a subtraction.
uint64_t secondBytes(uint64_t canBegin) {
    constexpr uint64_t kOddPlaces = 0xAAAA'AAAA'AAAA'AAAA;
    return (((canBegin << 1 | kOddPlaces) - canBegin) ^ kOddPlaces) ^ canBegin;
}

/// The character that begins at the lowest bit of `starts`, which goes out.
inline int next(const char16_t* table, const uint16_t* cells, uint64_t& starts) {
    const char16_t unit = table[cells[std::countr_zero(starts)]];
    starts &= starts - 1;
    return unit;
}

/// Writes the next eight characters; answers, in every lane, whether it is none.
ZELMORA_WIDE inline __m128i lookUpEight(const char16_t* table, const uint16_t* cells,
                                        uint64_t& starts, char16_t* out) {
    __m128i units = _mm_cvtsi32_si128(next(table, cells, starts));
    units = _mm_insert_epi16(units, next(table, cells, starts), 1);
    units = _mm_insert_epi16(units, next(table, cells, starts), 2);
    units = _mm_insert_epi16(units, next(table, cells, starts), 3);
    units = _mm_insert_epi16(units, next(table, cells, starts), 4);
    units = _mm_insert_epi16(units, next(table, cells, starts), 5);
    units = _mm_insert_epi16(units, next(table, cells, starts), 6);
    units = _mm_insert_epi16(units, next(table, cells, starts), 7);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), units);
    const __m128i group = _mm_and_si128(units, _mm_set1_epi16(static_cast<short>(0xF800)));
    return _mm_cmpeq_epi16(group, _mm_set1_epi16(static_cast<short>(kUnassigned)));
}

/// Writes the next 32 characters; false if one of them is none.
ZELMORA_WIDE inline bool lookUp(const char16_t* table, const uint16_t* cells, uint64_t& starts,
                                char16_t* out) {
    __m128i invalid = _mm_setzero_si128();
    for (int i = 0; i < kCharacters; i += 8)
        invalid = _mm_or_si128(invalid, lookUpEight(table, cells, starts, out + i));
    return _mm_testz_si128(invalid, invalid) != 0;
}

template<typename Encoding>
ZELMORA_WIDE void decodeWindows(const char16_t* table, bool isASCII, const Octet*& source,
                                const Octet* stop, char16_t*& target) {
    alignas(kHalf) std::array<uint16_t, kWindow> cells;
    const Octet* in = source;
    char16_t* out = target;
    while (stop - in > kWindow) { // the last byte may begin a pair
        const __m256i low = load(in);
        const __m256i high = load(in + kHalf);
        if (!hasSpecial(low, high, isASCII)) {
            widen(low, out);
            widen(high, out + kHalf);
            in += kWindow;
            out += kWindow;
            continue;
        }
        uint64_t singles = findCells<Encoding>(in, cells.data());
        singles |= findCells<Encoding>(in + kHalf, cells.data() + kHalf) << kHalf;
        uint64_t starts = ~secondBytes(~singles);
        if (!lookUp(table, cells.data(), starts, out))
            break;
        in += std::countr_zero(starts); // 64 when none is left
        out += kCharacters;
    }
    source = in;
    target = out;
}

} // namespace

ZELMORA_WIDE void decodeShiftJISWindows(const char16_t* cells, bool isASCII, const Octet*& in,
                                        const Octet* stop, char16_t*& out) {
    decodeWindows<ShiftJIS>(cells, isASCII, in, stop, out);
}

ZELMORA_WIDE void decodeEUCJPWindows(const Octet*& in, const Octet* stop, char16_t*& out) {
    decodeWindows<EUCJP>(kJISTable._planes[0], true, in, stop, out);
}

} // namespace zelmora::platform

#else

namespace zelmora::platform {

void decodeShiftJISWindows(const char16_t*, bool, const Octet*&, const Octet*, char16_t*&) {}
void decodeEUCJPWindows(const Octet*&, const Octet*, char16_t*&) {}

} // namespace zelmora::platform
#endif
