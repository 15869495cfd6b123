// What the kernels share; only for their sources, and only where __x86_64__ is defined.
#pragma once

#include "platform/text/text_tables.h"
#include "platform/text/wide_kernels.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <immintrin.h>

// The kernels are compiled once for each level of processors.
#ifdef ZELMORA_VBMI2
#define ZELMORA_LEVEL vbmi2
#define ZELMORA_TARGET "avx2,bmi,popcnt,avx512f,avx512bw,avx512vl,avx512vbmi2"
#else
#define ZELMORA_LEVEL avx2
#define ZELMORA_TARGET "avx2,bmi,popcnt"
#endif
/// A function with this may use the vectors, and must not be called where the level may not run.
#define ZELMORA_WIDE __attribute__((target(ZELMORA_TARGET)))
/// A part of such a function.
#define ZELMORA_WIDE_PART __attribute__((always_inline)) ZELMORA_WIDE inline

namespace zelmora::platform::ZELMORA_LEVEL {

constexpr int kHalf = 32; ///< bytes in a vector; two of them are a window

ZELMORA_WIDE_PART __m256i load(const void* in) {
    return _mm256_loadu_si256(static_cast<const __m256i*>(in));
}

/// Has the text soon after `in` fetched into the cache, harmlessly where there is none. The
/// encoders gain a fifth by it where the text is not in the cache yet, the decoders nothing.
ZELMORA_WIDE_PART void prefetchAfter(const void* in) {
    constexpr uintptr_t kAhead = 1024; // bytes
    const uintptr_t soon = reinterpret_cast<uintptr_t>(in) + kAhead;
    _mm_prefetch(reinterpret_cast<const char*>(soon), _MM_HINT_T0);
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

/// A word for each of 32 bytes, in the order in which unpacking leaves them.
struct Words {
    __m256i _front; ///< words 0 to 7 and 16 to 23
    __m256i _back;  ///< words 8 to 15 and 24 to 31
};

/// Each word out of a byte of `low` and the same byte of `high`.
ZELMORA_WIDE_PART Words joined(__m256i low, __m256i high) {
    return {_mm256_unpacklo_epi8(low, high), _mm256_unpackhi_epi8(low, high)};
}

/// Which bytes of a vector are taken, in turn.
using Shuffle = std::array<uint8_t, 16>;

ZELMORA_WIDE_PART __m128i shuffled(__m128i bytes, const Shuffle& shuffle) {
    const void* const by = shuffle.data();
    return _mm_shuffle_epi8(bytes, _mm_loadu_si128(static_cast<const __m128i*>(by)));
}

#ifdef ZELMORA_VBMI2

/// The 32 words whose bits are set, one after the other, then zeroes.
ZELMORA_WIDE_PART __m512i packed(const Words& words, uint64_t wanted) {
    const __m512i inOrder = _mm512_setr_epi64(0, 1, 8, 9, 2, 3, 10, 11);
    const __m512i all = _mm512_permutex2var_epi64(_mm512_castsi256_si512(words._front), inOrder,
                                                  _mm512_castsi256_si512(words._back));
    return _mm512_maskz_compress_epi16(static_cast<__mmask32>(wanted), all);
}

/// Writes the words of a window whose bits are set, one after the other, and up to 32 more that do
/// not count.
ZELMORA_WIDE_PART void writeWords(const Words& low, const Words& high, uint64_t wanted,
                                  char16_t*& out) {
    _mm512_storeu_si512(out, packed(low, wanted));
    _mm512_storeu_si512(out + std::popcount(wanted << kHalf), packed(high, wanted >> kHalf));
    out += std::popcount(wanted);
}

/// The bytes of `set` where a bit of `bits` is set, the others of `clear`.
ZELMORA_WIDE_PART __m256i chosen(uint64_t bits, __m256i set, __m256i clear) {
    return _mm256_mask_blend_epi8(static_cast<__mmask32>(bits), clear, set);
}

#else

/// The bytes of eight words of which only some are kept, by a bit for each.
constexpr std::array<Shuffle, 256> kKeptWords = [] {
    std::array<Shuffle, 256> shuffles{};
    for (unsigned wanted = 0; wanted < shuffles.size(); ++wanted) {
        size_t kept = 0;
        for (unsigned word = 0; word < 8; ++word) {
            if ((wanted >> word & 1) == 0)
                continue;
            shuffles[wanted][kept++] = static_cast<uint8_t>(2 * word);
            shuffles[wanted][kept++] = static_cast<uint8_t>(2 * word + 1);
        }
    }
    return shuffles;
}();

/// Writes some of the eight words that belong to the bits of `wanted` from `place` on, behind those
/// of the bits before.
template<int place>
ZELMORA_WIDE_PART void writeEight(__m128i words, uint64_t wanted, char16_t* out) {
    if constexpr (place != 0)
        out += std::popcount(wanted << (kWindow - place));
    store(out, shuffled(words, kKeptWords[wanted >> place & 0xFF]));
}

/// Writes the words of a window whose bits are set, one after the other, and up to eight more that
/// do not count.
ZELMORA_WIDE_PART void writeWords(const Words& low, const Words& high, uint64_t wanted,
                                  char16_t*& out) {
    writeEight<0>(_mm256_castsi256_si128(low._front), wanted, out);
    writeEight<8>(_mm256_castsi256_si128(low._back), wanted, out);
    writeEight<16>(_mm256_extracti128_si256(low._front, 1), wanted, out);
    writeEight<24>(_mm256_extracti128_si256(low._back, 1), wanted, out);
    writeEight<32>(_mm256_castsi256_si128(high._front), wanted, out);
    writeEight<40>(_mm256_castsi256_si128(high._back), wanted, out);
    writeEight<48>(_mm256_extracti128_si256(high._front, 1), wanted, out);
    writeEight<56>(_mm256_extracti128_si256(high._back, 1), wanted, out);
    out += std::popcount(wanted);
}

/// The bytes of `set` where a bit of `bits` is set, the others of `clear`.
ZELMORA_WIDE_PART __m256i chosen(uint64_t bits, __m256i set, __m256i clear) {
    const __m256i eachByte =
        _mm256_setr_epi64x(0, 0x0101'0101'0101'0101, 0x0202'0202'0202'0202, 0x0303'0303'0303'0303);
    const __m256i eachBit = _mm256_set1_epi64x(static_cast<int64_t>(0x8040'2010'0804'0201));
    const __m256i spread = _mm256_shuffle_epi8(_mm256_set1_epi32(static_cast<int>(bits)), eachByte);
    const __m256i isSet = _mm256_cmpeq_epi8(_mm256_and_si256(spread, eachBit), eachBit);
    return _mm256_blendv_epi8(clear, set, isSet);
}

#endif

/// What `table` has for each of eight units.
template<typename Entry>
ZELMORA_WIDE_PART __m128i lookUpEight(const Entry* table, const char16_t* units) {
    __m128i entries = _mm_insert_epi16(_mm_setzero_si128(), table[units[0]], 0);
    entries = _mm_insert_epi16(entries, table[units[1]], 1);
    entries = _mm_insert_epi16(entries, table[units[2]], 2);
    entries = _mm_insert_epi16(entries, table[units[3]], 3);
    entries = _mm_insert_epi16(entries, table[units[4]], 4);
    entries = _mm_insert_epi16(entries, table[units[5]], 5);
    entries = _mm_insert_epi16(entries, table[units[6]], 6);
    return _mm_insert_epi16(entries, table[units[7]], 7);
}

/// Of each run of bytes that can begin a pair, every second one does; the one behind each of those
/// is the pair's other byte. A run that begins at an odd place is told from one that begins at an
/// even place by the carry of a subtraction.
inline uint64_t secondBytes(uint64_t canBegin) {
    constexpr uint64_t kOddPlaces = 0xAAAA'AAAA'AAAA'AAAA;
    return (((canBegin << 1 | kOddPlaces) - canBegin) ^ kOddPlaces) ^ canBegin;
}

/// The byte at which a character begins, by the starts in each window.
[[gnu::noinline]] inline std::ptrdiff_t placeOf(std::ptrdiff_t character, const uint64_t* starts) {
    std::ptrdiff_t place = 0;
    for (; character >= std::popcount(*starts); place += kWindow)
        character -= std::popcount(*starts++);
    uint64_t rest = *starts;
    for (; character > 0; --character)
        rest &= rest - 1;
    return place + std::countr_zero(rest);
}

/// Decodes some windows in two passes. The first one writes the cell of every character to where
/// the character will be; the second one looks them up, one after the other. So neither has a
/// branch that depends on the text, and no step of theirs waits for the one before it.
class Batch {
  public:
    /// Windows to begin with, twice as many when they were all right, and so on: in a long run
    /// there are few ends of loops to mispredict, after a bad code there is little to repeat.
    static constexpr size_t kFewest = 8;
    static constexpr size_t kMost = 32;

    /// Takes `most` windows. `singles`: a row of `table` that begins with a character.
    ZELMORA_WIDE_PART Batch(const char16_t* table, uint8_t singles, size_t most, char16_t* out)
        : _table(table), _filler(static_cast<short>(singles << 8)), _most(most), _begin(out),
          _end(out) {}

    bool isEmpty() const { return _count == 0; }
    bool isFull() const { return _count == _most; }

    /// Adds a window: the cells of the characters that would begin at each byte, and where they do.
    ZELMORA_WIDE_PART void add(const Words& low, const Words& high, uint64_t starts) {
        _starts[_count++] = starts;
        writeWords(low, high, starts, _end);
    }

    /// Moves `in`, where the first window is, to `next`, and `out` behind the last character. Where
    /// a cell is no character, moves them to that one and answers false.
    ZELMORA_WIDE_PART bool finish(const Octet*& in, const Octet* next, char16_t*& out) {
        lookUp();
        const bool isAll = !hasNone();
        out = isAll ? _end : std::find_if(_begin, _end, isNoCharacter);
        in = isAll ? next : in + placeOf(out - _begin, _starts.data());
        return isAll;
    }

  private:
    ZELMORA_WIDE_PART void lookUp() {
        store(_end, _mm_set1_epi16(_filler)); // the last eight cells may be fewer
        for (char16_t* cells = _begin; cells < _end; cells += 8) {
            const __m128i characters = lookUpEight(_table, cells);
            store(cells, characters);
            const __m128i unassigned = _mm_set1_epi16(static_cast<short>(kUnassigned));
            _nearest = _mm_min_epu16(_nearest, _mm_xor_si128(characters, unassigned));
        }
    }

    ZELMORA_WIDE_PART bool hasNone() const {
        const __m128i isNone = _mm_cmpeq_epi16(_mm_srli_epi16(_nearest, 11), _mm_setzero_si128());
        return _mm_testz_si128(isNone, isNone) == 0;
    }

    const char16_t* _table;
    short _filler;
    size_t _most;
    char16_t* _begin;
    char16_t* _end;
    __m128i _nearest = _mm_set1_epi16(-1); ///< how close the characters come to kUnassigned
    size_t _count = 0;
    std::array<uint64_t, kMost> _starts;
};

} // namespace zelmora::platform::ZELMORA_LEVEL
