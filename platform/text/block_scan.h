// The search every fast pass over text needs: the first unit that matters, many units at a time.
#pragma once

#include <cstddef>

namespace zelmora::platform {

/// The offset of the first of the `count` units at `units` that `matters`, at or after `from`;
/// `count` when there is none. `matters` answers by arithmetic alone (| and &, not || and &&):
/// without a branch in it, the fixed-length loop becomes vector code.
template<typename Unit, typename Matters>
[[nodiscard]] size_t findFirstUnit(const Unit* units, size_t count, Matters matters,
                                   size_t from = 0) {
    constexpr size_t kBlock = 32 / sizeof(Unit);
    if (from < count && matters(units[from])) // where such units are dense, no block is worth it
        return from;
    size_t offset = from;
    for (; count - offset >= kBlock; offset += kBlock) {
        Unit any = 0; // as wide as a unit, so that no lane is repacked
        for (size_t i = 0; i < kBlock; ++i)
            any = static_cast<Unit>(any | static_cast<Unit>(matters(units[offset + i])));
        if (any != 0)
            break;
    }
    while (offset < count && !matters(units[offset]))
        ++offset;
    return offset;
}

} // namespace zelmora::platform
