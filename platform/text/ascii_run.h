// The fast path of every codec: a run of characters that are one ASCII byte and one unit, copied a
// block at a time.
#pragma once

#include <array>
#include <cstddef>
#include <cstring>

namespace zelmora::platform {

struct IsNotASCII {
    template<typename Unit>
    bool operator()(Unit unit) const {
        return unit >= 0x80;
    }
};

/// Copies from `in` to `out`, widening or narrowing, up to `stop` or the first unit that `special`
/// holds for, and moves both past what it copied. `special` must hold for all that is not ASCII and
/// answer by arithmetic alone (| and &, not || and &&); it is an object of a class of its own and
/// no function pointer. Then the fixed-length loops become vector code.
template<typename In, typename Out, typename Special>
void copyASCIIRun(const In*& in, const In* stop, Out*& out, Special special) {
    constexpr std::ptrdiff_t kBlock = 32; // GCC unrolls 16 at -O3, and finds no vectors any more
    while (stop - in >= kBlock) {
        std::array<In, kBlock> block;
        std::memcpy(block.data(), in, sizeof block);
        In any = 0;
        for (const In unit : block)
            any = static_cast<In>(any | static_cast<In>(special(unit)));
        if (any != 0)
            break;
        std::array<Out, kBlock> copy;
        for (size_t i = 0; i < kBlock; ++i)
            copy[i] = static_cast<Out>(block[i]);
        std::memcpy(out, copy.data(), sizeof copy);
        in += kBlock;
        out += kBlock;
    }
    while (in < stop && !special(*in))
        *out++ = static_cast<Out>(*in++);
}

} // namespace zelmora::platform
