// Work that other threads leave for the main thread.
#pragma once

#include "platform/threads/mutex.h"

#include <deque>
#include <functional>

namespace zelmora::platform {

/// A queue of blocks that run on the main thread, in the order they were scheduled. The run loop
/// empties it; whoever adds a block wakes the loop through a wake-up given to the constructor.
class MainQueue {
  public:
    using Block = std::function<void()>;

    /// `wakeUp` is called, on the scheduling thread, after each block that async() adds, and
    /// `wakeUpLater` after each that asyncLater() adds. They must be safe on any thread and outlive
    /// the queue.
    MainQueue(std::function<void()> wakeUp, std::function<void()> wakeUpLater);

    MainQueue(const MainQueue&) = delete;
    MainQueue& operator=(const MainQueue&) = delete;

    /// Schedules `block`; any thread. Returns at once.
    void async(Block block);

    /// The same for what is not worth waking the loop at once: it runs within 50 ms of the loop
    /// being idle, or sooner with a block that the loop wakes for.
    void asyncLater(Block block);

    /// Runs the blocks scheduled so far, and those they schedule, until there is none. Main thread
    /// only; a block may call it again (a modal alert does). Answers whether it ran any.
    bool drain();

  private:
    void add(Block block);

    std::function<void()> _wakeUp;
    std::function<void()> _wakeUpLater;
    Mutex _mutex;
    std::deque<Block> _blocks GUARDED_BY(_mutex);
};

} // namespace zelmora::platform
