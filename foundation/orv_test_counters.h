// What the tests balance their accounts with. Builds without tests have none of it.
#pragma once

#ifdef ORV_TEST_COUNTERS

#include <cstdint>

namespace zelmora {

/// Library objects that were created and not yet destroyed, on all threads.
[[nodiscard]] int64_t OrvLiveObjectCount() noexcept;

/// How often the mutex of the threads' pools was taken so far.
[[nodiscard]] uint64_t OrvPoolLockCount() noexcept;

} // namespace zelmora

#endif
