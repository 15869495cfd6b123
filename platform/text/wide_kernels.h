// Inner loops for processors with wide vectors. A codec works without them; where they may run,
// they take the bulk of its text, many characters at a time and without a branch for each, and stop
// where that is not enough: at a character that needs a closer look or is invalid, or near the end.
// The codec's plain loop takes one window from there.
#pragma once

#include "platform/text/chunks.h"

#include <algorithm>
#include <cstdint>

namespace zelmora::platform {

/// Which kernels run, each of them compiled for what processors have.
enum class WideKernels {
    none,
    avx2,  ///< AVX2, BMI1 and POPCNT
    vbmi2, ///< and AVX-512 with VBMI2, which packs 32 words at once
};

/// The ones that run, at first the best ones that this processor has.
WideKernels wideKernels();

/// Makes `most` run, or the best ones before them that the processor has; for tests. For all
/// threads.
void setWideKernels(WideKernels most);

constexpr std::ptrdiff_t kWindow = 64; ///< bytes or units that a kernel takes at a time
constexpr std::ptrdiff_t kLongestRest = kWindow + 1; ///< that is too short for a kernel

/// The step of a codec (see chunks.h): moves `source` to `stop` or past it with `kernel(in, stop,
/// out)` and `plain(in, pause, out)` in turns, the latter for a window at a time, or for all of it
/// where there are no kernels. false as soon as `plain` answers false. What is too short for the
/// kernel may be left, unless that is all: it may be longer with the next chunk.
template<typename In, typename Out, typename Kernel, typename Plain>
bool convertInTurns(const In*& source, const In* stop, Out*& target, Kernel kernel, Plain plain) {
    const bool isWide = wideKernels() != WideKernels::none;
    const In* in = source;
    Out* out = target;
    bool converts = true;
    while (converts && in < stop) {
        if (isWide)
            kernel(in, stop, out);
        if (in != source && isWide && stop - in <= kLongestRest)
            break;
        converts = plain(in, isWide ? in + std::min(kWindow, stop - in) : stop, out);
    }
    source = in;
    target = out;
    return converts;
}

// Every kernel moves `in` past the whole characters it has taken, never past `stop`, and `out` past
// what it wrote; it reads nothing at `stop` or after it. REQUIRES: `in` is where a character
// begins, and `out` has room for whatever the text up to `stop` and kStraddle more can become, all
// of which may be written to.

/// `cells`: see ShiftJISTable. `isASCII`: whether 5C is the same character in both worlds.
void decodeShiftJISWindows(const char16_t* cells, bool isASCII, const Octet*& in, const Octet* stop,
                           char16_t*& out);

/// `codes`: see EncodeTable. `hasSequences`: leaves whatever may be part of one to the plain loop.
void encodeShiftJISWindows(const uint16_t* codes, bool hasSequences, const char16_t*& in,
                           const char16_t* stop, Octet*& out);

void decodeEUCJPWindows(const Octet*& in, const Octet* stop, char16_t*& out);

/// `isDouble`: whether JIS X 0208 is switched to, ASCII otherwise, before and after. Leaves the
/// other sets to the plain loop.
void decodeISO2022JPWindows(bool& isDouble, const Octet*& in, const Octet* stop, char16_t*& out);

/// Leaves characters of four bytes to the plain loop.
void decodeUTF8Windows(const Octet*& in, const Octet* stop, char16_t*& out);

/// Leaves surrogates to the plain loop.
void encodeUTF8Windows(const char16_t*& in, const char16_t* stop, Octet*& out);

// Each of them once more for each level, to be chosen from by the above.
#define ZELMORA_KERNELS(LEVEL)                                                                     \
    namespace LEVEL {                                                                              \
    decltype(platform::decodeShiftJISWindows) decodeShiftJISWindows;                               \
    decltype(platform::encodeShiftJISWindows) encodeShiftJISWindows;                               \
    decltype(platform::decodeEUCJPWindows) decodeEUCJPWindows;                                     \
    decltype(platform::decodeISO2022JPWindows) decodeISO2022JPWindows;                             \
    decltype(platform::decodeUTF8Windows) decodeUTF8Windows;                                       \
    decltype(platform::encodeUTF8Windows) encodeUTF8Windows;                                       \
    }
ZELMORA_KERNELS(avx2)
ZELMORA_KERNELS(vbmi2)
#undef ZELMORA_KERNELS

} // namespace zelmora::platform
