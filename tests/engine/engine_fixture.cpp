#include "engine_fixture.h"

#include "engine/settings.h"
#include "foundation/orv_base.h"
#include "platform/events/notification_center.h"

#include <chrono>

namespace zelmora::test {

int TestRunLoop::run() {
    runUntil([this] { return _isStopped; });
    _isStopped = false;
    return _status;
}

void TestRunLoop::stop(int status) {
    mainQueue().async([this, status] {
        _status = status;
        _isStopped = true;
    });
}

bool TestRunLoop::runUntil(const std::function<bool()>& condition) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    for (;;) {
        mainQueue().drain();
        if (condition())
            return true;
        notify(beforeWaiting);
        std::unique_lock lock(_mutex);
        // A condition may come to hold without a block, so look again now and then.
        _changed.wait_for(lock, std::chrono::milliseconds(5), [this] { return _isAwake; });
        _isAwake = false;
        if (std::chrono::steady_clock::now() > deadline)
            return false;
    }
}

void TestRunLoop::wakeUp() {
    const std::lock_guard lock(_mutex);
    _isAwake = true;
    _changed.notify_all();
}

namespace {

class RecordingInterface final : public platform::LoadedInterface,
                                 private platform::Window,
                                 private platform::StaticText,
                                 private platform::ProgressIndicator,
                                 private platform::Button {
  public:
    RecordingInterface(RecordingUserInterface& owner, size_t number)
        : _owner(owner), _number(number) {}
    ~RecordingInterface() override { note("gone"); }

    Window& window() override { return *this; }
    StaticText& staticText(std::string_view) override { return *this; }
    ProgressIndicator& progressIndicator(std::string_view) override { return *this; }
    Button& button(std::string_view) override { return *this; }

  private:
    [[nodiscard]] bool isVisible() const override { return _isVisible; }
    void show() override {
        _isVisible = true;
        note("show");
    }
    void center() override {}
    void close() override {
        _isVisible = false;
        note("close");
    }
    void setStringValue(const std::string& text) override { note("label " + text); }
    void setDoubleValue(double) override {}
    void setIndeterminate(bool) override {}
    void setUsesThreadedAnimation(bool) override {}
    void startAnimation() override {}
    void setEnabled(bool enabled) override { note(enabled ? "enable" : "disable"); }
    void setAction(std::function<void()> action) override {
        _owner.cancelActions.resize(std::max(_owner.cancelActions.size(), _number));
        _owner.cancelActions[_number - 1] = std::move(action);
    }
    void note(const std::string& event) const {
        _owner.events.push_back(std::to_string(_number) + " " + event);
    }

    RecordingUserInterface& _owner;
    size_t _number;
    bool _isVisible = false;
};

class RecordingSession final : public platform::ModalSession {
  public:
    explicit RecordingSession(int& count) : _count(count) { ++_count; }
    ~RecordingSession() override { --_count; }

  private:
    int& _count;
};

} // namespace

void RecordingUserInterface::runModal(const platform::Alert& alert) {
    alerts.push_back(alert);
}

std::unique_ptr<platform::LoadedInterface>
RecordingUserInterface::loadInterface(std::string_view name) {
    EXPECT_EQ(name, "Progress");
    cancelActions.emplace_back();
    return std::make_unique<RecordingInterface>(*this, cancelActions.size());
}

std::unique_ptr<platform::ModalSession>
RecordingUserInterface::beginModalSessionForWindow(platform::Window&) {
    return std::make_unique<RecordingSession>(openModalSessions);
}

EngineTest::EngineTest() {
    auto& disk = platform::FileManager::defaultManager();
    const platform::Bundle bundle(ZELMORA_RESOURCES);
    settings::registerDefaults(defaults, disk, bundle);
    defaults.setValueForThisRun(false, settings::autoBackup);
    strings = bundle.localizedStrings(disk, "en").value();
    OrvFoundationInitialize();
}

EngineTest::~EngineTest() {
    // Shared objects made with this test's services end with it.
    platform::NotificationCenter::defaultCenter().post(
        platform::applicationWillTerminateNotification);
    OrvFoundationTerminate();
}

std::vector<std::string> EngineTest::alertTexts() const {
    std::vector<std::string> texts;
    for (const auto& alert : userInterface.alerts)
        texts.push_back(alert.messageText + "|" + alert.informativeText);
    return texts;
}

} // namespace zelmora::test
