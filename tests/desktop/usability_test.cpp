// What every window owes to whoever uses it: with a screen reader, in either language, on a small
// screen.

#include "desktop_fixture.h"
#include "platform/desktop/main_window.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QLabel>
#include <QTabBar>
#include <QTabWidget>

namespace zelmora::test {
namespace {

/// A screen of 1024 by 768 without a panel and a title bar.
constexpr QSize kSmallScreen(1024, 700);

template<typename Widget>
std::vector<Widget*> visibleChildren(const QWidget& window) {
    std::vector<Widget*> visible;
    for (auto* widget : window.findChildren<Widget*>()) {
        if (widget->isVisibleTo(&window) && !widget->objectName().startsWith("qt_"))
            visible.push_back(widget);
    }
    return visible;
}

void expectScreenReaderNamesAll(const QWidget& window) {
    for (auto* widget : visibleChildren<QWidget>(window)) {
        if ((widget->focusPolicy() & Qt::TabFocus) == 0)
            continue;
        auto* interface = QAccessible::queryAccessibleInterface(widget);
        EXPECT_FALSE(interface->text(QAccessible::Name).trimmed().isEmpty())
            << widget->objectName().toStdString();
    }
}

/// Whether `widget` has all the room it asks for.
template<typename Widget>
void expectWhole(const QWidget& window) {
    for (const auto* widget : visibleChildren<Widget>(window)) {
        const auto* label = qobject_cast<const QLabel*>(widget);
        const QSize wanted = label && label->wordWrap()
                                 ? QSize(0, label->heightForWidth(label->width()))
                                 : widget->minimumSizeHint().expandedTo(widget->sizeHint());
        EXPECT_LE(wanted.width(), widget->width()) << widget->objectName().toStdString();
        EXPECT_LE(wanted.height(), widget->height()) << widget->objectName().toStdString();
    }
}

void expectTextsAreWhole(const QWidget& window) {
    EXPECT_LE(window.width(), kSmallScreen.width());
    EXPECT_LE(window.height(), kSmallScreen.height());
    expectWhole<QLabel>(window);
    expectWhole<QAbstractButton>(window);
    expectWhole<QComboBox>(window);
    for (const auto* tabs : window.findChildren<QTabWidget*>())
        EXPECT_LE(tabs->tabBar()->sizeHint().width(), tabs->width()) << "not all tabs are seen";
}

class UsabilityTest : public DesktopTest {
  protected:
    static void check(const std::string& name, QWidget& window) {
        SCOPED_TRACE(name);
        window.show();
        QCoreApplication::processEvents();
        expectScreenReaderNamesAll(window);
        expectTextsAreWhole(window);
    }

    static QWidget& widgetOf(platform::LoadedInterface& loaded) {
        return dynamic_cast<platform::QtWindow&>(loaded.window()).widget();
    }
};

TEST_F(UsabilityTest, EveryWindowInBothLanguages) {
    for (const char* language : {"en", "ja"}) {
        SCOPED_TRACE(language);
        strings = bundle.localizedStrings(files, language).value();
        application.installStrings(strings, language);

        platform::MainWindow window(strings, {});
        window.setSummary(strings.stringForKey("PrefDeclarationsInfo"));
        check("main window", window);

        const auto form = userInterface.loadForm("Preferences");
        auto* tabs = widgetOf(*form).findChild<QTabWidget*>();
        for (int tab = 0; tab < tabs->count(); ++tab) {
            tabs->setCurrentIndex(tab);
            check("preferences, " + tabs->tabText(tab).toStdString(), widgetOf(*form));
        }

        const auto progress = userInterface.loadInterface("Progress");
        progress->staticText("staticLabel").setStringValue(strings.stringForKey("RunBackup"));
        check("progress window", widgetOf(*progress));

        platform::MessageListWindow alerts;
        for (int count = 1; count < 3; ++count) {
            alerts.add(strings.stringForKey("FailedBackup"),
                       strings.format("FailedBackupInfo", {"/" + std::string(200, 'x')}));
            check(std::to_string(count) + " alerts", alerts);
        }
    }
}

} // namespace
} // namespace zelmora::test
