// Copies of what is handed over, their names, and what happens when none can be made.

#include "engine/backup_manager.h"
#include "engine/settings.h"
#include "engine_fixture.h"

#include <cerrno>
#include <gmock/gmock.h>
#include <new>

namespace zelmora::test {
namespace {

using ::testing::Contains;
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

TEST_F(BackupTest, CopyIsMadeBehindItsWindowAndLogged) {
    folder.writeFile("docs/sub/a.txt", "a");
    defaults.setBool(false, settings::autoBackup);
    EXPECT_TRUE(manager.backupPath(folder / "docs"));
    EXPECT_EQ(folder.items(), (Items{"docs/", "docs/sub/", "docs/sub/a.txt"}));
    EXPECT_EQ(userInterface.events, Items());

    defaults.setBool(true, settings::autoBackup);
    EXPECT_TRUE(manager.backupPath(folder / "docs"));
    EXPECT_EQ(readFile(folder / "backup/docs/sub/a.txt"), "a");
    EXPECT_EQ(userInterface.events.front(), "1 show");
    EXPECT_EQ(userInterface.events.back(), "1 gone");
    EXPECT_THAT(userInterface.events, Contains("1 disable")) << "a copy cannot be cancelled";
    EXPECT_EQ(userInterface.openModalSessions, 0);
    EXPECT_THAT(logText(), EndsWith(" Backup Success Source:" + folder / "docs" +
                                    " Copy:" + folder / "backup/docs" + "\n"));

    setenv("HOME", folder.path().c_str(), 1);
    defaults.setObject(std::string("~/kept/here"), settings::backupDataDir);
    EXPECT_TRUE(manager.backupPath(folder / "docs"));
    EXPECT_EQ(readFile(folder / "kept/here/docs/sub/a.txt"), "a");
}

TEST_F(BackupTest, TakenNameFollowsTheSetting) {
    const struct {
        std::string source;
        Items taken;
        int64_t action;
        bool answer;
        std::string copy; ///< where the new copy is; empty for no copy
    } cases[] = {
        {"memo.txt", {"memo.txt"}, 0, true, ""},
        {"memo.txt", {"memo.txt"}, 1, true, "memo.txt"},
        {"memo.txt", {"memo.txt", "memo1.txt"}, 2, true, "memo2.txt"},
        {"archive.tar.gz", {"archive.tar.gz"}, 2, true, "archive.tar1.gz"},
        {"memo.txt", {"memo.txt"}, 3, false, ""},
        {"memo.txt", {}, 3, true, "memo.txt"},
        {"docs.d/x", {"docs.d/old"}, 2, true, "docs.d1/x"},
        {"docs.d/x", {"docs.d/old"}, 1, true, "docs.d/x"},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.source + " " + std::to_string(each.action));
        const TemporaryDirectory place;
        place.writeFile("in/" + each.source, "new");
        for (const auto& name : each.taken)
            place.writeFile("backup/" + name, "old");
        const auto itemsBefore = place.items();
        defaults.setObject(place / "backup", settings::backupDataDir);
        defaults.setObject(place / "log/log", settings::logFilePath);
        defaults.setInteger(each.action, settings::actionForDupBackupFiles);
        const auto item = place / ("in/" + each.source.substr(0, each.source.find('/')));
        EXPECT_EQ(manager.backupPath(item), each.answer);
        EXPECT_TRUE(each.copy.empty() || readFile(place / ("backup/" + each.copy)) == "new");
        for (const auto& name : each.action == 1 ? Items() : each.taken)
            EXPECT_EQ(readFile(place / ("backup/" + name)), "old") << name;
        // What is neither copied nor refused leaves no trace.
        EXPECT_EQ(place.items() != itemsBefore, !each.copy.empty() || !each.answer);
        EXPECT_EQ(readFile(place / "log/log") != "<none>", !each.copy.empty() || !each.answer);
    }
}

TEST_F(BackupTest, ImpossibleBackupIsRefusedWithAnAlert) {
    folder.writeFile("in/a.txt", "a");
    folder.writeFile("plain", "");
    const struct {
        const char* what;
        std::string source, backup;
        std::function<void(const FaultyFileManager::Operation&)> hook;
    } cases[] = {
        {"no folder set", folder / "in", "", nullptr},
        {"a file above it", folder / "in", folder / "plain/x", nullptr},
        {"inside what is backed up", folder / "in", folder / "in/backup", nullptr},
        {"no source", folder / "gone", folder / "backup", nullptr},
        {"memory runs out", folder / "in", folder / "backup",
         [](const auto& operation) {
             if (operation.name == "copyItemAtPath")
                 throw std::bad_alloc();
         }},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.what);
        userInterface.alerts.clear();
        defaults.setObject(each.backup, settings::backupDataDir);
        files.setHook(each.hook);
        const auto logBefore = logText();
        EXPECT_FALSE(manager.backupPath(each.source));
        ASSERT_EQ(userInterface.alerts.size(), 1U);
        EXPECT_THAT(userInterface.alerts[0].informativeText, HasSubstr(each.source));
        EXPECT_EQ(logText() != logBefore, !each.backup.empty());
        EXPECT_EQ(userInterface.openModalSessions, 0);
    }
    EXPECT_THAT(logText(), ::testing::Not(HasSubstr("Success")));
    EXPECT_EQ(readFile(folder / "in/a.txt"), "a");
}

TEST_F(BackupTest, ReplacingNeverDeletesTheSourceItself) {
    defaults.setInteger(1, settings::actionForDupBackupFiles);
    for (const std::string name : {"backup/a.txt", "backup/docs/docs"}) {
        const auto source = folder.writeFile(name, "only copy");
        EXPECT_FALSE(manager.backupPath(source));
        EXPECT_EQ(readFile(source), "only copy");
    }
}

} // namespace
} // namespace zelmora::test
