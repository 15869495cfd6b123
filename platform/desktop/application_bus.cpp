#include "platform/desktop/application_bus.h"

#include "platform/text/file_url.h"

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusVirtualObject>
#include <QEventLoop>
#include <QThread>
#include <QTimer>
#include <limits>
#include <optional>
#include <utility>

namespace zelmora::platform {

namespace {

constexpr auto kName = "org.zelmora.Zelmora";
constexpr auto kPath = "/org/zelmora/Zelmora";
constexpr auto kInterface = "org.freedesktop.Application";

// In the platform data of a request: who sent it waits for the answer, and does the work itself
// should it have to give up waiting.
constexpr auto kSenderWaits = "org.zelmora.sender-waits";
// Lets a window come to the front on Wayland; Qt takes it from the environment, too.
constexpr auto kActivationToken = "activation-token";
constexpr auto kTokenVariable = "XDG_ACTIVATION_TOKEN";

constexpr int kPatienceMilliseconds = 5'000; // with an instance that gives no sign of life
constexpr int kAttempts = 50;                // with one that refuses, for it is about to end
constexpr int kPauseMilliseconds = 100;      // between them

QDBusMessage callToOther(const char* path, const char* interface, const char* method) {
    auto call = QDBusMessage::createMethodCall(kName, path, interface, method);
    call.setAutoStartService(false); // one more instance would not help
    return call;
}

/// nullopt: at least one is not a local file.
std::optional<std::vector<std::string>> localPaths(const QStringList& urls) {
    std::vector<std::string> paths;
    for (const auto& url : urls) {
        auto path = pathFromFileURL(url.toStdString());
        if (!path)
            return std::nullopt;
        paths.push_back(std::move(*path));
    }
    return paths;
}

} // namespace

/// The connection and the object on it. Requests come on the main thread.
class ApplicationBus::Service final : public QDBusVirtualObject {
  public:
    explicit Service(const QDBusConnection& bus) : _bus(bus) {
        // Before the name is taken: from then on there are requests.
        _bus.registerVirtualObject(kPath, this);
    }
    ~Service() override {
        // The name first: who is refused because the object is gone asks for the name again.
        _bus.unregisterService(kName);
        _bus.unregisterObject(kPath);
        QDBusConnection::disconnectFromBus(_bus.name());
    }

    bool becomeFirst() { return _bus.registerService(kName); }

    enum class Answer { taken, refused, none };
    /// Passes `paths` on to the instance that has the name.
    Answer ask(const std::vector<std::string>& paths);

    void serve(ApplicationRequests requests) {
        _requests = std::move(requests);
        for (const auto& message : std::exchange(_early, {}))
            answer(message);
    }

    QString introspect(const QString&) const override {
        return R"(<interface name="org.freedesktop.Application">
  <method name="Activate"><arg type="a{sv}" name="platform_data" direction="in"/></method>
  <method name="Open"><arg type="as" name="uris" direction="in"/>
    <arg type="a{sv}" name="platform_data" direction="in"/></method>
  <method name="ActivateAction"><arg type="s" name="action_name" direction="in"/>
    <arg type="av" name="parameter" direction="in"/>
    <arg type="a{sv}" name="platform_data" direction="in"/></method>
</interface>)";
    }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection&) override {
        if (message.interface() != kInterface)
            return false;
        if (_requests.areTaken)
            answer(message);
        else
            _early.push_back(message);
        return true;
    }

  private:
    bool isOtherAlive();

    void answer(const QDBusMessage& message) {
        const auto method = message.member() + "(" + message.signature() + ")";
        const auto arguments = message.arguments();
        if (method == "Activate(a{sv})") {
            if (accept(message))
                _requests.activate();
        } else if (method == "Open(asa{sv})") {
            const auto paths = localPaths(arguments.front().toStringList());
            if (!paths)
                refuse(message, QDBusError::InvalidArgs, "Not all of it is local files.");
            else if (accept(message))
                _requests.open(*paths);
        } else if (method == "ActivateAction(sava{sv})") {
            refuse(message, QDBusError::InvalidArgs, "There is no such action.");
        } else {
            refuse(message, QDBusError::UnknownMethod, "There is no method " + method + ".");
        }
    }

    /// Says that the request will be carried out, if it will.
    bool accept(const QDBusMessage& message) {
        const auto data = qdbus_cast<QVariantMap>(message.arguments().back());
        if (data.contains(kSenderWaits) &&
            !_bus.interface()->isServiceRegistered(message.service()))
            return false;
        if (!_requests.areTaken()) {
            refuse(message, QDBusError::Failed, "Zelmora is about to end.");
            return false;
        }
        if (data.contains(kActivationToken))
            qputenv(kTokenVariable, data.value(kActivationToken).toByteArray());
        if (message.isReplyRequired())
            _bus.send(message.createReply());
        return true;
    }

    void refuse(const QDBusMessage& message, QDBusError::ErrorType type, const QString& why) {
        if (message.isReplyRequired())
            _bus.send(message.createErrorReply(type, why));
    }

    QDBusConnection _bus;
    ApplicationRequests _requests;
    std::vector<QDBusMessage> _early; ///< came before serve()
};

