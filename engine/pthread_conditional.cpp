#include "engine/pthread_conditional.h"

namespace zelmora {

namespace {

constexpr int64_t nanosecondsPerSecond = 1'000'000'000;

class Lock {
  public:
    explicit Lock(pthread_mutex_t& mutex) : _mutex(mutex) { pthread_mutex_lock(&_mutex); }
    ~Lock() { pthread_mutex_unlock(&_mutex); }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

  private:
    pthread_mutex_t& _mutex;
};

} // namespace

PThreadConditional::PThreadConditional() {
    pthread_cond_init(&_condition, nullptr);
    pthread_mutex_init(&_mutex, nullptr);
}

PThreadConditional::~PThreadConditional() {
    pthread_mutex_destroy(&_mutex);
    pthread_cond_destroy(&_condition);
}

void PThreadConditional::signal() {
    const Lock lock(_mutex);
    _isSignalled = true;
    pthread_cond_signal(&_condition);
}

void PThreadConditional::broadcast() {
    const Lock lock(_mutex);
    ++_broadcastCount;
    pthread_cond_broadcast(&_condition);
}

template<typename WaitOnce>
bool PThreadConditional::waitUntilSignalled(WaitOnce waitOnce) {
    const Lock lock(_mutex);
    const auto broadcastsBefore = _broadcastCount;
    const auto isWoken = [&] { return _isSignalled || _broadcastCount != broadcastsBefore; };
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
    waitUntilSignalled([this] { return pthread_cond_wait(&_condition, &_mutex); });
}

bool PThreadConditional::waitWithTimeout(const timespec& deadline) {
    return waitUntilSignalled(
        [&] { return pthread_cond_timedwait(&_condition, &_mutex, &deadline); });
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
