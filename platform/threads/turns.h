// The parts of a whole, worked on side by side and handed on one after the other.
#pragma once

#include <algorithm>
#include <atomic>
#include <functional>
#include <optional>

namespace zelmora::platform {

/// Deals out the parts 0, 1, 2 ... to the threads that ask, and lets each thread hand its part on
/// when all the parts before it have been. What a thread writes in its turn is seen by those whose
/// turn comes later.
class Turns {
  public:
    /// For the parts from `first` up to, but not with, `end`.
    Turns(int first, int end) : _next(first), _turn(first), _end(end) {}

    /// How many parts no thread has.
    [[nodiscard]] int left() const { return std::max(0, _end - _next.load()); }

    /// The next part that no thread has; nullopt when there is none or no more are wanted.
    std::optional<int> take();

    /// Waits for the turn of `part`, which the thread has taken. NO when no more are wanted.
    bool await(int part);

    /// Ends the turn of `part`.
    void pass(int part);

    /// Says that no more are wanted, to the threads that wait too.
    void stop();

  private:
    std::atomic<int> _next;
    std::atomic<int> _turn; ///< the part whose turn it is, or kStopped
    const int _end;
};

/// Calls `work` on this thread and, where there is enough for them to do and threads can be had, on
/// some more: one for each processor, but no more than four in all. Returns when it has returned on
/// all. What `work` throws stops the turns and is thrown here.
void workInTurns(Turns& turns, const std::function<void()>& work);

} // namespace zelmora::platform
