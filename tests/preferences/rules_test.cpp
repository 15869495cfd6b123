// Bindings, and which controls other settings leave enabled.
#include "engine/settings.h"
#include "preferences_fixture.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QRadioButton>
#include <QRegularExpression>
#include <QStandardItemModel>
#include <cerrno>
#include <set>

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

TEST_F(PreferencesTest, ReachesEverySetting) {
    std::set<std::string> missing;
    for (const auto& key : settings::allKeys()) {
        if (key.type != platform::SettingType::extensionList)
            missing.emplace(key.name);
    }
    for (auto* widget : window->findChildren<QWidget*>())
        missing.erase(widget->property("settingsKey").toString().toStdString());
    EXPECT_EQ(missing, std::set<std::string>());
}

TEST_F(PreferencesTest, SpeaksBothLanguages) {
    const platform::Bundle bundle(ZELMORA_RESOURCES);
    const QString form =
        QString::fromStdString(readFile(bundle.pathForResource("Preferences", "ui")));
    static const QRegularExpression text("<string>(.*?)</string>");
    for (const char* language : {"en", "ja"}) {
        const auto table = bundle.localizedStrings(files, language);
        ASSERT_TRUE(table.ok()) << table.error().message;
        for (const auto& match : text.globalMatch(form))
            EXPECT_TRUE(table->table().contains(match.captured(1).toStdString()))
                << language << ": " << match.captured(1).toStdString();
    }
}

