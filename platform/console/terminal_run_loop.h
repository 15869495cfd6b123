// The main thread's event loop of a program in a terminal.
#pragma once

#include "platform/events/run_loop.h"

#include <atomic>
#include <functional>

namespace zelmora::platform {

/// Waits for blocks on the main queue and for the signals by which a user or the system asks the
/// program to stop, but for those it was started to ignore; never longer than 50 ms before its
/// observers get another turn. These signals are blocked from the loop's construction on, in this
/// thread and in every thread started later, so make the loop before any thread; they are delivered
/// by the loop, never in the middle of other work.
class TerminalRunLoop : public RunLoop {
  public:
    TerminalRunLoop();
    ~TerminalRunLoop() override;

    int run() override;
    void stop(int status) override;

    /// Called on the main thread, with the signal's number, for each SIGINT, SIGTERM and SIGHUP.
    void setSignalHandler(std::function<void(int)> handler) { _signalHandler = std::move(handler); }
    /// Delivers the signals that have come, without waiting; for long work outside run().
    void deliverSignals();

  protected:
    void wakeUp() override;
    void wakeUpLater() override {} // no wait is longer

  private:
    void wait();

    int _wakeUpEvent; ///< eventfd; readable when there is something on the main queue
    int _signalEvent; ///< signalfd
    std::function<void(int)> _signalHandler;
    std::atomic<bool> _isStopped = false;
    std::atomic<int> _status = 0;
};

} // namespace zelmora::platform
