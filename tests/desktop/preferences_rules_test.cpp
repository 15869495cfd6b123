// Bindings, and which controls other settings leave enabled.
#include "preferences_fixture.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QRadioButton>
#include <QRegularExpression>
#include <QStandardItemModel>
#include <cerrno>

namespace zelmora::test {

namespace {

/// Chooses the item with `tag`, as the user does.
void choose(QComboBox& box, int tag) {
    const int row = box.findData(qlonglong{tag});
    box.setCurrentIndex(row);
    Q_EMIT box.activated(row);
}

QRadioButton& radioButton(QWidget& group, int tag) {
    for (auto* button : group.findChildren<QRadioButton*>()) {
        if (button->property("tag").toInt() == tag)
            return *button;
    }
    qFatal("no radio button %d", tag);
}

QWidget& boundWidget(QWidget& window, std::string_view key) {
    for (auto* widget : window.findChildren<QWidget*>()) {
        if (widget->property("settingsKey").toString().toStdString() == key)
            return *widget;
    }
    qFatal("no control of that setting");
}

} // namespace

TEST_F(PreferencesTest, SpeaksBothLanguages) {
    const auto form = QString::fromStdString(readFile(bundle.pathForResource("Preferences", "ui")));
    for (const char* language : {"en", "ja"}) {
        const auto table = bundle.localizedStrings(files, language).value();
        for (const auto& match : QRegularExpression("<string>(.*?)</string>").globalMatch(form))
            EXPECT_TRUE(table.table().contains(match.captured(1).toStdString()))
                << language << ": " << match.captured(1).toStdString();
    }
}

TEST_F(PreferencesTest, ReachesEverySettingAndShowsAndWritesEachCheckBox) {
    for (const auto& key : settings::allKeys()) {
        if (key.type == platform::SettingType::extensionList)
            continue;
        auto& widget = boundWidget(*window, key.name);
        if (key.type != platform::SettingType::boolean)
            continue;
        auto& box = dynamic_cast<QCheckBox&>(widget);
        const bool before = defaults.boolForKey(key.name);
        EXPECT_EQ(box.isChecked(), before) << key.name;
        defaults.setBool(!before, key.name);
        EXPECT_EQ(box.isChecked(), !before) << key.name;
        box.setEnabled(true);
        box.click();
        EXPECT_EQ(defaults.boolForKey(key.name), before) << key.name;
        EXPECT_EQ(savedDefaults()->boolForKey(key.name), before) << key.name;
    }
}

TEST_F(PreferencesTest, ShowsAndWritesEachChoice) {
    defaults.setInteger(1, settings::convertExtension); // enables one of them
    const std::pair<std::string_view, int> lastTags[] = {{settings::encodingCode, 6},
                                                         {settings::lineBreakCode, 4},
                                                         {settings::sjisDeviceCharRead, 1},
                                                         {settings::sjisDeviceCharWrite, 1},
                                                         {settings::actionForCreator, 2},
                                                         {settings::actionForFileType, 2},
                                                         {settings::actionForAddingExtension, 2},
                                                         {settings::convertExtension, 2},
                                                         {settings::actionForDupBackupFiles, 2}};
    for (const auto& [key, lastTag] : lastTags) {
        auto& widget = boundWidget(*window, key);
        auto* box = qobject_cast<QComboBox*>(&widget);
        for (int tag = lastTag; tag >= 0; --tag) {
            if (box)
                choose(*box, tag);
            else
                radioButton(widget, tag).click();
            EXPECT_EQ(defaults.integerForKey(key), tag) << key;
            defaults.setInteger((tag + 1) % (lastTag + 1), key);
            defaults.setInteger(tag, key);
            EXPECT_TRUE(box ? box->currentData() == tag : radioButton(widget, tag).isChecked())
                << key << " " << tag;
        }
    }
}

TEST_F(PreferencesTest, EncodingDecidesAboutMarkByteOrderAndLS) {
    auto& lineBreak = find<QComboBox>("popupLineBreak");
    auto* items = qobject_cast<QStandardItemModel*>(lineBreak.model());
    for (int code = 0; code <= 7; ++code) {
        SCOPED_TRACE(code);
        defaults.setInteger(4, settings::encodingCode);
        defaults.setInteger(4, settings::lineBreakCode);
        defaults.setInteger(code, settings::encodingCode);
        const bool isUnicode = code >= 4 && code <= 6;
        EXPECT_EQ(isEnabled("checkPutBOM"), isUnicode);
        EXPECT_EQ(isEnabled("checkLittleEndian"), code == 5 || code == 6);
        EXPECT_EQ(items->item(lineBreak.findData(4))->isEnabled(), isUnicode);
        EXPECT_EQ(lineBreak.currentData().toInt(), isUnicode ? 4 : 1);
        EXPECT_EQ(savedDefaults()->integerForKey(settings::lineBreakCode), isUnicode ? 4 : 1);
    }
}

TEST_F(PreferencesTest, WritesATextWhenItIsFinished) {
    defaults.setInteger(1, settings::actionForCreator);
    Q_EMIT find<QLineEdit>("editBackup").editingFinished(); // visited only
    EXPECT_EQ(savedDefaults()->stringForKey(settings::backupDataDir), std::nullopt);
    auto& edit = find<QLineEdit>("editCreatorCode");
    edit.insert("ttx");
    edit.setModified(true);
    EXPECT_EQ(defaults.stringForKey(settings::creatorCode), "");
    close(); // while it is being typed
    EXPECT_EQ(savedDefaults()->stringForKey(settings::creatorCode), "ttx");
}

TEST_F(PreferencesTest, TakesTheBackupFolderAndTheLogFileFromPanels) {
    defaults.setBool(true, settings::createLogFile);
    const std::string names[] = {"/tmp/\x82\xA0", "/tmp/ログ/\xFF.txt"};
    for (const auto& answer : {std::optional(names[0]), {names[1]}, {}}) {
        panels.answer = answer;
        find<QAbstractButton>(answer == names[0] ? "buttonBackup" : "buttonLog").click();
    }
    EXPECT_EQ(find<QLineEdit>("editLog").text(), "/tmp/ログ/\\xFF.txt");
    open(); // what is only shown is not written
    close();
    EXPECT_EQ(savedDefaults()->stringForKey(settings::backupDataDir), names[0]);
    EXPECT_EQ(savedDefaults()->stringForKey(settings::logFilePath), names[1]);
}

TEST_F(PreferencesTest, NeverAddsAnEmptyExtension) {
    defaults.setInteger(1, settings::convertExtension);
    auto& edit = find<QLineEdit>("editExtension");
    edit.setText("a/b");
    EXPECT_FALSE(edit.hasAcceptableInput());
    edit.clear();
    EXPECT_FALSE(edit.hasAcceptableInput());
    edit.insert("html");
    edit.setModified(true);
    Q_EMIT edit.editingFinished();
    EXPECT_EQ(savedDefaults()->stringForKey(settings::extensionOfDstFiles), "html");

    defaults.setInteger(0, settings::convertExtension);
    defaults.setObject(std::string(), settings::extensionOfDstFiles);
    defaults.setInteger(1, settings::convertExtension);
    EXPECT_EQ(defaults.stringForKey(settings::extensionOfDstFiles), "txt");
}

TEST_F(PreferencesTest, KeepsWhatAnotherProcessSavesAndTellsOnceThatItCannotSave) {
    const auto other = savedDefaults();
    other->setInteger(2, settings::encodingCode);
    ASSERT_TRUE(other->save(files).ok());
    savingFiles.failEvery("replaceFileAtPath", ENOSPC);
    answerBoxes("OK");
    for (int click = 0; click < 2; ++click)
        find<QCheckBox>("checkLog").click();
    EXPECT_TRUE(runUntil([&] { return !boxTexts.empty(); }));
    EXPECT_EQ(lastList.count("saved.plist"), 1) << lastList.toStdString();
    savingFiles.failEvery("replaceFileAtPath", 0);
    find<QCheckBox>("checkLog").click();
    EXPECT_EQ(find<QComboBox>("popupEncoding").currentData().toInt(), 2);
    EXPECT_FALSE(isEnabled("checkPutBOM"));
    const auto saved = savedDefaults();
    EXPECT_EQ(saved->integerForKey(settings::encodingCode), 2);
    EXPECT_TRUE(saved->boolForKey(settings::createLogFile));
}

} // namespace zelmora::test
