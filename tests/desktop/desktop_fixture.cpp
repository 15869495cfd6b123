#include "desktop_fixture.h"

#include <QAbstractButton>
#include <QElapsedTimer>
#include <cstdlib>

namespace zelmora::test {

platform::DesktopApplication& desktopApplication() {
    static char name[] = "desktop_tests";
    static char* arguments[] = {name, nullptr};
    static int count = 1;
    // Kept to the end of the process: Qt does not survive static destructors.
    static auto* application = [] {
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
        return new platform::DesktopApplication(count, arguments);
    }();
    return *application;
}

DesktopTest::DesktopTest() : strings(bundle.localizedStrings(files, "en").value()) {
    settings::registerDefaults(defaults, files, bundle);
    defaults.setBool(false, settings::autoBackup);
    application.installStrings(strings, "en");
    QObject::connect(&_answers, &QTimer::timeout, [this] { answerShownBox(); });
}

AppServices DesktopTest::services() {
    return {{defaults, files, strings, application.runLoop(), userInterface},
            userInterface,
            workspace,
            bundle,
            {},
            nullptr};
}

bool DesktopTest::runUntil(const std::function<bool()>& condition) {
    QElapsedTimer clock;
    clock.start();
    while (!condition()) {
        if (clock.elapsed() > 20'000)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    }
    return true;
}

void DesktopTest::answerBoxes(const std::string& title) {
    _answer = title;
    _answers.start(5);
}

void DesktopTest::answerShownBox() {
    auto* shown = QApplication::activeModalWidget();
    const auto* question = qobject_cast<QMessageBox*>(shown);
    const auto* alerts = dynamic_cast<platform::MessageListWindow*>(shown);
    if (!question && !alerts)
        return;
    for (auto* button : shown->findChildren<QAbstractButton*>()) {
        if (button->text().remove('&').toStdString() != _answer)
            continue;
        lastList = question ? question->text() : alerts->text();
        boxTexts.push_back(lastList.section('\n', 0, 0).toStdString());
        button->click();
        return;
    }
}

} // namespace zelmora::test
