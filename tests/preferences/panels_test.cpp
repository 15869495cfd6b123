// What the panels' answers store.
#include "engine/settings.h"
#include "preferences_fixture.h"

#include <QAbstractButton>
#include <QLineEdit>

namespace zelmora::test {

namespace {

std::string informationDictionary(const std::string& entries) {
    return "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict>" + entries + "</dict></plist>";
}

} // namespace

class PanelsTest : public PreferencesTest {
  protected:
    PanelsTest() {
        defaults.setInteger(1, settings::actionForCreator);
        defaults.setInteger(1, settings::actionForFileType);
        defaults.setBool(true, settings::createLogFile);
    }
    void choose(const char* button, std::optional<std::string> answer) {
        panels.answer = std::move(answer);
        find<QAbstractButton>(button).click();
    }
};

TEST_F(PanelsTest, TakesCodesFromFilesAndBundles) {
    const auto plain = folder.writeFile("plain", "");
    const auto coded = folder.writeFile("coded", "");
    ASSERT_TRUE(files.setHFSCodes({0x54455854, 0x74747880}, coded).ok());
    folder.writeFile("A.app/Contents/Info.plist",
                     informationDictionary("<key>CFBundleSignature</key><string>abcd</string>"
                                           "<key>CFBundlePackageType</key><string>APPL</string>"));
    folder.writeFile("B.app/Contents/Info.plist", informationDictionary(""));
    folder.writeFile("C.app/Contents/Info.plist", "not a list");
    folder.writeFile("D/file", "");
    struct Case {
        std::string path;
        const char* creator;
        const char* type;
    };
    for (const auto& [path, creator, type] :
         {Case{coded, "ttx\u0080", "TEXT"}, Case{plain, "", ""},
          Case{folder / "A.app", "abcd", "APPL"}, Case{folder / "B.app", nullptr, nullptr},
          Case{folder / "C.app", nullptr, nullptr}, Case{folder / "D", nullptr, nullptr},
          Case{folder / "missing", "", ""}}) {
        defaults.setObject(std::string("old"), settings::creatorCode);
        defaults.setObject(std::string("old"), settings::fileType);
        choose("buttonCreatorCode", path);
        choose("buttonTypeCode", path);
        const auto saved = savedDefaults();
        const auto text = [](const char* code) {
            return code ? std::optional<std::string>(code) : std::nullopt;
        };
        EXPECT_EQ(saved->stringForKey(settings::creatorCode), text(creator)) << path;
        EXPECT_EQ(saved->stringForKey(settings::fileType), text(type)) << path;
        EXPECT_EQ(find<QLineEdit>("editCreatorCode").text(), QString(creator)) << path;
    }
    EXPECT_TRUE(panels.lastOpenPanel.canChooseFiles && panels.lastOpenPanel.canChooseDirectories);
}

TEST_F(PanelsTest, TakesTheBackupFolderAndTheLogFile) {
    choose("buttonBackup", "/tmp/バックアップ");
    EXPECT_FALSE(panels.lastOpenPanel.canChooseFiles);
    EXPECT_TRUE(panels.lastOpenPanel.canChooseDirectories);
    choose("buttonLog", "/tmp/log.txt");
    EXPECT_EQ(panels.lastSavePanel.name, "zelmora.log");
    EXPECT_NE(panels.lastSheetParent, nullptr);
    const auto saved = savedDefaults();
    EXPECT_EQ(saved->stringForKey(settings::backupDataDir), "/tmp/バックアップ");
    EXPECT_EQ(saved->stringForKey(settings::logFilePath), "/tmp/log.txt");
    EXPECT_EQ(find<QLineEdit>("editLog").text(), "/tmp/log.txt");
}

TEST_F(PanelsTest, ChangesNothingWhenCancelledOrUnstorable) {
    const auto unstorableCode = folder.writeFile("coded", "");
    ASSERT_TRUE(files.setHFSCodes({1, 1}, unstorableCode).ok());
    struct Case {
        const char* button;
        std::string_view key;
        std::string unstorable;
    };
    for (const auto& [button, key, unstorable] :
         {Case{"buttonCreatorCode", settings::creatorCode, unstorableCode},
          Case{"buttonTypeCode", settings::fileType, unstorableCode},
          Case{"buttonBackup", settings::backupDataDir, "/tmp/\xFF"},
          Case{"buttonLog", settings::logFilePath, "/tmp/\xFF"}}) {
        defaults.setObject(std::string("old"), key);
        choose(button, std::nullopt);
        EXPECT_EQ(defaults.stringForKey(key), "old") << button;
        EXPECT_TRUE(userInterface.alerts.empty()) << button;
        choose(button, unstorable);
        EXPECT_EQ(defaults.stringForKey(key), "old") << button;
        EXPECT_EQ(userInterface.alerts.size(), 1U) << button;
        userInterface.alerts.clear();
    }
}

} // namespace zelmora::test
