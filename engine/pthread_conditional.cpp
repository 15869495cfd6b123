#include "engine/pthread_conditional.h"

namespace zelmora {

namespace {

constexpr int64_t nanosecondsPerSecond = 1'000'000'000;

} // namespace

PThreadConditional::PThreadConditional() {
    pthread_cond_init(&_condition, nullptr);
}

PThreadConditional::~PThreadConditional() {
    pthread_cond_destroy(&_condition);
}

void PThreadConditional::signal() {
    const platform::MutexLock lock(_mutex);
    _isSignalled = true;
    pthread_cond_signal(&_condition);
}

void PThreadConditional::broadcast() {
    const platform::MutexLock lock(_mutex);
    ++_broadcastCount;
    pthread_cond_broadcast(&_condition);
}

template<typename WaitOnce>
bool PThreadConditional::waitUntilSignalled(WaitOnce waitOnce) {
    const platform::MutexLock lock(_mutex);
    const auto broadcastsBefore = _broadcastCount;
    const auto isWoken = [&]() REQUIRES(_mutex) {
        return _isSignalled || _broadcastCount != broadcastsBefore;
    };
    while (!isWoken()) {
        // A signal that came at the last moment counts, even if the wait itself ran out.
        if (waitOnce() != 0 && !isWoken())
            return false;
    }
    if (_broadcastCount == broadcastsBefore)
        _isSignalled = false;
    return true;
}

void PThreadConditional::wait() {
    waitUntilSignalled([this] { return pthread_cond_wait(&_condition, _mutex.nativeHandle()); });
}

bool PThreadConditional::waitWithTimeout(const timespec& deadline) {
    return waitUntilSignalled(
        [&] { return pthread_cond_timedwait(&_condition, _mutex.nativeHandle(), &deadline); });
}

bool PThreadConditional::waitWithTimeoutSeconds(int64_t seconds, int64_t nanoseconds) {
    timespec deadline{};
    clock_gettime(CLOCK_REALTIME, &deadline);
    const int64_t nanosecondsInAll = deadline.tv_nsec + nanoseconds;
    deadline.tv_sec += seconds + nanosecondsInAll / nanosecondsPerSecond;
    deadline.tv_nsec = nanosecondsInAll % nanosecondsPerSecond;
    return waitWithTimeout(deadline);
}

} // namespace zelmora
