#include "platform/desktop/desktop_run_loop.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QEvent>

namespace zelmora::platform {

DesktopRunLoop::DesktopRunLoop() {
    QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock,
                     &_receiver, [this] { notify(beforeWaiting); });
}

int DesktopRunLoop::run() {
    const int status = QCoreApplication::exec();
    notify(exit);
    return status;
}

void DesktopRunLoop::stop(int status) {
    // Through the queue, for a loop that is not running yet would not hear it.
    mainQueue().async([status] { QCoreApplication::exit(status); });
}

void DesktopRunLoop::wakeUp() {
    if (!_isAwake.exchange(true))
        QCoreApplication::postEvent(&_receiver, new QEvent(QEvent::User));
}

bool DesktopRunLoop::Receiver::event(QEvent* event) {
    if (event->type() != QEvent::User)
        return QObject::event(event);
    // Before the queue is emptied: what is added from now on posts an event of its own.
    _loop._isAwake = false;
    _loop.mainQueue().drain();
    return true;
}

} // namespace zelmora::platform
