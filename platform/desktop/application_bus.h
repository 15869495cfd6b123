// One running instance in the user's session, found over D-Bus.
#pragma once

#include "platform/events/notification_center.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace zelmora::platform {

/// What others on the bus ask of the running instance.
struct ApplicationRequests {
    /// Whether the program still takes requests; it does not once it is about to end.
    std::function<bool()> areTaken;
    std::function<void()> activate; ///< come to the front
    /// Absolute paths, raw bytes, in the order given.
    std::function<void(const std::vector<std::string>&)> open;
};

/// The program's place on the session bus. The instance that has the name org.zelmora.Zelmora
/// implements org.freedesktop.Application there, by which file managers and later starts reach it;
/// paths travel as file URLs with every byte beyond plain ASCII escaped. Main thread; needs a
/// QApplication. Without a session bus all of it does nothing.
class ApplicationBus {
  public:
    /// Connects.
    ApplicationBus();
    ~ApplicationBus();
    ApplicationBus(const ApplicationBus&) = delete;
    ApplicationBus& operator=(const ApplicationBus&) = delete;

    /// Gives `paths` (absolute, raw bytes; with none, the wish that it come to the front) to the
    /// instance that has the name. YES: it has taken them. NO: this process is the one to run. It
    /// has the name now, or there is no bus, or the one that has the name does not take them: it
    /// hangs, or has been about to end for some seconds.
    ///
    /// As long as the other answers at all it is waited for. When it does not, this process leaves
    /// the bus, and the other, should it come to life again, finds it gone and leaves `paths` to
    /// it.
    [[nodiscard]] bool handOver(const std::vector<std::string>& paths);

    /// Answers requests from the event loop, those that came since handOver() included, until the
    /// application terminates: then whoever has had no answer gets an error and finds the name
    /// free. Each is answered before it is carried out.
    void serve(ApplicationRequests requests);

  private:
    class Service;

    void close();

    std::unique_ptr<Service> _service; ///< null: not on the bus, or no longer
    NotificationCenter::ObserverID _terminationObserver;
};

} // namespace zelmora::platform
