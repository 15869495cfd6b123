// The main thread's event loop, as far as the code that does not know the front-end sees it.
#pragma once

#include "platform/events/main_queue.h"

#include <cstdint>
#include <functional>
#include <map>

namespace zelmora::platform {

/// Runs the main queue and tells its observers when it is about to wait and when it exits. Each
/// front-end derives its own (a terminal's, the desktop's). Main thread only, but for
/// scheduling on mainQueue() and stop().
class RunLoop {
  public:
    enum Activity : uint32_t { beforeWaiting = 0x20, exit = 0x80 };
    using Observer = std::function<void(Activity)>;
    using ObserverID = uint64_t;

    RunLoop();
    /// No longer the main run loop afterwards.
    virtual ~RunLoop();
    RunLoop(const RunLoop&) = delete;
    RunLoop& operator=(const RunLoop&) = delete;

    /// The run loop of the main thread: the one that was made last and still lives; null when the
    /// process has none (a test of a lower floor, for example).
    static RunLoop* mainRunLoop();

    /// Calls `observer` at each of `activities` (a mask of Activity values) until it is removed.
    /// Observers run in the order of their addition and may add and remove observers.
    ObserverID addObserver(uint32_t activities, Observer observer);
    void removeObserver(ObserverID observer);

    MainQueue& mainQueue() { return _mainQueue; }

    /// Runs until stop() was called, then notifies `exit` and returns the status given to stop().
    virtual int run() = 0;
    /// Makes run() return `status` once the block in hand is done; any thread.
    virtual void stop(int status) = 0;

  protected:
    /// For run(): tells the observers of `activity`.
    void notify(Activity activity);
    /// Wakes run() when it waits; any thread.
    virtual void wakeUp() = 0;
    /// Wakes run() within 50 ms when it waits; any thread.
    virtual void wakeUpLater() { wakeUp(); }

  private:
    struct Entry {
        uint32_t activities;
        Observer observer;
    };

    ObserverID _lastObserver = 0;
    std::map<ObserverID, Entry> _observers;
    MainQueue _mainQueue;
};

} // namespace zelmora::platform
