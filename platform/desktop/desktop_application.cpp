#include "platform/desktop/desktop_application.h"

#include "platform/events/notification_center.h"

#include <QIcon>
#include <QLibraryInfo>

namespace zelmora::platform {

DesktopApplication::DesktopApplication(int& argumentCount, char** arguments)
    : _application(argumentCount, arguments) {
    QApplication::setApplicationName("zelmora");
    QApplication::setApplicationDisplayName("Zelmora");
    QApplication::setDesktopFileName("org.zelmora.Zelmora");
    // Not every window manager finds it by the desktop file. By its path: a theme knows it only
    // when it is installed where themes are looked for.
    QApplication::setWindowIcon(
        QIcon(QApplication::applicationDirPath() +
              "/../share/icons/hicolor/scalable/apps/org.zelmora.Zelmora.svg"));
    // The end is the delegate's to decide, not the last window's.
    QApplication::setQuitOnLastWindowClosed(false);
}

void DesktopApplication::installStrings(const LocalizedStrings& strings,
                                        std::string_view language) {
    const auto standard = "qtbase_" + std::string(language);
    if (_standardTexts.load(QString::fromStdString(standard),
                            QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QApplication::installTranslator(&_standardTexts);
    _texts = std::make_unique<StringTableTranslator>(strings);
    QApplication::installTranslator(_texts.get());
}

int DesktopApplication::run(const std::vector<std::string>& paths) {
    _delegate->applicationWillFinishLaunching();
    if (paths.empty())
        _delegate->applicationOpenUntitledFile();
    else
        _delegate->applicationOpenFiles(paths);
    const int status = _runLoop.run();
    _isTerminated = false;
    return status;
}

void DesktopApplication::terminate() {
    if (_isTerminated || _delegate->applicationShouldTerminate() != TerminateReply::now)
        return;
    _isTerminated = true;
    NotificationCenter::defaultCenter().post(applicationWillTerminateNotification);
    _runLoop.stop(0);
}

} // namespace zelmora::platform
