// What every window owes to whoever uses it: with the keyboard alone, with a screen reader, in
// either language, in a dark theme, on a small screen.

#include "desktop_fixture.h"
#include "platform/desktop/main_window.h"
#include "platform/desktop/open_panel_dialog.h"
#include "platform/desktop/save_panel_dialog.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QMenuBar>
#include <QTabBar>
#include <QTabWidget>
#include <algorithm>
#include <set>

namespace zelmora::test {
namespace {

/// A screen of 1024 by 768 without a panel and a title bar.
constexpr QSize kSmallScreen(1024, 700);

/// What a failure message calls `widget`.
std::string named(const QWidget& widget) {
    return widget.metaObject()->className() + (" " + widget.objectName()).toStdString() + " \"" +
           widget.property("text").toString().toStdString() + "\"";
}

template<typename Widget>
std::vector<Widget*> visibleChildren(const QWidget& window) {
    std::vector<Widget*> visible;
    for (auto* widget : window.findChildren<Widget*>()) {
        if (widget->isVisibleTo(&window) && !widget->objectName().startsWith("qt_"))
            visible.push_back(widget);
    }
    return visible;
}

/// Those that the Tab key reaches, in its order.
std::vector<QWidget*> tabStops(QWidget& window) {
    std::vector<QWidget*> stops;
    for (auto* widget = window.nextInFocusChain(); widget != &window;
         widget = widget->nextInFocusChain()) {
        if (widget->isVisibleTo(&window) && (widget->focusPolicy() & Qt::TabFocus) != 0)
            stops.push_back(widget);
    }
    return stops;
}

/// The part of `ancestor` that holds `widget`.
const QWidget* partOf(const QWidget& ancestor, const QWidget* widget) {
    while (widget->parentWidget() != &ancestor)
        widget = widget->parentWidget();
    return widget;
}

/// Whether a reader comes to `later` before `earlier`.
bool isOutOfOrder(const QWidget& earlier, const QWidget& later) {
    const auto* ancestor = earlier.parentWidget();
    while (!ancestor->isAncestorOf(&later))
        ancestor = ancestor->parentWidget();
    const QRect first = partOf(*ancestor, &earlier)->geometry();
    const QRect second = partOf(*ancestor, &later)->geometry();
    return second.bottom() <= first.top() ||
           (second.top() < first.bottom() && second.right() <= first.left());
}

void expectDistinctMnemonics(const QStringList& texts) {
    std::set<QKeySequence> taken;
    for (const auto& text : texts) {
        const auto mnemonic = QKeySequence::mnemonic(text);
        EXPECT_TRUE(mnemonic.isEmpty() || taken.insert(mnemonic).second)
            << text.toStdString() << ": its key is taken";
    }
}

void expectKeyboardReachesAll(QWidget& window) {
    const auto stops = tabStops(window);
    for (size_t i = 1; i < stops.size(); ++i)
        EXPECT_FALSE(isOutOfOrder(*stops[i - 1], *stops[i]))
            << named(*stops[i]) << " comes after " << named(*stops[i - 1]);
    QStringList texts;
    for (const auto* label : visibleChildren<QLabel>(window)) {
        if (label->buddy())
            texts += label->text();
    }
    for (const auto* button : visibleChildren<QAbstractButton>(window))
        texts += button->text();
    for (const auto* group : visibleChildren<QGroupBox>(window))
        texts += group->title();
    for (const auto* tabs : window.findChildren<QTabWidget*>()) {
        for (int i = 0; i < tabs->count(); ++i)
            texts += tabs->tabText(i);
    }
    expectDistinctMnemonics(texts);
}

void expectScreenReaderNamesAll(QWidget& window) {
    for (auto* widget : tabStops(window)) {
        if (widget->objectName().startsWith("qt_")) // the tab bar, which reads its tabs
            continue;
        auto* interface = QAccessible::queryAccessibleInterface(widget);
        EXPECT_FALSE(interface->text(QAccessible::Name).trimmed().isEmpty()) << named(*widget);
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
        EXPECT_LE(wanted.width(), widget->width()) << named(*widget);
        EXPECT_LE(wanted.height(), widget->height()) << named(*widget);
    }
}

void expectTextsAreWhole(const QWidget& window) {
    EXPECT_LE(window.width(), kSmallScreen.width());
    EXPECT_LE(window.height(), kSmallScreen.height());
    expectWhole<QLabel>(window);
    expectWhole<QAbstractButton>(window);
    expectWhole<QComboBox>(window);
    for (const auto* group : visibleChildren<QGroupBox>(window))
        EXPECT_LE(group->minimumSizeHint().width(), group->width()) << group->title().toStdString();
    for (const auto* tabs : window.findChildren<QTabWidget*>())
        EXPECT_LE(tabs->tabBar()->sizeHint().width(), tabs->width()) << "not all tabs are seen";
}

void expectColoursAreTheThemes(const QWidget& window) {
    for (const auto* widget : window.findChildren<QWidget*>()) {
        EXPECT_TRUE(widget->styleSheet().isEmpty()) << named(*widget);
        EXPECT_FALSE(widget->testAttribute(Qt::WA_SetPalette)) << named(*widget);
    }
}

class UsabilityTest : public DesktopTest {
  protected:
    static void check(const std::string& name, QWidget& window) {
        SCOPED_TRACE(name);
        window.show();
        QCoreApplication::processEvents();
        expectKeyboardReachesAll(window);
        expectScreenReaderNamesAll(window);
        expectTextsAreWhole(window);
        expectColoursAreTheThemes(window);
    }

