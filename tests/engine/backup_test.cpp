// Copies of what is handed over, their names, and what happens when none can be made.

#include "engine/backup_manager.h"
#include "engine/document_controller.h"
#include "engine/settings.h"
#include "engine_fixture.h"

#include <cerrno>
#include <gmock/gmock.h>
#include <new>
#include <sys/stat.h>

namespace zelmora::test {
namespace {

using Items = std::vector<std::string>;
using ::testing::EndsWith;
using ::testing::HasSubstr;

class BackupTest : public EngineTest {
  protected:
    BackupTest() {
        defaults.setBool(true, settings::autoBackup);
        defaults.setObject(folder / "backup", settings::backupDataDir);
        defaults.setBool(true, settings::createLogFile);
        defaults.setObject(folder / "log", settings::logFilePath);
    }
    [[nodiscard]] std::string logText() const { return readFile(folder / "log"); }

    BackupManager manager{services()};
};

TEST_F(BackupTest, OffMeansNoWindowNoCopyNoLog) {
    defaults.setBool(false, settings::autoBackup);
    const auto path = folder.writeFile("a.txt", "a");
    EXPECT_TRUE(manager.backupPath(path));
    EXPECT_EQ(folder.items(), Items{"a.txt"});
    EXPECT_EQ(userInterface.events, Items());
}

TEST_F(BackupTest, CopyIsMadeBehindItsWindowAndLogged) {
    folder.writeFile("docs/sub/a.txt", "a");
    EXPECT_TRUE(manager.backupPath(folder / "docs"));
    EXPECT_EQ(readFile(folder / "backup/docs/sub/a.txt"), "a");
    EXPECT_EQ(userInterface.events,
              (Items{"1 show", "1 center", "1 disable", "1 label Making a backup…",
                     "1 indeterminate", "1 threaded", "1 animate", "1 close", "1 gone"}));
    EXPECT_EQ(userInterface.openModalSessions, 0);
    EXPECT_THAT(logText(), EndsWith(" Backup Success Source:" + folder / "docs" +
                                    " Copy:" + folder / "backup/docs" + "\n"));
}

TEST_F(BackupTest, HomeFolderIsExpanded) {
    setenv("HOME", folder.path().c_str(), 1);
    defaults.setObject(std::string("~/kept/here"), settings::backupDataDir);
    EXPECT_TRUE(manager.backupPath(folder.writeFile("a.txt", "a")));
    EXPECT_EQ(readFile(folder / "kept/here/a.txt"), "a");
}

TEST_F(BackupTest, TakenNameFollowsTheSetting) {
    const struct {
        const char* source;
        Items taken;
        int64_t action;
        bool answer;
        const char* copy; ///< where the new copy is; null for no copy
    } cases[] = {
        {"memo.txt", {"memo.txt"}, 0, true, nullptr},
        {"memo.txt", {"memo.txt"}, 1, true, "memo.txt"},
        {"memo.txt", {"memo.txt"}, 2, true, "memo1.txt"},
        {"memo.txt", {"memo.txt", "memo1.txt"}, 2, true, "memo2.txt"},
        {"archive.tar.gz", {"archive.tar.gz"}, 2, true, "archive.tar1.gz"},
        {"README", {"README"}, 2, true, "README1"},
        {"memo.txt", {"memo.txt"}, 3, false, nullptr},
        {"memo.txt", {"memo.txt"}, -1, false, nullptr},
        {"docs.d/x", {"docs.d/old"}, 2, true, "docs.d1/x"},
        {"docs.d/x", {"docs.d/old"}, 1, true, "docs.d/x"},
        {"docs.d/x", {"docs.d/old"}, 0, true, nullptr},
        {"memo.txt", {}, 3, true, "memo.txt"},
    };
    for (const auto& each : cases) {
        const TemporaryDirectory place;
        place.writeFile("in/" + std::string(each.source), "new");
        for (const auto& name : each.taken)
            place.writeFile("backup/" + name, "old");
        const auto itemsBefore = place.items();
        defaults.setObject(place / "backup", settings::backupDataDir);
        defaults.setObject(place / "log/log", settings::logFilePath);
        defaults.setInteger(each.action, settings::actionForDupBackupFiles);
        const auto source = std::string(each.source);
        const auto item = place / ("in/" + source.substr(0, source.find('/')));
        EXPECT_EQ(manager.backupPath(item), each.answer) << source << " " << each.action;
        if (each.copy != nullptr) {
            EXPECT_EQ(readFile(place / ("backup/" + std::string(each.copy))), "new") << each.copy;
        }
        for (const auto& name : each.action == 1 ? Items() : each.taken)
            EXPECT_EQ(readFile(place / ("backup/" + name)), "old") << name << each.action;
        const bool isLogged = readFile(place / "log/log") != "<none>";
        EXPECT_EQ(isLogged, each.copy != nullptr || !each.answer) << source << " " << each.action;
        if (!isLogged) {
            EXPECT_EQ(place.items(), itemsBefore) << source;
        }
    }
}

TEST_F(BackupTest, ImpossibleBackupIsRefusedWithAnAlert) {
    folder.writeFile("in/a.txt", "a");
    folder.writeFile("plain", "");
    const struct {
        const char* what;
        std::string source, backup;
        const char* failing; ///< an operation made to fail, or null
        bool isLogged;
    } cases[] = {
        {"no folder set", folder / "in", "", nullptr, false},
        {"a file where the folder should be", folder / "in", folder / "plain", nullptr, true},
        {"a file above it", folder / "in", folder / "plain/x", nullptr, true},
        {"inside what is backed up", folder / "in", folder / "in/backup", nullptr, true},
        {"no source", folder / "gone", folder / "backup", nullptr, true},
        {"a failing copy", folder / "in", folder / "backup", "copyItemAtPath", true},
    };
    for (const auto& each : cases) {
        userInterface.alerts.clear();
        defaults.setObject(each.backup, settings::backupDataDir);
        if (each.failing != nullptr)
            files.failEvery(each.failing, ENOSPC);
        const auto logBefore = logText();
        EXPECT_FALSE(manager.backupPath(each.source)) << each.what;
        ASSERT_EQ(userInterface.alerts.size(), 1U) << each.what;
        EXPECT_THAT(userInterface.alerts[0].informativeText, HasSubstr(each.source)) << each.what;
        EXPECT_EQ(logText() != logBefore, each.isLogged) << each.what;
        EXPECT_EQ(userInterface.openModalSessions, 0) << each.what;
    }
    files.setHook([](const FaultyFileManager::Operation& operation) {
        if (operation.name == "copyItemAtPath")
            throw std::bad_alloc();
    });
    EXPECT_FALSE(manager.backupPath(folder / "in")) << "memory runs out";
    EXPECT_EQ(userInterface.alerts.size(), 2U) << "memory runs out";
    EXPECT_THAT(logText(), ::testing::Not(HasSubstr("Success")));
    EXPECT_EQ(readFile(folder / "in/a.txt"), "a");
}

TEST_F(BackupTest, ReplacingNeverDeletesTheSourceItself) {
    defaults.setInteger(1, settings::actionForDupBackupFiles);
    const auto inBackup = folder.writeFile("backup/a.txt", "only copy");
    EXPECT_FALSE(manager.backupPath(inBackup));
    EXPECT_EQ(readFile(inBackup), "only copy");
    const auto nested = folder.writeFile("backup/docs/docs/b.txt", "only copy");
    EXPECT_FALSE(manager.backupPath(folder / "backup/docs/docs"));
    EXPECT_EQ(readFile(nested), "only copy");
}

TEST_F(BackupTest, PathWithoutBackupIsNotQueuedAndTheNextOneIs) {
    folder.writeFile("one/a.txt", "a");
    folder.writeFile("two/b.txt", "b");
    ZelDocumentController controller(services());
    files.failEvery("copyItemAtPath", ENOSPC);
    controller.openDocumentWithContentsOfFile(folder / "one");
    EXPECT_FALSE(controller.wakeupThreadIfNeed());
    EXPECT_EQ(controller.failedCount(), 1U);
    files.failEvery("copyItemAtPath", 0);
    controller.openDocumentWithContentsOfFile(folder / "two");
    EXPECT_TRUE(controller.wakeupThreadIfNeed());
    EXPECT_EQ(readFile(folder / "backup/two/b.txt"), "b");
}

} // namespace
} // namespace zelmora::test
