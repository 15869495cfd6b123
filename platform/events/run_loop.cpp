#include "platform/events/run_loop.h"

#include <utility>
#include <vector>

namespace zelmora::platform {

namespace {
// The loops alive, newest last. Loops are made and destroyed on the main thread only.
std::vector<RunLoop*> liveLoops;
} // namespace

RunLoop::RunLoop() : _mainQueue([this] { wakeUp(); }, [this] { wakeUpLater(); }) {
    liveLoops.push_back(this);
}

RunLoop::~RunLoop() {
    std::erase(liveLoops, this);
}

RunLoop* RunLoop::mainRunLoop() {
    return liveLoops.empty() ? nullptr : liveLoops.back();
}

RunLoop::ObserverID RunLoop::addObserver(uint32_t activities, Observer observer) {
    _observers.emplace(++_lastObserver, Entry{activities, std::move(observer)});
    return _lastObserver;
}

void RunLoop::removeObserver(ObserverID observer) {
    _observers.erase(observer);
}

void RunLoop::notify(Activity activity) {
    // An observer may add and remove observers: work on a copy, skip what has gone meanwhile.
    const auto observers = _observers;
    for (const auto& [id, entry] : observers) {
        if ((entry.activities & activity) != 0 && _observers.contains(id))
            entry.observer(activity);
    }
}

} // namespace zelmora::platform