    static QWidget& widgetOf(platform::LoadedInterface& loaded) {
        return dynamic_cast<platform::QtWindow&>(loaded.window()).widget();
    }

    static void checkMenus(const platform::MainWindow& window) {
        QStringList titles;
        for (const auto* action : window.menuBar()->actions()) {
            titles += action->text();
            QStringList items;
            for (const auto* item : action->menu()->actions())
                items += item->text();
            expectDistinctMnemonics(items);
        }
        expectDistinctMnemonics(titles);
    }
};

TEST_F(UsabilityTest, EveryWindowInBothLanguages) {
    folder.writeFile("a.txt", "");
    for (const char* language : {"en", "ja"}) {
        SCOPED_TRACE(language);
        strings = bundle.localizedStrings(files, language).value();
        application.installStrings(strings, language);

        platform::MainWindow window(strings, {});
        window.setSummary(strings.stringForKey("PrefDeclarationsInfo"));
        check("main window", window);
        checkMenus(window);

        const auto form = userInterface.loadForm("Preferences");
        auto* tabs = widgetOf(*form).findChild<QTabWidget*>();
        for (int tab = 0; tab < tabs->count(); ++tab) {
            tabs->setCurrentIndex(tab);
            check("preferences, " + tabs->tabText(tab).toStdString(), widgetOf(*form));
        }

        const auto progress = userInterface.loadInterface("Progress");
        progress->staticText("staticLabel").setStringValue(strings.stringForKey("RunBackup"));
        check("progress window", widgetOf(*progress));

        platform::OpenPanelDialog open({true, true, true}, nullptr);
        open.showFolder(folder.path());
        check("open panel", open);
        platform::SavePanel panel{.name = "zelmora", .allowedFileType = "txt"};
        panel.canSelectHiddenExtension = true;
        platform::SavePanelDialog save(panel, nullptr);
        save.showFolder(folder.path());
        check("save panel", save);

        platform::MessageListWindow alerts;
        for (int count = 1; count < 40; ++count) {
            alerts.add(strings.stringForKey("FailedBackup"),
                       strings.format("FailedBackupInfo", {"/" + std::string(200, 'x')}));
            if (count < 3 || count == 39)
                check(std::to_string(count) + " alerts", alerts);
        }
    }
}

TEST_F(UsabilityTest, EscapeClosesAndEnterKeepsThePreferencesOpen) {
    const auto form = userInterface.loadForm("Preferences");
    platform::OpenPanelDialog open({true, true, true}, nullptr);
    open.showFolder(folder.path()); // where there is nothing to choose
    platform::SavePanelDialog save({.name = "a"}, nullptr);
    platform::MessageListWindow alerts;
    alerts.add("one", "two");
    const struct {
        QWidget* window;
        bool closesOnEnter;
    } cases[] = {{&widgetOf(*form), false}, {&open, false}, {&save, true}, {&alerts, true}};
    for (const auto& [window, closesOnEnter] : cases) {
        SCOPED_TRACE(window->windowTitle().toStdString());
        const auto press = [window = window](Qt::Key key) {
            window->show();
            QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
            QApplication::sendEvent(window, &event);
        };
        press(Qt::Key_Escape);
        EXPECT_FALSE(window->isVisible());
        press(Qt::Key_Return);
        EXPECT_EQ(window->isVisible(), !closesOnEnter);
        window->hide();
    }
    const auto progress = userInterface.loadInterface("Progress");
    EXPECT_EQ(widgetOf(*progress).findChild<QAbstractButton*>("buttonCancel")->shortcut(),
              QKeySequence(Qt::Key_Escape));
}

} // namespace
} // namespace zelmora::test