ApplicationBus::Service::Answer
ApplicationBus::Service::ask(const std::vector<std::string>& paths) {
    QVariantList arguments;
    QStringList urls;
    for (const auto& path : paths)
        urls.push_back(QString::fromStdString(fileURLFromPath(path)));
    if (!urls.isEmpty())
        arguments.push_back(urls);
    QVariantMap platformData{{kSenderWaits, true}};
    if (qEnvironmentVariableIsSet(kTokenVariable))
        platformData.insert(kActivationToken, qEnvironmentVariable(kTokenVariable));
    arguments.push_back(platformData);
    auto call = callToOther(kPath, kInterface, urls.isEmpty() ? "Activate" : "Open");
    call.setArguments(arguments);

    const QDBusPendingCallWatcher watcher(_bus.asyncCall(call, std::numeric_limits<int>::max()));
    QEventLoop loop;
    QObject::connect(&watcher, &QDBusPendingCallWatcher::finished, &loop, &QEventLoop::quit);
    while (!watcher.isFinished()) {
        QTimer::singleShot(kPatienceMilliseconds, &loop, &QEventLoop::quit);
        loop.exec();
        if (!watcher.isFinished() && !isOtherAlive() && !watcher.isFinished())
            return Answer::none;
    }
    return watcher.isError() ? Answer::refused : Answer::taken;
}

/// Its main thread may be busy for long; this is answered by another.
bool ApplicationBus::Service::isOtherAlive() {
    const auto answer = _bus.call(callToOther("/", "org.freedesktop.DBus.Peer", "Ping"),
                                  QDBus::Block, kPatienceMilliseconds);
    return answer.type() == QDBusMessage::ReplyMessage;
}

ApplicationBus::ApplicationBus()
    : _terminationObserver(NotificationCenter::defaultCenter().addObserver(
          applicationWillTerminateNotification, [this] { close(); })) {
    // A connection of its own, so that it can be given up without taking it from Qt; its name
    // within the process has to be its own, too.
    const auto name = QString("zelmora-%1").arg(reinterpret_cast<quintptr>(this), 0, 16);
    const auto bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, name);
    if (bus.isConnected())
        _service = std::make_unique<Service>(bus);
}

ApplicationBus::~ApplicationBus() {
    NotificationCenter::defaultCenter().removeObserver(_terminationObserver);
}

bool ApplicationBus::handOver(const std::vector<std::string>& paths) {
    for (int attempt = 0; attempt < kAttempts && _service; ++attempt) {
        if (_service->becomeFirst())
            return false;
        const auto answer = _service->ask(paths);
        if (answer == Service::Answer::taken)
            return true;
        if (answer == Service::Answer::none)
            break;
        QThread::msleep(kPauseMilliseconds);
    }
    close();
    return false;
}

void ApplicationBus::serve(ApplicationRequests requests) {
    if (_service)
        _service->serve(std::move(requests));
}

void ApplicationBus::close() {
    _service.reset();
}

} // namespace zelmora::platform
