#include "platform/console/terminal_run_loop.h"

#include <array>
#include <csignal>
#include <cstdint>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <unistd.h>

namespace zelmora::platform {

namespace {

// How long a block scheduled for later, and the observers of `beforeWaiting`, may have to wait for
// their turn: progress and its drawing must not stay away while a large file is converted.
constexpr int kLongestWaitMilliseconds = 50;

/// Without those that the process was started to ignore, as nohup does: once blocked they would be
/// kept and read all the same.
sigset_t stoppingSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction action {};
        sigaction(signal, nullptr, &action);
        if (action.sa_handler != SIG_IGN)
            sigaddset(&signals, signal);
    }
    return signals;
}

} // namespace

TerminalRunLoop::TerminalRunLoop() : _wakeUpEvent(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {
    const sigset_t signals = stoppingSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    _signalEvent = signalfd(-1, &signals, SFD_NONBLOCK | SFD_CLOEXEC);
}

TerminalRunLoop::~TerminalRunLoop() {
    close(_signalEvent);
    close(_wakeUpEvent);
}

int TerminalRunLoop::run() {
    for (;;) {
        mainQueue().drain();
        deliverSignals();
        if (_isStopped.exchange(false))
            break;
        notify(beforeWaiting);
        wait();
    }
    notify(exit);
    return _status;
}

void TerminalRunLoop::stop(int status) {
    _status = status;
    _isStopped = true;
    wakeUp();
}

void TerminalRunLoop::deliverSignals() {
    signalfd_siginfo info{};
    while (read(_signalEvent, &info, sizeof info) == sizeof info) {
        if (_signalHandler)
            _signalHandler(static_cast<int>(info.ssi_signo));
    }
}

void TerminalRunLoop::wakeUp() {
    // Fails only when the counter is full, and then the loop is awake already.
    const uint64_t one = 1;
    [[maybe_unused]] const auto written = write(_wakeUpEvent, &one, sizeof one);
}

void TerminalRunLoop::wait() {
    std::array<pollfd, 2> events{pollfd{_wakeUpEvent, POLLIN, 0}, pollfd{_signalEvent, POLLIN, 0}};
    poll(events.data(), events.size(), kLongestWaitMilliseconds);
    // Reset before the queue is looked at again: what is added from now on wakes the next wait.
    uint64_t count = 0;
    [[maybe_unused]] const auto taken = read(_wakeUpEvent, &count, sizeof count);
}

} // namespace zelmora::platform
