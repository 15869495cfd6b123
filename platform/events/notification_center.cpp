#include "platform/events/notification_center.h"

#include <utility>
#include <vector>

namespace zelmora::platform {

NotificationCenter& NotificationCenter::defaultCenter() {
    static NotificationCenter center;
    return center;
}

NotificationCenter::ObserverID NotificationCenter::addObserver(std::string_view name,
                                                               Handler handler) {
    const MutexLock lock(_mutex);
    _observers.emplace(++_lastObserver, Entry{std::string(name), std::move(handler)});
    return _lastObserver;
}

void NotificationCenter::removeObserver(ObserverID observer) {
    const MutexLock lock(_mutex);
    _observers.erase(observer);
}

void NotificationCenter::post(std::string_view name) {
    // Handlers run unlocked, so that they may add and remove observers.
    std::vector<Handler> handlers;
    {
        const MutexLock lock(_mutex);
        for (const auto& [observer, entry] : _observers) {
            if (entry.name == name)
                handlers.push_back(entry.handler);
        }
    }
    for (const auto& handler : handlers)
        handler();
}

} // namespace zelmora::platform
