// Decoding of ISO-2022-JP in windows of 64 bytes, as far as it switches between ASCII and JIS X
// 0208.
//
// As in the kernels of Shift_JIS and EUC-JP, every byte becomes the cell of a character that would
// begin there, and bit operations find out which ones do: escape sequences turn the bits between
// them on and off; of what is on, every second byte begins a pair.
#include "platform/text/wide_kernels.h"

#if defined(__x86_64__)
#include "platform/text/wide_vectors.h"

#include <algorithm>

namespace zelmora::platform::ZELMORA_LEVEL {
namespace {

constexpr int kLongest = 2; ///< bytes of an escape sequence or a character behind its first one

/// A bit for each byte of a window.
struct Window {
    uint64_t _escapes = 0;  ///< ESC
    uint64_t _toDouble = 0; ///< ESC of a sequence that switches to JIS X 0208
    uint64_t _toASCII = 0;  ///< ESC of one that switches to ASCII
    uint64_t _graphics = 0; ///< neither a control character nor the space
    uint64_t _strange = 0;  ///< SO, SI and what has the high bit, or is before a byte that has

    ZELMORA_WIDE_PART void classify(const Octet* in, int shift);

    uint64_t unordinary() const { return _escapes | _strange; }
    bool isReadable() const { return _escapes == (_toDouble | _toASCII) && _strange == 0; }
};

ZELMORA_WIDE_PART void Window::classify(const Octet* in, int shift) {
    const __m256i first = load(in);
    const __m256i second = load(in + 1);
    const __m256i third = load(in + 2);
    const __m256i escapes = _mm256_cmpeq_epi8(first, bytesOf(0x1B));
    const __m256i letterB = _mm256_cmpeq_epi8(third, bytesOf('B'));
    const __m256i atOrB = _mm256_or_si256(letterB, _mm256_cmpeq_epi8(third, bytesOf('@')));
    const __m256i dollars = _mm256_and_si256(_mm256_cmpeq_epi8(second, bytesOf('$')), atOrB);
    const __m256i parentheses = _mm256_and_si256(_mm256_cmpeq_epi8(second, bytesOf('(')), letterB);
    const __m256i shifts = _mm256_cmpeq_epi8(_mm256_and_si256(first, bytesOf(0xFE)), bytesOf(0x0E));
    _escapes |= highBits(escapes) << shift;
    _toDouble |= highBits(_mm256_and_si256(escapes, dollars)) << shift;
    _toASCII |= highBits(_mm256_and_si256(escapes, parentheses)) << shift;
    _graphics |= highBits(_mm256_cmpgt_epi8(first, bytesOf(0x20))) << shift;
    _strange |= highBits(_mm256_or_si256(_mm256_or_si256(first, second), shifts)) << shift;
}

/// The cells of the characters that would begin at each of 32 bytes: of pairs where `pairs`.
ZELMORA_WIDE_PART Words findCells(const Octet* in, uint64_t pairs) {
    const __m256i first = load(in);
    const __m256i second = _mm256_or_si256(load(in + 1), bytesOf(0x80));
    return joined(chosen(pairs, second, first), chosen(pairs, first, bytesOf(JISTable::kASCII)));
}

constexpr std::ptrdiff_t kNeeded = kWindow + kLongest;

ZELMORA_WIDE_PART Window classify(const Octet* in) {
    Window window;
    window.classify(in, 0);
    window.classify(in + kHalf, kHalf);
    return window;
}

ZELMORA_WIDE_PART void widenWindows(const Octet*& in, const Octet* stop, char16_t*& out) {
    for (; stop - in >= kNeeded && classify(in).unordinary() == 0; in += kWindow) {
        widen(load(in), out);
        widen(load(in + kHalf), out + kHalf);
        out += kWindow;
    }
}

/// Takes a window, and more of them until one is ASCII or not for us, up to `most`; false at such a
/// one and at a code that is no character.
ZELMORA_WIDE_PART bool decodeBatch(bool& isDouble, size_t most, const Octet*& in, const Octet* stop,
                                   char16_t*& out) {
    Batch batch(kJISTable._planes[0], JISTable::kASCII, most, out);
    const Octet* next = in;
    uint64_t on = isDouble ? 1 : 0;
    uint64_t taken = 0; // the bytes of this window that belong to what began before it
    bool isReadable = true;
    for (; stop - next >= kNeeded && !batch.isFull(); next += kWindow) {
        const Window window = classify(next);
        isReadable = window.isReadable();
        if (!isReadable || (!batch.isEmpty() && (on | taken | window.unordinary()) == 0))
            break;
        // A switch to ASCII adds a power of two, which carries through all that is on from there;
        // one to JIS X 0208 takes one away, which borrows from all that is off.
        const uint64_t doubles = window._toASCII - window._toDouble - on;
        const uint64_t escapes = window._escapes;
        const uint64_t others = escapes | escapes << 1 | escapes << 2 | taken;
        const uint64_t canBegin = doubles & window._graphics & ~others;
        const uint64_t seconds = secondBytes(canBegin);
        batch.add(findCells(next, canBegin), findCells(next + kHalf, canBegin >> kHalf),
                  ~(seconds | others));
        // A switch to what is on already leaves no more than its own bit wrong.
        on = ((doubles & ~escapes) | window._toDouble) >> 63;
        taken = (canBegin & ~seconds) >> 63 | escapes >> 63 | escapes >> 62;
    }
    const bool decodes = batch.finish(in, next + std::popcount(taken), out);
    isDouble = !decodes || on != 0; // only a pair can be no character
    return decodes && isReadable;
}

} // namespace

ZELMORA_WIDE void decodeISO2022JPWindows(bool& isDouble, const Octet*& source, const Octet* stop,
                                         char16_t*& target) {
    const Octet* in = source;
    char16_t* out = target;
    bool decodes = true;
    for (size_t most = Batch::kFewest; decodes && stop - in >= kNeeded;
         most = std::min(2 * most, Batch::kMost)) {
        if (!isDouble)
            widenWindows(in, stop, out);
        decodes = decodeBatch(isDouble, most, in, stop, out);
    }
    source = in;
    target = out;
}

} // namespace zelmora::platform::ZELMORA_LEVEL

#endif
