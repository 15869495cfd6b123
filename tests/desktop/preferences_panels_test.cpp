// What the panels' answers store.
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
    const auto binary = folder.writeFile("binary", "");
    ASSERT_TRUE(files.setHFSCodes({1, 0xFF}, binary).ok());
    folder.writeFile("A.app/Contents/Info.plist",
                     informationDictionary("<key>CFBundleSignature</key><string>abcd</string>"
                                           "<key>CFBundlePackageType</key><string>APPL</string>"));
    folder.writeFile("B.app/Contents/Info.plist", informationDictionary(""));
    folder.writeFile("C.app/Contents/Info.plist", "not a list");
    folder.writeFile("D/file", "");
    struct Case {
        std::string path;
        std::optional<std::string> creator, type; ///< nullopt: removed
    };
    using namespace std::string_literals;
    for (const auto& [path, creator, type] :
         {Case{coded, "ttx\u0080", "TEXT"}, Case{plain, "", ""},
          Case{binary, "\0\0\0\u00FF"s, "\0\0\0\1"s}, Case{folder / "A.app", "abcd", "APPL"},
          Case{folder / "B.app", std::nullopt, std::nullopt},
          Case{folder / "C.app", std::nullopt, std::nullopt},
          Case{folder / "D", std::nullopt, std::nullopt}, Case{folder / "missing", "", ""}}) {
        defaults.setObject(std::string("old"), settings::creatorCode);
        defaults.setObject(std::string("old"), settings::fileType);
        choose("buttonCreatorCode", path);
        choose("buttonTypeCode", path);
        const auto saved = savedDefaults();
        EXPECT_EQ(saved->stringForKey(settings::creatorCode), creator) << path;
        EXPECT_EQ(saved->stringForKey(settings::fileType), type) << path;
        EXPECT_EQ(find<QLineEdit>("editCreatorCode").text().toStdString(), creator.value_or(""))
            << path;
    }
    EXPECT_TRUE(panels.lastOpenPanel.canChooseFiles && panels.lastOpenPanel.canChooseDirectories);
}

TEST_F(PanelsTest, TakesTheBackupFolderAndTheLogFile) {
    choose("buttonBackup", "/tmp/\x82\xA0");
    EXPECT_FALSE(panels.lastOpenPanel.canChooseFiles);
    EXPECT_TRUE(panels.lastOpenPanel.canChooseDirectories);
    choose("buttonLog", "/tmp/ログ/\xFF.txt");
    EXPECT_EQ(panels.lastSavePanel.name, "zelmora");
    EXPECT_EQ(panels.lastSavePanel.allowedFileType, "txt");
    EXPECT_TRUE(panels.lastSavePanel.isExtensionHidden);
    EXPECT_TRUE(panels.lastSavePanel.canSelectHiddenExtension);
    EXPECT_NE(panels.lastSheetParent, nullptr);
    const auto saved = savedDefaults();
    EXPECT_EQ(saved->stringForKey(settings::backupDataDir), "/tmp/\x82\xA0");
    EXPECT_EQ(saved->stringForKey(settings::logFilePath), "/tmp/ログ/\xFF.txt");
    EXPECT_EQ(find<QLineEdit>("editLog").text(), "/tmp/ログ/\\xFF.txt");
    open();
    close();
    EXPECT_EQ(defaults.stringForKey(settings::logFilePath), "/tmp/ログ/\xFF.txt") << "only shown";
}

TEST_F(PanelsTest, ChangesNothingWhenCancelled) {
    for (const auto& [button, key] : {std::pair{"buttonCreatorCode", settings::creatorCode},
                                      {"buttonTypeCode", settings::fileType},
                                      {"buttonBackup", settings::backupDataDir},
                                      {"buttonLog", settings::logFilePath}}) {
        defaults.setObject(std::string("old"), key);
        choose(button, std::nullopt);
        EXPECT_EQ(defaults.stringForKey(key), "old") << button;
    }
}

} // namespace zelmora::test
