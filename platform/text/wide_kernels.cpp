#include "platform/text/wide_kernels.h"

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
bool hasWideVectors() {
#if defined(__x86_64__) && __has_include(<sys/platform/x86.h>)
    return CPU_FEATURE_ACTIVE(AVX2) && CPU_FEATURE_ACTIVE(BMI1) && CPU_FEATURE_ACTIVE(POPCNT);
#else
    return false;
#endif
}

enum class Kernels { unknown, off, on };

constinit std::atomic<Kernels> kernels{Kernels::unknown};

} // namespace

bool usesWideKernels() {
    if (kernels.load(std::memory_order_relaxed) == Kernels::unknown)
        setUsesWideKernels(true);
    return kernels.load(std::memory_order_relaxed) == Kernels::on;
}

void setUsesWideKernels(bool wanted) {
    kernels.store(wanted && hasWideVectors() ? Kernels::on : Kernels::off,
                  std::memory_order_relaxed);
}

} // namespace zelmora::platform
