#include "platform/threads/turns.h"

#include <algorithm>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace zelmora::platform {

namespace {

constexpr int kStopped = -1;
constexpr int kTriesAwake = 300; ///< about a tenth of a millisecond
constexpr int kMostThreads = 4;  ///< more would wait for each other's turns

} // namespace

std::optional<int> Turns::take() {
    if (_turn.load() == kStopped)
        return std::nullopt;
    const int part = _next.fetch_add(1);
    return part < _end ? std::optional(part) : std::nullopt;
}

bool Turns::await(int part) {
    // A thread that sleeps takes longer to come back than most turns take.
    for (int tries = 0; tries < kTriesAwake && _turn.load() != part; ++tries)
        std::this_thread::yield();
    for (int turn = _turn.load(); turn != part; turn = _turn.load()) {
        if (turn == kStopped)
            return false;
        _turn.wait(turn);
    }
    return true;
}

void Turns::pass(int part) {
    _turn.compare_exchange_strong(part, part + 1); // unless they have been stopped
    _turn.notify_all();
}

void Turns::stop() {
    _turn.store(kStopped);
    _turn.notify_all();
}

void workInTurns(Turns& turns, const std::function<void()>& work) {
    std::mutex mutex;
    std::exception_ptr thrown; // guarded by it
    const auto guarded = [&] {
        try {
            work();
        } catch (...) {
            turns.stop();
            const std::lock_guard lock(mutex);
            thrown = std::current_exception();
        }
    };
    {
        std::vector<std::jthread> others;
        static const auto processors = static_cast<int>(std::thread::hardware_concurrency());
        const int wanted = std::min({processors, kMostThreads, turns.left()});
        try {
            for (int running = 1; running < wanted; ++running)
                others.emplace_back(guarded);
        } catch (const std::system_error&) { // no more threads: those that there are do it all
        }
        guarded();
    }
    if (thrown)
        std::rethrow_exception(thrown);
}

} // namespace zelmora::platform
