// Requests to end the program that do not come from its own windows.
#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <QTimer>
#include <functional>

namespace zelmora::platform {

/// Hears of SIGINT, SIGTERM, SIGHUP (those that the process was not started to ignore) and the end
/// of the session. Dialogs that keep the program from ending are dismissed from then on, for nobody
/// may be there to do it. A second signal of the same kind ends the process at once. One for the
/// process; main thread; needs a QApplication.
class EndRequests {
  public:
    /// `end` is called on the main thread, from the event loop, for each request.
    explicit EndRequests(std::function<void()> end);
    /// The signals do again what they did.
    ~EndRequests();
    EndRequests(const EndRequests&) = delete;
    EndRequests& operator=(const EndRequests&) = delete;

  private:
    void takeSignals();
    void request();

    std::function<void()> _end;
    QObject _context; ///< whose end is that of the connection to the session's end
    QSocketNotifier _signals;
    QTimer _dismissals;
};

} // namespace zelmora::platform
