// Process-wide state without an order of destruction.
#pragma once

namespace zelmora {

/// Holds a T that exists before any code runs (with constinit) and is never destroyed: threads may
/// use it while the process ends.
template<typename T>
union Eternal {
    T value;
    constexpr Eternal() : value() {}
    constexpr ~Eternal() {} // NOLINT: must not destroy the value
};

} // namespace zelmora
