// The windows: Cancel, drops, alerts in line.

#include "desktop_fixture.h"
#include "engine/progress_window.h"
#include "platform/desktop/main_window.h"

#include <QAbstractButton>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QPushButton>
#include <QTimer>

namespace zelmora::test {
namespace {

TEST_F(DesktopTest, CancelClosesAndTellsTheDelegate) {
    struct Delegate final : ProgressWindowDelegate {
        bool onCancelProgressWindow(ProgressWindow&) override { return ++calls > 1; }
        int calls = 0;
    };
    const auto delegate = std::make_shared<Delegate>();
    ProgressWindow window(userInterface);
    window.setDelegate(delegate);
    window.showWindow();
    auto& widget = dynamic_cast<platform::QtWindow&>(window.window()).widget();
    for (const int calls : {1, 2}) {
        widget.findChild<QAbstractButton*>("buttonCancel")->click();
        EXPECT_EQ(delegate->calls, calls);
        EXPECT_EQ(widget.isVisible(), calls == 1) << "the first time, the delegate says no";
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
        {"file:///tmp/a.txt\r\nhttps://zelmora.example/a.txt\r\n", {}},
        {"file://elsewhere/tmp/a.txt\r\n", {}},
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
            ++dismissals;
            window->accept();
        });
        user.start(5);
        EXPECT_EQ(application.run({}), 0);
        EXPECT_EQ(dismissals, 1);
    }
}

} // namespace
} // namespace zelmora::test
