// What every test of the engine stands on: settings, the English strings, a folder, a main loop
// and a front-end that remembers what it was shown.
#pragma once

#include "engine/services.h"
#include "platform/defaults/bundle.h"
#include "platform/text/bytes.h"
#include "tests/support/faulty_file_manager.h"
#include "tests/support/temporary_directory.h"

#include <condition_variable>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace zelmora::test {

using Items = std::vector<std::string>;

/// A main loop for a test's own thread.
class TestRunLoop final : public platform::RunLoop {
  public:
    int run() override;
    void stop(int status) override;

    /// Runs blocks until `condition` holds; NO when it still does not after 30 seconds.
    bool runUntil(const std::function<bool()>& condition);

  protected:
    void wakeUp() override;

  private:
    std::mutex _mutex;
    std::condition_variable _changed;
    bool _isAwake = false;
    bool _isStopped = false;
    int _status = 0;
};

/// Remembers alerts, and of each interface it loaded what was done to it, in order.
class RecordingUserInterface final : public platform::UserInterface {
  public:
    void runModal(const platform::Alert& alert) override;
    std::unique_ptr<platform::LoadedInterface> loadInterface(std::string_view name) override;
    std::unique_ptr<platform::ModalSession>
    beginModalSessionForWindow(platform::Window& window) override;
    void terminate() override {}
    void terminateIf(std::function<bool()> isStillWanted) override {
        mayTerminate = std::move(isStillWanted);
    }

    std::vector<platform::Alert> alerts;
    std::vector<std::string> events;    ///< "1 show", "1 label ...": the interface's number, what
    std::function<bool()> mayTerminate; ///< the last wish to quit; null: there was none
    /// The Cancel action of the interface of this number, 1 being the first loaded.
    std::vector<std::function<void()>> cancelActions;
    int openModalSessions = 0;
};

class EngineTest : public ::testing::Test {
  protected:
    EngineTest();
    ~EngineTest() override;

    [[nodiscard]] EngineServices services() {
        return {defaults, files, strings, mainLoop, userInterface};
    }
    /// Texts that the alerts name, one "message|informative text" each.
    [[nodiscard]] std::vector<std::string> alertTexts() const;

    TemporaryDirectory folder;
    platform::UserDefaults defaults;
    FaultyFileManager files{platform::FileManager::defaultManager()};
    platform::LocalizedStrings strings;
    TestRunLoop mainLoop;
    RecordingUserInterface userInterface;
};

} // namespace zelmora::test
