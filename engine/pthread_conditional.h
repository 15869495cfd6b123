// A condition that one thread signals and another waits for.
#pragma once

#include "platform/threads/mutex.h"

#include <cstdint>
#include <ctime>
#include <pthread.h>

namespace zelmora {

/// A signal that finds nobody waiting is kept for the next wait, so none is lost between a thread's
/// decision to wait and its waiting; several such signals count as one. Every operation is safe on
/// any thread.
class PThreadConditional {
  public:
    PThreadConditional();
    /// REQUIRES: nobody waits.
    ~PThreadConditional();
    PThreadConditional(const PThreadConditional&) = delete;
    PThreadConditional& operator=(const PThreadConditional&) = delete;

    /// Wakes one waiting thread, or the next to wait.
    void signal();
    /// Wakes all threads that wait now.
    void broadcast();
    /// Blocks until signalled.
    void wait();
    /// Blocks until signalled (YES) or until `deadline`, a time since the epoch, or an error (NO).
    bool waitWithTimeout(const timespec& deadline);
    /// The same, for at most this span from now.
    bool waitWithTimeoutSeconds(int64_t seconds, int64_t nanoseconds);

  private:
    /// Waits as `waitOnce` does (the answer 0: woken) until there is a signal or it fails.
    template<typename WaitOnce>
    bool waitUntilSignalled(WaitOnce waitOnce);

    pthread_cond_t _condition;
    platform::Mutex _mutex;
    bool _isSignalled GUARDED_BY(_mutex) = false; ///< a signal nobody has taken yet
    uint64_t _broadcastCount GUARDED_BY(_mutex) = 0;
};

} // namespace zelmora
