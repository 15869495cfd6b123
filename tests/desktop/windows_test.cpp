// The windows: Cancel, drops, alerts in line, the open panel.

#include "desktop_fixture.h"
#include "engine/progress_window.h"
#include "platform/desktop/main_window.h"
#include "platform/desktop/open_panel_dialog.h"
#include "platform/desktop/save_panel_dialog.h"

#include <QAbstractButton>
#include <QClipboard>
#include <QDragEnterEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QPushButton>
#include <QTimer>
#include <QTreeWidget>
#include <gmock/gmock.h>

namespace zelmora::test {
namespace {

struct StayOpen final : ProgressWindowDelegate {
    bool onCancelProgressWindow(ProgressWindow&) override { return false; }
};

TEST_F(DesktopTest, CancelClosesUnlessTheDelegateSaysNo) {
    const std::pair<std::shared_ptr<ProgressWindowDelegate>, bool> cases[] = {
        {nullptr, false},
        {std::make_shared<ProgressWindowDelegate>(), false}, // does not care
        {std::make_shared<StayOpen>(), true}};
    for (const auto& [delegate, staysOpen] : cases) {
        ProgressWindow window(userInterface);
        window.setDelegate(delegate);
        EXPECT_FALSE(window.window().isVisible());
        window.showWindow();
        auto& widget = dynamic_cast<platform::QtWindow&>(window.window()).widget();
        auto* cancel = widget.findChild<QAbstractButton*>("buttonCancel");
        window.cancelButton().setEnabled(false);
        cancel->click();
        EXPECT_TRUE(window.window().isVisible()) << "Cancel was disabled";
        window.cancelButton().setEnabled(true);
        cancel->click();
        EXPECT_EQ(window.window().isVisible(), staysOpen);
    }
}

TEST_F(DesktopTest, DropsOfLocalItemsArriveByteForByte) {
    using Paths = std::vector<std::string>;
    const struct {
        const char* dragged;
        Paths paths; ///< empty: refused
        const char* format = "text/uri-list";
    } cases[] = {
        {"file:///b/\r\nfile:///tmp/a%20b%23.txt\r\n", {"/b/", "/tmp/a b#.txt"}},
        {"file:///tmp/%82%A0.txt\r\n", {"/tmp/\x82\xa0.txt"}},
        {"file:///tmp/%E3%81%82.txt\r\n", {"/tmp/あ.txt"}},
        {"file:///tmp/a.txt\r\nhttps://zelmora.example/a.txt\r\n", {}},
        {"file://elsewhere/tmp/a.txt\r\n", {}},
        {"", {}},
        {"file:///tmp/a.txt\r\n", {}, "text/plain"},
    };
    Paths opened;
    platform::MainWindowActions actions;
    actions.openFiles = [&](const Paths& paths) { opened = paths; };
    actions.quit = [] {};
    platform::MainWindow window(strings, actions);
    for (const auto& [dragged, paths, format] : cases) {
        SCOPED_TRACE(dragged);
        opened.clear();
        QMimeData data;
        data.setData(format, dragged);
        QDragEnterEvent enter({5, 5}, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
        enter.ignore();
        QApplication::sendEvent(&window, &enter);
        EXPECT_EQ(enter.isAccepted(), !paths.empty());
        QDropEvent drop({5, 5}, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
        QApplication::sendEvent(&window, &drop);
        EXPECT_TRUE(paths.empty() || drop.dropAction() == Qt::CopyAction);
        QCoreApplication::processEvents();
        EXPECT_EQ(opened, paths);
    }
}

TEST_F(DesktopTest, AlertsGatherInOneWindowAndTheEndWaitsForIt) {
    for (const int count : {1, 500}) {
        SCOPED_TRACE(count);
        ZelAppController controller(services());
        application.setDelegate(controller);
        QString expected = "<b>one kind\n";
        for (int i = 0; i < count; ++i)
            expected += "\t" + QString::number(i) + "<br>\n";
        const auto tell = [&](int from, int to) {
            for (int i = from; i < to; ++i)
                userInterface.runModal({"<b>one kind", std::to_string(i) + "<br>"});
        };
        auto& queue = application.runLoop().mainQueue();
        queue.async([&] { tell(0, (count + 1) / 2); });
        queue.async([&] { userInterface.terminate(); });
        int dismissals = 0;
        QTimer user;
        QObject::connect(&user, &QTimer::timeout, [&] {
            auto* window =
                dynamic_cast<platform::MessageListWindow*>(QApplication::activeModalWidget());
            if (!window)
                return;
            tell((count + 1) / 2, count); // the rest comes while it is open
            EXPECT_EQ(window->text(), expected);
            EXPECT_EQ(window->findChild<QTreeWidget*>()->isVisible(), count > 1);
            for (const auto* label : window->findChildren<QLabel*>())
                EXPECT_TRUE(!label->pixmap().isNull() || label->textFormat() == Qt::PlainText);
            for (auto* button : window->findChildren<QAbstractButton*>()) {
                if (button->text().contains("Copy"))
                    button->click();
            }
            EXPECT_EQ(QApplication::clipboard()->text(), expected);
            ++dismissals;
            window->accept();
        });
        user.start(5);
        EXPECT_EQ(application.run({}), 0);
        EXPECT_EQ(dismissals, 1);
    }
}

TEST_F(DesktopTest, TheOpenPanelOffersFilesAndFoldersWithAnyNames) {
    for (const char* name : {"b.txt", "\x82\xa0.txt", ".hidden", "z/in.txt"})
        folder.writeFile(name, "");
    const struct {
        platform::OpenPanel panel;
        std::vector<std::string> chosenWithAll;
        bool opensWithNothingChosen;
    } cases[] = {
        {{true, true, true}, {"z", "\x82\xa0.txt", "b.txt"}, false},
        {{true, false, true}, {"\x82\xa0.txt", "b.txt"}, false},
        {{false, true, true}, {"z"}, true},
    };
    for (const auto& [panel, chosen, opensWithNothing] : cases) {
        platform::OpenPanelDialog dialog(panel, nullptr);
        dialog.showFolder(folder.path());
        EXPECT_EQ(!dialog.chosenPaths().empty(), opensWithNothing);
        dialog.findChild<QListWidget*>()->selectAll();
        std::vector<std::string> paths;
        for (const auto& path : dialog.chosenPaths())
            paths.push_back(path.substr(folder.path().size() + 1));
        EXPECT_THAT(paths, ::testing::UnorderedElementsAreArray(chosen));
    }
}

/// Types `text` as the user would, with all its signals.
void type(QLineEdit& edit, const QString& text) {
    edit.selectAll();
    edit.insert(text);
    Q_EMIT edit.textEdited(edit.text());
}

TEST_F(DesktopTest, TheSavePanelAnswersANameOfItsType) {
    const auto place = folder / "\x82\xa0";
    folder.writeFile("\x82\xa0/b.txt", "");
    const struct {
        const char* typed; ///< null: what is offered stays
        const char* name;  ///< null: Save is greyed out
    } cases[] = {{nullptr, "zelmora.txt"}, {"a", "a.txt"},       {"a.TXT", "a.TXT"},
                 {"a.log", "a.log.txt"},   {"日本", "日本.txt"}, {"", nullptr},
                 {"..", nullptr},          {"a/b", nullptr}};
    platform::SavePanel panel{.name = "zelmora", .allowedFileType = "txt"};
    panel.canSelectHiddenExtension = true;
    for (const auto& [typed, name] : cases) {
        SCOPED_TRACE(typed ? typed : "what is offered");
        panel.isExtensionHidden = !panel.isExtensionHidden;
        platform::SavePanelDialog dialog(panel, nullptr);
        dialog.showFolder(place);
        auto& field = *dialog.findChildren<QLineEdit*>().last();
        if (typed)
            type(field, typed);
        const auto* buttons = dialog.findChild<QDialogButtonBox*>();
        EXPECT_EQ(buttons->button(QDialogButtonBox::Save)->isEnabled(), name != nullptr);
        if (!name)
            continue;
        EXPECT_EQ(dialog.chosenPath(), place + "/" + name);
        auto* hides = dialog.findChild<QCheckBox*>();
        hides->setChecked(false);
        hides->setChecked(true);
        EXPECT_FALSE(field.text().endsWith(".txt"));
        hides->setChecked(false);
        EXPECT_EQ(field.text(), name);
        EXPECT_EQ(dialog.chosenPath(), place + "/" + name);
    }
}

TEST_F(DesktopTest, TheSavePanelTakesAnExistingFileOnlyWhenConfirmed) {
    folder.writeFile("\xff.txt", "");
    folder.writeFile("z.txt/in.txt", "");
    platform::SavePanel panel{.name = "", .allowedFileType = "txt"};
    panel.isExtensionHidden = true;
    platform::SavePanelDialog dialog(panel, nullptr);
    dialog.showFolder(folder.path());
    dialog.show();
    EXPECT_FALSE(dialog.windowIcon().pixmap(16).isNull()) << "no icon of the application";
    auto* list = dialog.findChild<QListWidget*>();
    ASSERT_EQ(list->count(), 2);
    list->setCurrentRow(1);
    EXPECT_EQ(dialog.findChildren<QLineEdit*>().last()->text(), "\\xFF");
    EXPECT_EQ(dialog.chosenPath(), folder / "\xff.txt");
    for (const bool confirms : {false, true}) {
        answerBoxes(confirms ? "Yes" : "No");
        QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
        QApplication::sendEvent(list, &enter);
        EXPECT_EQ(dialog.isVisible(), !confirms);
        EXPECT_EQ(std::exchange(boxTexts, {}).size(), 1U);
    }
    dialog.show();
    type(*dialog.findChildren<QLineEdit*>().last(), "z");
    dialog.accept();
    EXPECT_TRUE(dialog.isVisible()) << "a folder is opened";
    EXPECT_EQ(list->count(), 1);
}

} // namespace
} // namespace zelmora::test
