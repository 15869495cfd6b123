#include "platform/text/wide_kernels.h"

#include <algorithm>
#include <atomic>

#if defined(__x86_64__) && __has_include(<sys/platform/x86.h>)
#define _Bool bool // clang knows it in C only
#include <sys/platform/x86.h>
#undef _Bool
#endif

namespace zelmora::platform {
namespace {

/// What the C library found out when it was loaded; to ask the processor costs microseconds on a
/// virtual machine.
WideKernels bestKernels() {
#if defined(__x86_64__) && __has_include(<sys/platform/x86.h>)
    if (!CPU_FEATURE_ACTIVE(AVX2) || !CPU_FEATURE_ACTIVE(BMI1) || !CPU_FEATURE_ACTIVE(POPCNT))
        return WideKernels::none;
    const bool packs = CPU_FEATURE_ACTIVE(AVX512F) && CPU_FEATURE_ACTIVE(AVX512BW) &&
                       CPU_FEATURE_ACTIVE(AVX512VL) && CPU_FEATURE_ACTIVE(AVX512_VBMI2);
    return packs ? WideKernels::vbmi2 : WideKernels::avx2;
#else
    return WideKernels::none;
#endif
}

constexpr int kUnknown = -1;
constinit std::atomic<int> kernels{kUnknown}; // or a WideKernels

} // namespace

WideKernels wideKernels() {
    if (kernels.load(std::memory_order_relaxed) == kUnknown)
        setWideKernels(WideKernels::vbmi2);
    return static_cast<WideKernels>(kernels.load(std::memory_order_relaxed));
}

void setWideKernels(WideKernels most) {
    kernels.store(static_cast<int>(std::min(most, bestKernels())), std::memory_order_relaxed);
}

// Each kernel's own file defines it for each level.
#if defined(__x86_64__)
#define ZELMORA_RUN(CALL) (wideKernels() == WideKernels::vbmi2 ? vbmi2::CALL : avx2::CALL)
#else
#define ZELMORA_RUN(CALL) static_cast<void>(sizeof((avx2::CALL, 0)))
#endif

void decodeShiftJISWindows(const char16_t* cells, bool isASCII, const Octet*& in, const Octet* stop,
                           char16_t*& out) {
    ZELMORA_RUN(decodeShiftJISWindows(cells, isASCII, in, stop, out));
}

void encodeShiftJISWindows(const uint16_t* codes, bool hasSequences, const char16_t*& in,
                           const char16_t* stop, Octet*& out) {
    ZELMORA_RUN(encodeShiftJISWindows(codes, hasSequences, in, stop, out));
}

void decodeEUCJPWindows(const Octet*& in, const Octet* stop, char16_t*& out) {
    ZELMORA_RUN(decodeEUCJPWindows(in, stop, out));
}

void decodeISO2022JPWindows(bool& isDouble, const Octet*& in, const Octet* stop, char16_t*& out) {
    ZELMORA_RUN(decodeISO2022JPWindows(isDouble, in, stop, out));
}

void decodeUTF8Windows(const Octet*& in, const Octet* stop, char16_t*& out) {
    ZELMORA_RUN(decodeUTF8Windows(in, stop, out));
}

void encodeUTF8Windows(const char16_t*& in, const char16_t* stop, Octet*& out) {
    ZELMORA_RUN(encodeUTF8Windows(in, stop, out));
}

} // namespace zelmora::platform