TEST_F(PreferencesTest, ShowsAndWritesEachCheckBox) {
    for (const auto& key : settings::allKeys()) {
        if (key.type != platform::SettingType::boolean)
            continue;
        auto& box = dynamic_cast<QCheckBox&>(boundWidget(*window, key.name));
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
    struct Choice {
        std::string_view key;
        int lastTag;
    };
    for (const auto& [key, lastTag] :
         {Choice{settings::encodingCode, 6}, Choice{settings::lineBreakCode, 4},
          Choice{settings::sjisDeviceCharRead, 1}, Choice{settings::sjisDeviceCharWrite, 1},
          Choice{settings::actionForCreator, 2}, Choice{settings::actionForFileType, 2},
          Choice{settings::actionForAddingExtension, 2}, Choice{settings::convertExtension, 2},
          Choice{settings::actionForDupBackupFiles, 2}}) {
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
    struct Case {
        int code;
        const char* enabled;
        bool offersLS;
    };
    auto& lineBreak = find<QComboBox>("popupLineBreak");
    auto* items = qobject_cast<QStandardItemModel*>(lineBreak.model());
    for (const auto& [code, enabled, offersLS] :
         {Case{0, "", false}, Case{1, "", false}, Case{2, "", false}, Case{3, "", false},
          Case{4, "checkPutBOM", true}, Case{5, "checkPutBOM checkLittleEndian", true},
          Case{6, "checkPutBOM checkLittleEndian", true}, Case{7, "", false}}) {
        defaults.setInteger(4, settings::encodingCode);
        defaults.setInteger(4, settings::lineBreakCode);
        defaults.setInteger(code, settings::encodingCode);
        EXPECT_EQ(enabledOf({"checkPutBOM", "checkLittleEndian"}), enabled) << code;
        EXPECT_EQ(items->item(lineBreak.findData(4))->isEnabled(), offersLS) << code;
        EXPECT_EQ(defaults.integerForKey(settings::lineBreakCode), offersLS ? 4 : 1) << code;
        EXPECT_EQ(lineBreak.currentData().toInt(), offersLS ? 4 : 1) << code;
        EXPECT_EQ(savedDefaults()->integerForKey(settings::lineBreakCode), offersLS ? 4 : 1)
            << code;
    }
}

TEST_F(PreferencesTest, ActionsEnableWhatTheyUse) {
    struct Case {
        std::string_view key;
        std::vector<const char*> controls;
        std::vector<bool> enabled; ///< at the values 0, 1, 2
    };
    const std::vector<Case> cases{
        {settings::actionForCreator,
         {"editCreatorCode", "buttonCreatorCode"},
         {false, true, false}},
        {settings::actionForFileType, {"editTypeCode", "buttonTypeCode"}, {false, true, false}},
        {settings::autoBackup, {"buttonBackup", "editBackup", "matrixBackup"}, {false, true}},
        {settings::createLogFile, {"buttonLog", "editLog"}, {false, true}},
        {settings::convertExtension, {"editExtension"}, {false, true, false}},
    };
    for (const auto& [key, controls, enabled] : cases) {
        for (const size_t value : {1U, 0U, 2U}) {
            if (value >= enabled.size())
                continue;
            defaults.setInteger(static_cast<int64_t>(value), key);
            for (const char* control : controls)
                EXPECT_EQ(isEnabled(control), enabled[value]) << control << " " << value;
            open(); // the same at the start
            for (const char* control : controls)
                EXPECT_EQ(isEnabled(control), enabled[value]) << control << " " << value;
        }
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

TEST_F(PreferencesTest, NeverAddsAnEmptyExtension) {
    defaults.setInteger(1, settings::convertExtension);
    auto& edit = find<QLineEdit>("editExtension");
    for (const char* text : {"", ".", "a/b", "tar.gz"}) {
        edit.setText(text);
        EXPECT_FALSE(edit.hasAcceptableInput()) << text;
    }
    type("editExtension", "html");
    EXPECT_EQ(savedDefaults()->stringForKey(settings::extensionOfDstFiles), "html");

    defaults.setInteger(0, settings::convertExtension);
    defaults.setObject(std::string(), settings::extensionOfDstFiles);
    defaults.setInteger(1, settings::convertExtension);
    EXPECT_EQ(defaults.stringForKey(settings::extensionOfDstFiles), "txt");
}

TEST_F(PreferencesTest, KeepsWhatAnotherProcessSaves) {
    const auto other = savedDefaults();
    other->setInteger(2, settings::encodingCode);
    ASSERT_TRUE(other->save(files).ok());
    find<QCheckBox>("checkLog").click();
    EXPECT_EQ(find<QComboBox>("popupEncoding").currentData().toInt(), 2);
    EXPECT_FALSE(isEnabled("checkPutBOM"));
    const auto saved = savedDefaults();
    EXPECT_EQ(saved->integerForKey(settings::encodingCode), 2);
    EXPECT_TRUE(saved->boolForKey(settings::createLogFile));
}

TEST_F(PreferencesTest, TellsOnceThatItCannotSave) {
    files.failEvery("replaceFileAtPath", ENOSPC);
    for (int click = 0; click < 2; ++click)
        find<QCheckBox>("checkLog").click();
    EXPECT_EQ(userInterface.alerts.size(), 1U);
    files.failEvery("replaceFileAtPath", 0);
    find<QCheckBox>("checkLog").click();
    EXPECT_TRUE(savedDefaults()->boolForKey(settings::createLogFile));
}

TEST_F(PreferencesTest, GoesWhenTheApplicationTerminates) {
    close();
    int made = 0;
    const PreferencesServices services{
        defaults, files, strings, userInterface, panels, [this, &made](std::string_view) {
            ++made;
            const auto path =
                platform::Bundle(ZELMORA_RESOURCES).pathForResource("Preferences", "ui");
            return std::move(platform::QtInterface::load(files, path, defaults).value());
        }};
    auto& first = ZelPrefWndController::sharedPrefWndController(services);
    EXPECT_EQ(&ZelPrefWndController::sharedPrefWndController(services), &first);
    auto& center = platform::NotificationCenter::defaultCenter();
    center.post(platform::applicationWillTerminateNotification);
    EXPECT_EQ(made, 1);
    ZelPrefWndController::sharedPrefWndController(services);
    EXPECT_EQ(made, 2);
    center.post(platform::applicationWillTerminateNotification);
}

} // namespace zelmora::test
