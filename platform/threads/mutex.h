// Mutexes whose use the compiler checks.
#pragma once

#include "platform/threads/thread_annotations.h"

#include <mutex>
#include <pthread.h>
#include <shared_mutex>

namespace zelmora::platform {

/// A mutex, locked by a MutexLock. GUARDED_BY names the fields it guards.
class CAPABILITY("mutex") Mutex {
  public:
    void lock() ACQUIRE() { _mutex.lock(); }
    void unlock() RELEASE() { _mutex.unlock(); }

    /// For a condition variable, which unlocks it while a thread waits.
    pthread_mutex_t* nativeHandle() { return _mutex.native_handle(); }

  private:
    std::mutex _mutex;
};

/// A mutex that several readers may hold at once, or one writer.
class CAPABILITY("mutex") SharedMutex {
  public:
    void lock() ACQUIRE() { _mutex.lock(); }
    void unlock() RELEASE() { _mutex.unlock(); }
    void lockShared() ACQUIRE_SHARED() { _mutex.lock_shared(); }
    void unlockShared() RELEASE_SHARED() { _mutex.unlock_shared(); }

  private:
    std::shared_mutex _mutex;
};

/// Holds a mutex as long as it lives.
template<typename M>
class SCOPED_CAPABILITY Locked {
  public:
    explicit Locked(M& mutex) ACQUIRE(mutex) : _mutex(mutex) { _mutex.lock(); }
    ~Locked() RELEASE() { _mutex.unlock(); }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;

  private:
    M& _mutex;
};

using MutexLock = Locked<Mutex>;
using WriterLock = Locked<SharedMutex>;

/// Holds a SharedMutex for reading as long as it lives.
class SCOPED_CAPABILITY ReaderLock {
  public:
    explicit ReaderLock(SharedMutex& mutex) ACQUIRE_SHARED(mutex) : _mutex(mutex) {
        _mutex.lockShared();
    }
    ~ReaderLock() RELEASE_GENERIC() { _mutex.unlockShared(); }
    ReaderLock(const ReaderLock&) = delete;
    ReaderLock& operator=(const ReaderLock&) = delete;

  private:
    SharedMutex& _mutex;
};

} // namespace zelmora::platform
