// Somebody plants links or goes on writing while a batch runs: nothing outside what was handed over
// is touched, and nothing that was written is lost.

#include "engine/document_controller.h"
#include "engine_fixture.h"

#include <atomic>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>

namespace zelmora::test {
namespace {

using ::testing::HasSubstr;
using HostileTest = EngineTest;

const std::string before = "\x95\x5c\n";
const std::string after = "\xe8\xa1\xa8\n";

TEST_F(HostileTest, ALinkAtTheTemporaryNameIsNotWrittenThrough) {
    const auto victim = folder.writeFile("victim", "kept");
    ZelDocumentController controller(services());
    // There before the name is chosen: the next name is taken. There after that: it is an error.
    for (const bool isEarly : {true, false}) {
        const auto path = folder.writeFile("in/a.txt", before);
        const auto planted = folder / (isEarly ? "in/a#0.txt" : "in/a#1.txt");
        // The first name is tried, found taken, and another one is looked for.
        int triesLeft = isEarly ? 1 : 2;
        files.setHook([&](const FaultyFileManager::Operation& each) {
            if (each.name == (isEarly ? "openFileAtPath" : "finishAtPath") && --triesLeft == 0)
                std::filesystem::create_symlink(victim, planted);
        });
        controller.doConvertProcess(path);
        mainLoop.mainQueue().drain();
        EXPECT_EQ(readFile(victim), "kept");
        EXPECT_TRUE(std::filesystem::is_symlink(planted));
        EXPECT_EQ(readFile(path), isEarly ? after : before);
        EXPECT_EQ(userInterface.alerts.size(), isEarly ? 0U : 1U);
    }
    EXPECT_THAT(userInterface.alerts.at(0).informativeText, HasSubstr("File exists"));
}

TEST_F(HostileTest, AFolderSwappedForALinkDoesNotLeadOutside) {
    // The link that the user hands over is followed, those that come into the way later are not.
    for (const bool isHandedOver : {true, false}) {
        const TemporaryDirectory place;
        for (const auto* name :
             {"in/sub/deep/a.txt", "outside/deep/a.txt", "outside/sub/deep/a.txt"})
            place.writeFile(name, before);
        ZelDocumentController controller(services());
        bool isFinished = false;
        controller.setBatchFinishedHandler([&] { isFinished = true; });
        if (isHandedOver) {
            std::filesystem::create_directory_symlink(place / "outside", place / "link");
            controller.addPath(place / "link/sub");
        } else {
            controller.addPath(place / "in");
            std::filesystem::remove_all(place / "in/sub");
            std::filesystem::create_directory_symlink(place / "outside", place / "in/sub");
        }
        ASSERT_TRUE(controller.wakeupThreadIfNeed());
        ASSERT_TRUE(mainLoop.runUntil([&] { return isFinished; }));
        EXPECT_EQ(readFile(place / "outside/deep/a.txt"), before);
        EXPECT_EQ(readFile(place / "outside/sub/deep/a.txt"), isHandedOver ? after : before);
        EXPECT_EQ(controller.failedCount(), isHandedOver ? 0U : 1U);
    }
    ASSERT_EQ(userInterface.alerts.size(), 1U);
    EXPECT_THAT(userInterface.alerts[0].informativeText, HasSubstr("in/sub/deep/a.txt"));
    EXPECT_THAT(userInterface.alerts[0].informativeText, HasSubstr("Not a directory"));
}

TEST_F(HostileTest, ATextThatIsWrittenToMeanwhileIsLeft) {
    ZelDocumentController controller(services());
    for (const int lines : {1, 300'000}) {
        std::string text;
        for (int i = 0; i < lines; ++i)
            text += before;
        const auto path = folder.writeFile("in/a.txt", text);
        std::atomic<bool> isWritten = false;
        files.setHook([&](const FaultyFileManager::Operation& each) {
            if (each.name == "write" && !isWritten.exchange(true))
                std::ofstream(path, std::ios::app) << before;
        });
        controller.doConvertProcess(path);
        mainLoop.mainQueue().drain();
        EXPECT_TRUE(readFile(path) == text + before) << lines;
        EXPECT_EQ(folder.items(), (Items{"in/", "in/a.txt"}));
        ASSERT_EQ(userInterface.alerts.size(), 1U);
        EXPECT_THAT(userInterface.alerts[0].informativeText,
                    HasSubstr("Resource temporarily unavailable"));
        userInterface.alerts.clear();
    }
}

} // namespace
} // namespace zelmora::test
