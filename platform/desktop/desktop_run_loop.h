// The main thread's event loop on the desktop: Qt's.
#pragma once

#include "platform/events/run_loop.h"

#include <QBasicTimer>
#include <QObject>

namespace zelmora::platform {

/// Runs Qt's event loop. Blocks on the main queue run from a posted event, so also in the nested
/// loops of modal windows; observers of `beforeWaiting` are told there too. Needs a QApplication
/// that outlives it. An observer must not post events: a loop that is told of one whenever it is
/// about to sleep never sleeps.
class DesktopRunLoop final : public RunLoop {
  public:
    DesktopRunLoop();

    int run() override;
    void stop(int status) override;

  protected:
    void wakeUp() override;
    void wakeUpLater() override;

  private:
    /// Where the posted events arrive.
    class Receiver final : public QObject {
      public:
        explicit Receiver(DesktopRunLoop& loop) : _loop(loop) {}
        bool event(QEvent* event) override;

      private:
        DesktopRunLoop& _loop;
        QBasicTimer _later;
    };

    Receiver _receiver{*this};
};

} // namespace zelmora::platform
