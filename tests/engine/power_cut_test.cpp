// The power goes at every moment of a backup and of the conversions after it: whatever the disk
// kept, each text is there, as it was or converted.

#include "engine/backup_manager.h"
#include "engine/document_controller.h"
#include "engine/settings.h"
#include "engine_fixture.h"
#include "power_cut_model.h"

#include <set>

namespace zelmora::test {
namespace {

const Items names = {"a.txt", "b.txt", "sub/c.txt"};

std::string oldText(const std::string& name) {
    return name + " \x95\x5c\n";
}
std::string newText(const std::string& name) {
    return name + " \xe8\xa1\xa8\n";
}

class PowerCutTest : public EngineTest {
  protected:
    PowerCutTest() {
        for (const auto& name : names)
            folder.writeFile("docs/" + name, oldText(name));
        defaults.setBool(true, settings::autoBackup);
        defaults.setObject(folder / "new/backup", settings::backupDataDir);
    }
    [[nodiscard]] EngineServices direct() {
        auto& disk = platform::FileManager::defaultManager();
        return {defaults, disk, strings, mainLoop, userInterface};
    }
    /// Whether each text is there, and nothing else under these names.
    void expectEveryText(const PowerCutModel::Files& left) const {
        for (const auto& name : names) {
            const auto own = "docs/" + name;
            const auto base = own.substr(0, own.size() - 4);
            size_t found = 0;
            for (const auto& each : std::set{own, base + extension, base + "#0.txt"}) {
                if (!left.contains(each))
                    continue;
                // Under the source's own name, the old text may be, too.
                const auto& text = left.at(each);
                const bool isOld = each == own && text == oldText(name);
                const bool isNew = (each != own || extension == ".txt") && text == newText(name);
                EXPECT_TRUE(isOld || isNew) << each;
                ++found;
            }
            EXPECT_GT(found, 0U) << name << " is gone";
        }
    }
    static void expectBackup(const PowerCutModel::Files& left) {
        for (const auto& name : names) {
            const auto copy = left.find("new/backup/docs/" + name);
            EXPECT_TRUE(copy != left.end() && copy->second == oldText(name)) << name;
        }
    }

    /// Runs the batch and cuts it everywhere.
    void cutEverywhere();

    std::string extension = ".txt"; ///< that a converted file gets
};

void PowerCutTest::cutEverywhere() {
    PowerCutModel model(folder.path());
    BackupManager backups(direct());
    ZelDocumentController controller(direct());
    size_t backedUp = 0;
    {
        const ObservedSystemCalls observed(model);
        ASSERT_TRUE(backups.backupPath(folder / "docs"));
        backedUp = model.moments();
        for (const auto& name : names)
            controller.doConvertProcess(folder / ("docs/" + name));
    }
    ASSERT_EQ(controller.convertedCount(), names.size());
    size_t outcomes = 0;
    for (size_t moment = 0; moment <= model.moments() && !HasFailure(); ++moment) {
        SCOPED_TRACE(moment);
        model.cut(moment, [&](const PowerCutModel::Files& left) {
            ++outcomes;
            expectEveryText(left);
            if (moment >= backedUp)
                expectBackup(left);
        });
    }
    EXPECT_GT(model.moments(), backedUp + 3 * names.size());
    EXPECT_GT(outcomes, model.moments()); // there were moments at which the disk had a choice
}

TEST_F(PowerCutTest, LosesNothing) {
    cutEverywhere();
}

TEST_F(PowerCutTest, LosesNothingWhereNamesChange) {
    extension = ".html";
    defaults.setInteger(1, settings::convertExtension);
    defaults.setObject(std::string("html"), settings::extensionOfDstFiles);
    cutEverywhere();
}

} // namespace
} // namespace zelmora::test
