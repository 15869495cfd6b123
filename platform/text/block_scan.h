// The search every fast pass over text needs: the first unit that matters, many units at a time.
#pragma once

#include <bit>
#include <cstddef>
#include <type_traits>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace zelmora::platform {

/// The offset of the first of the `count` units at `units` that `matters`, at or after `from`;
/// `count` when there is none. `matters` answers by arithmetic alone (| and &, not || and &&):
/// without a branch in it, the fixed-length loop becomes vector code.
template<typename Unit, typename Matters>
[[nodiscard]] size_t findFirstUnit(const Unit* units, size_t count, Matters matters,
                                   size_t from = 0) {
    constexpr size_t kBlock = 32 / sizeof(Unit);
    constexpr size_t kBlocks = 4;             // asked together, as long as none of them matters
    if (from < count && matters(units[from])) // where such units are dense, no block is worth it
        return from;
    const auto matter = [&]<size_t length>(const Unit* block,
                                           std::integral_constant<size_t, length>) {
        Unit any = 0; // as wide as a unit, so that no lane is repacked
        for (size_t i = 0; i < length; ++i)
            any = static_cast<Unit>(any | static_cast<Unit>(matters(block[i])));
        return any != 0;
    };
    size_t offset = from;
    while (count - offset >= kBlocks * kBlock &&
           !matter(units + offset, std::integral_constant<size_t, kBlocks * kBlock>()))
        offset += kBlocks * kBlock;
    while (count - offset >= kBlock &&
           !matter(units + offset, std::integral_constant<size_t, kBlock>()))
        offset += kBlock;
    while (offset < count && !matters(units[offset]))
        ++offset;
    return offset;
}

/// The first `wanted` from `in` on, `end` when there is none.
inline const char16_t* findUnit(const char16_t* in, const char16_t* end, char16_t wanted) {
#if defined(__SSE2__)
    // Compilers do not find the way from a comparison by vectors to the place of a match.
    const __m128i pattern = _mm_set1_epi16(static_cast<short>(wanted));
    for (; end - in >= 8; in += 8) {
        const void* const at = in;
        const __m128i units = _mm_loadu_si128(static_cast<const __m128i*>(at));
        const int matches = _mm_movemask_epi8(_mm_cmpeq_epi16(units, pattern));
        if (matches != 0)
            return in + std::countr_zero(static_cast<unsigned>(matches)) / 2;
    }
#endif
    while (in != end && *in != wanted)
        ++in;
    return in;
}

} // namespace zelmora::platform
