// Decoding of one- and two-byte codes in windows of 64 bytes.
//
// A window begins with a character. Its bytes become, at every position, the cell that would be
// looked up if a character began there; bit operations on 64-bit masks find out where characters
// do begin; then the first 32 of them are looked up, however long they are. So nothing depends on a
// branch that mixed text would make unpredictable, and the next window is known at once.
#include "platform/text/text_tables.h"
#include "platform/text/wide_kernels.h"

#if defined(__x86_64__)
#include "platform/text/wide_vectors.h"

#include <array>

namespace zelmora::platform {
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

/// Writes the cells of codes that would begin at each of the 32 bytes at `in`, and answers which of
/// them are codes of one byte.
template<typename Encoding>
ZELMORA_WIDE_PART uint64_t findCells(const Octet* in, uint16_t* cells) {
    const __m256i bytes = load(in);
    const __m256i rows = Encoding::rowsOf(bytes);
    const __m256i singles = _mm256_cmpeq_epi8(rows, bytesOf(Encoding::kSingles));
    const __m256i columns = _mm256_blendv_epi8(load(in + 1), bytes, singles);
    storeJoined(columns, rows, cells);
    return highBits(singles);
}

template<typename Encoding>
ZELMORA_WIDE_PART void decodeWindows(const char16_t* table, bool isASCII, const Octet*& source,
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
        if (!lookUp(table, cells.data(), starts, kUsualCount, out))
            break;
        in += std::countr_zero(starts); // 64 when none is left
        out += kUsualCount;
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
