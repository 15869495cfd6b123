// UTF-8 to UTF-16 and back, 64 bytes or 16 units at a time.
#include "platform/text/wide_kernels.h"

#if defined(__x86_64__)
#include "platform/text/wide_vectors.h"

#include <array>

namespace zelmora::platform::ZELMORA_LEVEL {
namespace {

/// What 32 bytes are; a bit for each but in the units.
struct Bytes32 {
    Words _units; ///< of the sequence that would begin at each byte
    uint64_t _continuations;
    uint64_t _leads;      ///< of sequences of two bytes or three
    uint64_t _longLeads;  ///< of sequences of three bytes
    uint64_t _suspicious; ///< begin what this kernel does not read, or is not valid
};

/// Bits `count` to `shift` of each byte, moved to its lower end.
ZELMORA_WIDE_PART __m256i shiftedRight(__m256i bytes, int count, int mask) {
    return _mm256_and_si256(_mm256_srli_epi16(bytes, count), bytesOf(mask));
}

ZELMORA_WIDE_PART __m256i shiftedLeft(__m256i bytes, int count, int mask) {
    return _mm256_and_si256(_mm256_slli_epi16(bytes, count), bytesOf(mask));
}

ZELMORA_WIDE_PART Bytes32 classify(const Octet* in) {
    const __m256i first = load(in);
    const __m256i second = load(in + 1);
    const __m256i third = load(in + 2);
    const __m256i isASCII = _mm256_cmpgt_epi8(first, bytesOf(-1));
    const __m256i isLead = _mm256_cmpgt_epi8(first, bytesOf(0xBF)); // or ASCII
    const __m256i isLong = _mm256_andnot_si256(isASCII, _mm256_cmpgt_epi8(first, bytesOf(0xDF)));

    const __m256i sixBits = bytesOf(0x3F);
    const __m256i low2 =
        _mm256_or_si256(shiftedLeft(first, 6, 0xC0), _mm256_and_si256(second, sixBits));
    const __m256i low3 =
        _mm256_or_si256(shiftedLeft(second, 6, 0xC0), _mm256_and_si256(third, sixBits));
    const __m256i high2 = shiftedRight(first, 2, 0x07);
    const __m256i high3 =
        _mm256_or_si256(shiftedLeft(first, 4, 0xF0), shiftedRight(second, 2, 0x0F));
    const __m256i low = _mm256_blendv_epi8(_mm256_blendv_epi8(low2, low3, isLong), first, isASCII);
    const __m256i high = _mm256_andnot_si256(isASCII, _mm256_blendv_epi8(high2, high3, isLong));

    // A surrogate or too small for three bytes, four bytes or more, or too small for two.
    const __m256i group = _mm256_and_si256(high3, bytesOf(0xF8));
    const __m256i bad3 =
        _mm256_and_si256(isLong, _mm256_or_si256(_mm256_cmpeq_epi8(group, _mm256_setzero_si256()),
                                                 _mm256_cmpeq_epi8(group, bytesOf(0xD8))));
    const __m256i bad4 = _mm256_andnot_si256(isASCII, _mm256_cmpgt_epi8(first, bytesOf(0xEF)));
    const __m256i bad2 = _mm256_cmpeq_epi8(_mm256_and_si256(first, bytesOf(0xFE)), bytesOf(0xC0));
    return {joined(low, high), highBits(_mm256_xor_si256(isLead, bytesOf(0xFF))),
            highBits(_mm256_andnot_si256(isASCII, isLead)), highBits(isLong),
            highBits(_mm256_or_si256(_mm256_or_si256(bad2, bad3), bad4))};
}

/// The two halves of a window as one mask.
uint64_t joined(uint64_t low, uint64_t high) {
    return low | high << kHalf;
}

uint64_t isContinuation(Octet byte) {
    return (byte & 0xC0) == 0x80 ? 1 : 0;
}

/// The bytes to keep of four words, in each of which a character ends with the third byte. Bit i of
/// the index: character i has fewer than three bytes; bit 4 + i: it has only one.
constexpr std::array<Shuffle, 256> kKeptBytes = [] {
    std::array<Shuffle, 256> shuffles{};
    for (unsigned kinds = 0; kinds < shuffles.size(); ++kinds) {
        size_t kept = 0;
        for (unsigned i = 0; i < 4; ++i) {
            for (unsigned byte = (kinds >> i & 1) + (kinds >> (4 + i) & 1); byte < 3; ++byte)
                shuffles[kinds][kept++] = static_cast<uint8_t>(4 * i + byte);
        }
    }
    return shuffles;
}();

ZELMORA_WIDE_PART void keepBytes(__m128i words, unsigned kinds, Octet*& out) {
    store(out, shuffled(words, kKeptBytes[kinds]));
    out += 12 - std::popcount(kinds);
}

/// Writes eight characters, given as 32-bit numbers.
ZELMORA_WIDE_PART void encodeEight(__m256i units, Octet*& out) {
    const __m256i isShort = _mm256_cmpgt_epi32(_mm256_set1_epi32(0x800), units);
    const __m256i isASCII = _mm256_cmpgt_epi32(_mm256_set1_epi32(0x80), units);
    const __m256i last = _mm256_slli_epi32(units, 16);
    const __m256i middle = _mm256_slli_epi32(units, 2);
    __m256i words = _mm256_or_si256(_mm256_and_si256(last, _mm256_set1_epi32(0x3F'0000)),
                                    _mm256_and_si256(middle, _mm256_set1_epi32(0x3F00)));
    words = _mm256_or_si256(words, _mm256_srli_epi32(units, 12));
    words = _mm256_or_si256(words, _mm256_set1_epi32(0x80'80E0));
    // The byte in the middle leads characters of two bytes: C0 and up.
    words = _mm256_or_si256(words, _mm256_and_si256(isShort, _mm256_set1_epi32(0x4000)));
    words = _mm256_blendv_epi8(words, last, isASCII);
    const __m256i kinds = _mm256_packs_epi32(isShort, isASCII);
    const uint64_t bits = highBits(_mm256_packs_epi16(kinds, kinds));
    keepBytes(_mm256_castsi256_si128(words), bits & 0xFF, out);
    keepBytes(_mm256_extracti128_si256(words, 1), bits >> 16 & 0xFF, out);
}

ZELMORA_WIDE_PART bool hasSurrogate(__m256i units) {
    const __m256i group = _mm256_and_si256(units, _mm256_set1_epi16(static_cast<short>(0xF800)));
    return highBits(_mm256_cmpeq_epi16(group, _mm256_set1_epi16(static_cast<short>(0xD800)))) != 0;
}

} // namespace

ZELMORA_WIDE void encodeUTF8Windows(const char16_t*& source, const char16_t* stop, Octet*& target) {
    constexpr std::ptrdiff_t kUnits = 16;
    const char16_t* in = source;
    Octet* out = target;
    for (; stop - in >= kUnits; in += kUnits) {
        const __m256i units = load(in);
        const __m128i front = _mm256_castsi256_si128(units);
        const __m128i back = _mm256_extracti128_si256(units, 1);
        if (_mm256_testz_si256(units, _mm256_set1_epi16(static_cast<short>(0xFF80))) != 0) {
            store(out, _mm_packus_epi16(front, back));
            out += kUnits;
        } else if (hasSurrogate(units)) {
            break;
        } else {
            prefetchAfter(in);
            encodeEight(_mm256_cvtepu16_epi32(front), out);
            encodeEight(_mm256_cvtepu16_epi32(back), out);
        }
    }
    source = in;
    target = out;
}

ZELMORA_WIDE void decodeUTF8Windows(const Octet*& source, const Octet* stop, char16_t*& target) {
    const Octet* in = source;
    char16_t* out = target;
    uint64_t taken = 0; // the bytes of this window that belong to a character before it
    for (; stop - in >= kWindow + 2; in += kWindow) {
        const __m256i bytesLow = load(in);
        const __m256i bytesHigh = load(in + kHalf);
        if (highBits(_mm256_or_si256(bytesLow, bytesHigh)) == 0) {
            widen(bytesLow, out);
            widen(bytesHigh, out + kHalf);
            out += kWindow;
            continue;
        }
        const Bytes32 low = classify(in);
        const Bytes32 high = classify(in + kHalf);
        const uint64_t continuations = joined(low._continuations, high._continuations);
        const uint64_t leads = joined(low._leads, high._leads);
        const uint64_t longLeads = joined(low._longLeads, high._longLeads);
        const uint64_t expected = leads << 1 | longLeads << 2 | taken;
        const uint64_t following = isContinuation(in[kWindow]) | isContinuation(in[kWindow + 1])
                                                                     << 1;
        const uint64_t needed = leads >> 63 | longLeads >> 62;
        const uint64_t suspicious = low._suspicious | high._suspicious | (needed & ~following);
        if (continuations != expected || suspicious != 0)
            break;
        taken = needed;
        writeWords(low._units, high._units, ~continuations, out);
    }
    source = in + std::popcount(taken);
    target = out;
}

} // namespace zelmora::platform::ZELMORA_LEVEL

#endif
