// Decoding of one- and two-byte codes in windows of 64 bytes.
//
// The bytes of a window become, at every position, the cell that would be looked up if a character
// began there; bit operations on 64-bit masks find out where characters do begin. All that one
// window has to tell the next one is whether its first byte ends a pair.
#include "platform/text/text_tables.h"
#include "platform/text/wide_kernels.h"

#if defined(__x86_64__)
#include "platform/text/wide_vectors.h"

#include <array>

namespace zelmora::platform::ZELMORA_LEVEL {
namespace {

struct ShiftJIS {
    static constexpr int kSingles = ShiftJISTable::kSingles;

    /// ShiftJISTable::rowOf for every byte.
    ZELMORA_WIDE_PART static __m256i rowsOf(__m256i bytes) {
        const __m256i folded = _mm256_xor_si256(bytes, bytesOf(0x20));
        const __m256i rows = _mm256_sub_epi8(folded, bytesOf(0xA1));
        return _mm256_min_epu8(rows, bytesOf(kSingles));
    }
};

struct EUCJP {
    static constexpr int kSingles = JISTable::kASCII;

    ZELMORA_WIDE_PART static __m256i rowsOf(__m256i bytes) {
        const __m256i rows = _mm256_xor_si256(bytes, bytesOf(kSingles));
        return _mm256_min_epu8(rows, bytesOf(kSingles));
    }
};

/// Whether one byte of the window is not ASCII, or 5C and `isASCII` is not set.
ZELMORA_WIDE_PART bool hasSpecial(__m256i low, __m256i high, bool isASCII) {
    __m256i special = _mm256_or_si256(low, high);
    if (!isASCII) {
        const __m256i backslash = bytesOf('\\');
        special = _mm256_or_si256(special, _mm256_cmpeq_epi8(low, backslash));
        special = _mm256_or_si256(special, _mm256_cmpeq_epi8(high, backslash));
    }
    return highBits(special) != 0;
}

/// What 32 bytes may be.
struct Codes {
    Words _cells;      ///< of the code that would begin at each byte
    uint64_t _singles; ///< a bit for each that would be a code of one byte
};

template<typename Encoding>
ZELMORA_WIDE_PART Codes findCodes(__m256i bytes, __m256i following) {
    const __m256i rows = Encoding::rowsOf(bytes);
    const __m256i singles = _mm256_cmpeq_epi8(rows, bytesOf(Encoding::kSingles));
    return {joined(_mm256_blendv_epi8(following, bytes, singles), rows), highBits(singles)};
}

constexpr std::ptrdiff_t kNeeded = kWindow + 1; ///< the last byte may begin a pair

ZELMORA_WIDE_PART void widenWindows(bool isASCII, const Octet*& in, const Octet* stop,
                                    char16_t*& out) {
    for (; stop - in >= kNeeded; in += kWindow) {
        const __m256i low = load(in);
        const __m256i high = load(in + kHalf);
        if (hasSpecial(low, high, isASCII))
            return;
        widen(low, out);
        widen(high, out + kHalf);
        out += kWindow;
    }
}

/// Takes a window, and more of them until one is ASCII, up to `most`; false at a code that is no
/// character.
template<typename Encoding>
ZELMORA_WIDE_PART bool decodeBatch(const char16_t* table, bool isASCII, size_t most,
                                   const Octet*& in, const Octet* stop, char16_t*& out) {
    Batch batch(table, Encoding::kSingles, most, out);
    const Octet* next = in;
    uint64_t isInside = 0; // a pair: its first byte was the last one of the window before
    for (; stop - next >= kNeeded && !batch.isFull(); next += kWindow) {
        const __m256i bytesLow = load(next);
        const __m256i bytesHigh = load(next + kHalf);
        if (!batch.isEmpty() && !hasSpecial(bytesLow, bytesHigh, isASCII))
            break;
        const Codes low = findCodes<Encoding>(bytesLow, load(next + 1));
        const Codes high = findCodes<Encoding>(bytesHigh, load(next + kHalf + 1));
        const uint64_t canBegin = ~(low._singles | high._singles << kHalf | isInside);
        const uint64_t seconds = secondBytes(canBegin);
        batch.add(low._cells, high._cells, ~(seconds | isInside));
        isInside = (canBegin & ~seconds) >> (kWindow - 1);
    }
    return batch.finish(in, next + isInside, out);
}

template<typename Encoding>
ZELMORA_WIDE_PART void decodeWindows(const char16_t* table, bool isASCII, const Octet*& source,
                                     const Octet* stop, char16_t*& target) {
    const Octet* in = source;
    char16_t* out = target;
    bool decodes = true;
    for (size_t most = Batch::kFewest; decodes && stop - in >= kNeeded;
         most = std::min(2 * most, Batch::kMost)) {
        widenWindows(isASCII, in, stop, out);
        decodes = decodeBatch<Encoding>(table, isASCII, most, in, stop, out);
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

} // namespace zelmora::platform::ZELMORA_LEVEL

#endif
