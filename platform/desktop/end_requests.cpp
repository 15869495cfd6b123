#include "platform/desktop/end_requests.h"

#include <QApplication>
#include <QDialog>
#include <QSessionManager>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <sys/eventfd.h>
#include <unistd.h>

namespace zelmora::platform {

namespace {

constexpr int kDismissalMilliseconds = 100;

struct KeptAction {
    int signal;
    struct sigaction before {};
};

// For the signal handler. Not a blocked signal and its descriptor: programs that this one starts,
// as for the manual, would inherit the blocking.
std::atomic<int> signalEvent = -1;
std::array<KeptAction, 3> keptActions{{{SIGINT}, {SIGTERM}, {SIGHUP}}};

void noteSignal(int) {
    const int errorInHand = errno; // of whatever has been interrupted
    const uint64_t one = 1;
    [[maybe_unused]] const auto written = write(signalEvent, &one, sizeof one);
    errno = errorInHand;
}

int openSignalEvent() {
    signalEvent = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    return signalEvent;
}

} // namespace

EndRequests::EndRequests(std::function<void()> end)
    : _end(std::move(end)), _signals(openSignalEvent(), QSocketNotifier::Read) {
    QObject::connect(&_signals, &QSocketNotifier::activated, [this] { takeSignals(); });
    QObject::connect(&_dismissals, &QTimer::timeout, [] {
        if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget()))
            dialog->reject();
    });
    QObject::connect(qApp, &QGuiApplication::commitDataRequest, &_context,
                     [this](QSessionManager& manager) {
                         // The next session has no work left over from this one.
                         manager.setRestartHint(QSessionManager::RestartNever);
                         request();
                     });
    struct sigaction action {};
    action.sa_handler = noteSignal;
    action.sa_flags = SA_RESTART | static_cast<int>(SA_RESETHAND);
    for (auto& [signal, before] : keptActions) {
        sigaction(signal, nullptr, &before);
        if (before.sa_handler != SIG_IGN)
            sigaction(signal, &action, nullptr);
    }
}

EndRequests::~EndRequests() {
    for (const auto& [signal, before] : keptActions)
        sigaction(signal, &before, nullptr);
    close(signalEvent.exchange(-1));
}

void EndRequests::takeSignals() {
    uint64_t count = 0;
    [[maybe_unused]] const auto taken = read(signalEvent, &count, sizeof count);
    request();
}

void EndRequests::request() {
    _dismissals.start(kDismissalMilliseconds);
    _end();
}

} // namespace zelmora::platform
