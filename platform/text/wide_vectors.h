// What the kernels share; only for their sources, and only where __x86_64__ is defined.
#pragma once

#include "platform/text/text_tables.h"
#include "platform/text/wide_kernels.h"

#include <array>
#include <bit>
#include <cstdint>
#include <immintrin.h>

/// A function with this may use the vectors, and must not be called unless usesWideKernels().
#define ZELMORA_WIDE __attribute__((target("avx2,bmi,popcnt")))
/// A part of such a function.
#define ZELMORA_WIDE_PART __attribute__((always_inline)) ZELMORA_WIDE inline

namespace zelmora::platform {

constexpr int kHalf = 32; ///< bytes in a vector; two of them are a window

ZELMORA_WIDE_PART __m256i load(const void* in) {
    return _mm256_loadu_si256(static_cast<const __m256i*>(in));
}

ZELMORA_WIDE_PART void store(void* out, __m256i value) {
    _mm256_storeu_si256(static_cast<__m256i*>(out), value);
}

ZELMORA_WIDE_PART void store(void* out, __m128i value) {
    _mm_storeu_si128(static_cast<__m128i*>(out), value);
}

ZELMORA_WIDE_PART __m256i bytesOf(int value) {
    return _mm256_set1_epi8(static_cast<char>(value));
}

/// One bit for each byte, its highest one.
ZELMORA_WIDE_PART uint64_t highBits(__m256i bytes) {
    return static_cast<uint32_t>(_mm256_movemask_epi8(bytes));
}

/// Writes each byte of ASCII as a unit.
ZELMORA_WIDE_PART void widen(__m256i bytes, char16_t* out) {
    store(out, _mm256_cvtepu8_epi16(_mm256_castsi256_si128(bytes)));
    store(out + kHalf / 2, _mm256_cvtepu8_epi16(_mm256_extracti128_si256(bytes, 1)));
}

/// Writes 32 units, each out of a byte of `low` and the same byte of `high`.
ZELMORA_WIDE_PART void storeJoined(__m256i low, __m256i high, uint16_t* out) {
    const __m256i front = _mm256_unpacklo_epi8(low, high); // bytes 0 to 7 and 16 to 23
    const __m256i back = _mm256_unpackhi_epi8(low, high);
    store(out, _mm256_permute2x128_si256(front, back, 0x20));
    store(out + kHalf / 2, _mm256_permute2x128_si256(front, back, 0x31));
}

/// The number of the lowest bit, which is then cleared; 64 when there is none.
inline int takeLowestBit(uint64_t& bits) {
    const int lowest = std::countr_zero(bits);
    bits &= bits - 1;
    return lowest;
}

/// Which bytes of a vector are taken, in turn.
using Shuffle = std::array<uint8_t, 16>;

ZELMORA_WIDE_PART __m128i shuffled(__m128i bytes, const Shuffle& shuffle) {
    const void* const by = shuffle.data();
    return _mm_shuffle_epi8(bytes, _mm_loadu_si128(static_cast<const __m128i*>(by)));
}

/// The next eight units that `next()` answers.
template<typename Next>
ZELMORA_WIDE_PART __m128i takeEight(Next next) {
    __m128i units = _mm_cvtsi32_si128(next());
    units = _mm_insert_epi16(units, next(), 1);
    units = _mm_insert_epi16(units, next(), 2);
    units = _mm_insert_epi16(units, next(), 3);
    units = _mm_insert_epi16(units, next(), 4);
    units = _mm_insert_epi16(units, next(), 5);
    units = _mm_insert_epi16(units, next(), 6);
    return _mm_insert_epi16(units, next(), 7);
}

/// Of each run of bytes that can begin a pair, every second one does; the one behind each of those
/// is the pair's other byte. A run that begins at an odd place is told from one that begins at an
/// even place by the carry of a subtraction.
inline uint64_t secondBytes(uint64_t canBegin) {
    constexpr uint64_t kOddPlaces = 0xAAAA'AAAA'AAAA'AAAA;
    return (((canBegin << 1 | kOddPlaces) - canBegin) ^ kOddPlaces) ^ canBegin;
}

constexpr int kUsualCount = 32; ///< of the characters in a window of pairs

/// Writes the next `count` characters, whose cells are at the bits of `starts`, or more that do not
/// count to make it 32; false if one of them is none.
ZELMORA_WIDE_PART bool lookUp(const char16_t* table, const uint16_t* cells, uint64_t& starts,
                              int count, char16_t* out) {
    __m128i noCharacters = _mm_setzero_si128();
    for (int i = 0; i < kUsualCount || i < count; i += 8) {
        const __m128i units = takeEight([&] { return table[cells[takeLowestBit(starts)]]; });
        store(out + i, units);
        const __m128i group = _mm_and_si128(units, _mm_set1_epi16(static_cast<short>(0xF800)));
        const __m128i unassigned = _mm_set1_epi16(static_cast<short>(kUnassigned));
        noCharacters = _mm_or_si128(noCharacters, _mm_cmpeq_epi16(group, unassigned));
    }
    return _mm_testz_si128(noCharacters, noCharacters) != 0;
}

} // namespace zelmora::platform
