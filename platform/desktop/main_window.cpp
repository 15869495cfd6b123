#include "platform/desktop/main_window.h"

#include "platform/text/file_url.h"

#include <QCloseEvent>
#include <QDropEvent>
#include <QFrame>
#include <QMenuBar>
#include <QMimeData>
#include <QUrl>
#include <QVBoxLayout>
#include <optional>

namespace zelmora::platform {

namespace {

/// The paths of what is dragged; nullopt when there is none or not all of it is local. Read from
/// the encoded form: QUrl's own path would lose the bytes of names that are not UTF-8.
std::optional<std::vector<std::string>> localPaths(const QMimeData& data) {
    std::vector<std::string> paths;
    for (const auto& url : data.urls()) {
        auto path = pathFromFileURL(url.toEncoded().toStdString());
        if (!path)
            return std::nullopt;
        paths.push_back(std::move(*path));
    }
    if (paths.empty())
        return std::nullopt;
    return paths;
}

} // namespace

MainWindow::MainWindow(const LocalizedStrings& strings, MainWindowActions actions)
    : _actions(std::move(actions)) {
    setAcceptDrops(true);
    makeMenus(strings);
    makeContents(strings);
}

void MainWindow::present() {
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

void MainWindow::setSummary(const std::string& summary) {
    _summary->setText(QString::fromStdString(summary));
}

void MainWindow::makeMenus(const LocalizedStrings& strings) {
    const auto text = [&](const char* key) {
        return QString::fromStdString(strings.stringForKey(key));
    };
    auto* file = menuBar()->addMenu(text("MenuFile"));
    file->addAction(text("MenuConvert"), this, _actions.convert)
        ->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_O));
    file->addAction(text("MenuPreferences"), this, _actions.showPreferences)
        ->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Comma));
    file->addSeparator();
    file->addAction(text("MenuQuit"), this, _actions.quit)
        ->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));

    auto* help = menuBar()->addMenu(text("MenuHelp"));
    help->addAction(text("MenuManual"), this, _actions.openManual)->setShortcut(Qt::Key_F1);
    help->addAction(text("MenuSupportSite"), this, _actions.openSupportSite);
    help->addAction(text("MenuContactPage"), this, _actions.openContactPage);
    help->addSeparator();
    help->addAction(text("MenuAbout"), this, _actions.about);
}

void MainWindow::makeContents(const LocalizedStrings& strings) {
    auto* area = new QFrame(this);
    area->setFrameShape(QFrame::StyledPanel);
    auto* invitation =
        new QLabel(QString::fromStdString(strings.stringForKey("MainDropHere")), area);
    _summary = new QLabel(area);
    for (auto* label : {invitation, _summary}) {
        label->setTextFormat(Qt::PlainText);
        label->setAlignment(Qt::AlignCenter);
        label->setWordWrap(true);
    }
    QFont font = invitation->font();
    font.setPointSizeF(font.pointSizeF() * 1.3);
    invitation->setFont(font);
    _summary->setObjectName("summary");

    auto* layout = new QVBoxLayout(area);
    layout->addStretch();
    layout->addWidget(invitation);
    layout->addSpacing(12);
    layout->addWidget(_summary);
    layout->addStretch();
    auto* margins = new QWidget(this);
    (new QVBoxLayout(margins))->addWidget(area);
    setCentralWidget(margins);
    resize(440, 280);
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
    if (!localPaths(*event->mimeData()))
        return;
    // A copy, whatever is offered: a source that hears "moved" deletes its files. Some take the
    // answer to the hovering for the outcome.
    event->setDropAction(Qt::CopyAction);
    event->accept();
}

void MainWindow::dropEvent(QDropEvent* event) {
    const auto paths = localPaths(*event->mimeData());
    if (!paths)
        return;
    // A copy, whatever was offered: a source that hears "moved" deletes its files.
    event->setDropAction(Qt::CopyAction);
    event->accept();
    // Later, for the drag's source waits for the end of this event.
    QMetaObject::invokeMethod(
        this, [this, dropped = *paths] { _actions.openFiles(dropped); }, Qt::QueuedConnection);
}

void MainWindow::closeEvent(QCloseEvent* event) {
    event->ignore();
    _actions.quit();
}

} // namespace zelmora::platform
