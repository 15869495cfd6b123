// The line in the main window that says what will be done.

#include "app/settings_summary.h"
#include "desktop_fixture.h"
#include "engine/settings.h"
#include "platform/desktop/main_window.h"

namespace zelmora::test {
namespace {

TEST_F(DesktopTest, TheSummaryFollowsTheSettings) {
    const struct {
        int encoding;
        int lineBreak;
        bool isBackedUp;
        const char* english;
        const char* japanese;
    } cases[] = {
        {0, 0, false, "encoding kept, line breaks kept, no backup",
         "文字コードはそのまま、改行はそのまま、バックアップなし"},
        {1, 1, true, "to Shift_JIS, LF, backup on", "Shift_JIS に変換、LF、バックアップあり"},
        {2, 2, true, "to ISO-2022-JP, CR, backup on", "ISO-2022-JP に変換、CR、バックアップあり"},
        {3, 3, false, "to EUC-JP, CRLF, no backup", "EUC-JP に変換、CRLF、バックアップなし"},
        {4, 4, true, "to UTF-8, LS, backup on", "UTF-8 に変換、LS、バックアップあり"},
        {5, 1, false, "to UTF-16, LF, no backup", "UTF-16 に変換、LF、バックアップなし"},
        {6, 0, true, "to UTF-32, line breaks kept, backup on",
         "UTF-32 に変換、改行はそのまま、バックアップあり"},
        {7, 5, true, "encoding kept, line breaks kept, backup on", // what no one can choose
         "文字コードはそのまま、改行はそのまま、バックアップあり"},
    };
    for (const char* language : {"en", "ja"}) {
        const auto words = bundle.localizedStrings(files, language).value();
        platform::MainWindow window(words, {});
        const SettingsSummary summary(defaults, words, application.runLoop(),
                                      [&](const std::string& text) { window.setSummary(text); });
        const auto shown = [&] {
            return window.findChild<QLabel*>("summary")->text().toStdString();
        };
        EXPECT_FALSE(shown().empty());
        for (const auto& each : cases) {
            defaults.setInteger(each.encoding, settings::encodingCode);
            defaults.setInteger(each.lineBreak, settings::lineBreakCode);
            defaults.setBool(each.isBackedUp, settings::autoBackup);
            QCoreApplication::processEvents();
            EXPECT_EQ(shown(), language == std::string("en") ? each.english : each.japanese);
        }
        // The change is told to none that has gone before its turn comes.
        defaults.setInteger(4, settings::encodingCode);
    }
    QCoreApplication::processEvents();
}

} // namespace
} // namespace zelmora::test
