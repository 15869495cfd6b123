// UTF-16 to the encodings of the Shift_JIS family, 16 units at a time: the units' codes are looked
// up into vectors, from which the upper bytes of those that are one byte are dropped.
#include "platform/text/wide_kernels.h"

#if defined(__x86_64__)
#include "platform/text/wide_vectors.h"

#include <array>

namespace zelmora::platform::ZELMORA_LEVEL {
namespace {

constexpr int kUnits = 16;

ZELMORA_WIDE_PART __m256i unitsOf(int value) {
    return _mm256_set1_epi16(static_cast<short>(value));
}

/// Whether one of the units may change the meaning of the one before it: U+F878 to U+F87F, 20DD.
ZELMORA_WIDE_PART bool hasSequenceMark(__m256i units) {
    const __m256i variants =
        _mm256_cmpeq_epi16(_mm256_and_si256(units, unitsOf(0xFFF8)), unitsOf(0xF878));
    const __m256i circles = _mm256_cmpeq_epi16(units, unitsOf(0x20DD));
    return highBits(_mm256_or_si256(variants, circles)) != 0;
}

/// Whether all units are written as they are; where there are sequences, 5C is not.
ZELMORA_WIDE_PART bool isASCII(__m256i units, bool hasSequences) {
    if (_mm256_testz_si256(units, unitsOf(0xFF80)) == 0)
        return false;
    return !hasSequences || highBits(_mm256_cmpeq_epi16(units, unitsOf('\\'))) == 0;
}

#ifdef ZELMORA_VBMI2

/// Writes 16 codes: the bytes that are not zero, which no second byte is.
ZELMORA_WIDE_PART void writeCodes(__m128i front, __m128i back, Octet*& out) {
    const __m256i codes = _mm256_set_m128i(back, front);
    const __m256i bytes = _mm256_or_si256(_mm256_srli_epi16(codes, 8), _mm256_slli_epi16(codes, 8));
    const __mmask32 wanted = _mm256_test_epi8_mask(bytes, bytes);
    store(out, _mm256_maskz_compress_epi8(wanted, bytes));
    out += std::popcount(wanted);
}

#else

/// The bytes of eight codes in the order in which they are written. Bit i of the index: code i is
/// one byte.
constexpr std::array<Shuffle, 256> kWrittenBytes = [] {
    std::array<Shuffle, 256> shuffles{};
    for (unsigned singles = 0; singles < shuffles.size(); ++singles) {
        size_t written = 0;
        for (unsigned i = 0; i < 8; ++i) {
            if ((singles >> i & 1) == 0)
                shuffles[singles][written++] = static_cast<uint8_t>(2 * i + 1);
            shuffles[singles][written++] = static_cast<uint8_t>(2 * i);
        }
    }
    return shuffles;
}();

ZELMORA_WIDE_PART void writeEight(__m128i codes, Octet*& out) {
    const __m128i zero = _mm_setzero_si128();
    const __m128i isSingle = _mm_cmpeq_epi16(_mm_srli_epi16(codes, 8), zero);
    const auto singles = static_cast<unsigned>(_mm_movemask_epi8(_mm_packs_epi16(isSingle, zero)));
    store(out, shuffled(codes, kWrittenBytes[singles]));
    out += 16 - std::popcount(singles);
}

ZELMORA_WIDE_PART void writeCodes(__m128i front, __m128i back, Octet*& out) {
    writeEight(front, out);
    writeEight(back, out);
}

#endif

} // namespace

ZELMORA_WIDE void encodeShiftJISWindows(const uint16_t* codes, bool hasSequences,
                                        const char16_t*& source, const char16_t* stop,
                                        Octet*& target) {
    const char16_t* in = source;
    Octet* out = target;
    for (; stop - in > kUnits; in += kUnits) {
        const __m256i units = load(in);
        if (hasSequences && hasSequenceMark(load(in + 1)))
            break;
        if (isASCII(units, hasSequences)) {
            store(out, _mm_packus_epi16(_mm256_castsi256_si128(units),
                                        _mm256_extracti128_si256(units, 1)));
            out += kUnits;
            continue;
        }
        prefetchAfter(in);
        const __m128i front = lookUpEight(codes, in);
        const __m128i back = lookUpEight(codes, in + kUnits / 2);
        const __m128i none = _mm_cmpeq_epi16(_mm_min_epu16(front, back), _mm_setzero_si128());
        if (_mm_testz_si128(none, none) == 0)
            break;
        writeCodes(front, back, out);
    }
    source = in;
    target = out;
}

} // namespace zelmora::platform::ZELMORA_LEVEL

#endif
