// Named notifications within the process.
#pragma once

#include "platform/threads/mutex.h"

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace zelmora::platform {

/// Posted on the main thread once, when the application is about to end and the conversion worker
/// has been told to.
inline constexpr std::string_view applicationWillTerminateNotification =
    "ApplicationWillTerminateNotification";

/// Delivers a notification to those who asked for its name, in the order they asked, on the
/// posting thread. Registration and posting are safe on any thread; a handler may add and remove
/// observers.
class NotificationCenter {
  public:
    using Handler = std::function<void()>;
    using ObserverID = uint64_t;

    /// The process's notification centre.
    static NotificationCenter& defaultCenter();

    ObserverID addObserver(std::string_view name, Handler handler);
    /// An unknown or already removed observer is no error. A delivery in progress on another
    /// thread may still reach the handler.
    void removeObserver(ObserverID observer);
    void post(std::string_view name);

  private:
    struct Entry {
        std::string name;
        Handler handler;
    };

    Mutex _mutex;
    ObserverID _lastObserver GUARDED_BY(_mutex) = 0;
    std::map<ObserverID, Entry> _observers GUARDED_BY(_mutex);
};

} // namespace zelmora::platform
