#include "platform/desktop/desktop_user_interface.h"

#include "platform/desktop/open_panel_dialog.h"
#include "platform/desktop/qt_interface.h"
#include "platform/text/path_string.h"

#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <algorithm>
#include <utility>

namespace zelmora::platform {

namespace {

/// Sets both texts as they are: a file name that looks like HTML is none.
void setTexts(QMessageBox& box, const std::string& message, const std::string& information) {
    box.setTextFormat(Qt::PlainText);
    box.setText(QString::fromStdString(message));
    box.setInformativeText(QString::fromStdString(information));
    for (auto* label : box.findChildren<QLabel*>())
        label->setTextFormat(Qt::PlainText);
}

void showAlert(const Alert& alert) {
    QMessageBox box(QApplication::activeWindow());
    box.setIcon(QMessageBox::Warning);
    setTexts(box, alert.messageText, alert.informativeText);
    box.addButton(QMessageBox::Ok);
    box.exec();
}

/// The window that a panel belongs to; none is allowed.
QWidget* widgetOf(Window* window) {
    auto* qtWindow = dynamic_cast<QtWindow*>(window);
    return qtWindow ? &qtWindow->widget() : nullptr;
}

/// Where a panel begins.
std::string startFolder(const std::string& directoryPath) {
    return directoryPath.empty() ? expandingTilde("~") : directoryPath;
}

} // namespace

/// While it lives, its window alone takes input.
class DesktopUserInterface::Session final : public ModalSession {
  public:
    Session(DesktopUserInterface& owner, QWidget* window) : _busy(owner), _window(window) {
        setModality(Qt::ApplicationModal);
        // The caller is about to keep the main thread: let the window be drawn before.
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    }
    ~Session() override { setModality(Qt::NonModal); }

  private:
    /// A window takes its modality over when it is shown.
    void setModality(Qt::WindowModality modality) {
        const bool isVisible = _window->isVisible();
        _window->hide();
        _window->setWindowModality(modality);
        _window->setVisible(isVisible);
    }

    Busy _busy;
    QWidget* _window;
};

void DesktopUserInterface::runModal(const Alert& alert) {
    _waitingAlerts.push_back(alert);
    if (_isAlertShown)
        return;
    const Busy busy(*this);
    _isAlertShown = true;
    while (!_waitingAlerts.empty()) {
        const Alert next = std::move(_waitingAlerts.front());
        _waitingAlerts.pop_front();
        showAlert(next);
    }
    _isAlertShown = false;
}

std::unique_ptr<LoadedInterface> DesktopUserInterface::loadInterface(std::string_view name) {
    auto loaded = loadForm(name);
    // Its buttons decide when it closes: a progress window closed by its frame would go unseen on.
    auto* widget = widgetOf(&loaded->window());
    widget->setWindowFlags(Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint);
    return loaded;
}

std::unique_ptr<LoadedForm> DesktopUserInterface::loadForm(std::string_view name) {
    auto form = QtInterface::load(_services.files, _services.bundle.pathForResource(name, "ui"),
                                  _services.defaults);
    if (form.ok())
        return std::move(*form);
    runModal(
        {QCoreApplication::translate("", "InvalidPackage").toStdString(), form.error().message});
    qFatal("%s", form.error().message.c_str());
}

std::unique_ptr<ModalSession> DesktopUserInterface::beginModalSessionForWindow(Window& window) {
    return std::make_unique<Session>(*this, widgetOf(&window));
}

void DesktopUserInterface::terminate() {
    _services.application.runLoop().mainQueue().async([this] {
        if (_busyCount > 0)
            _shouldTerminate = true;
        else
            _services.application.terminate();
    });
}

void DesktopUserInterface::endBusy() {
    if (--_busyCount == 0 && std::exchange(_shouldTerminate, false))
        terminate();
}

std::vector<std::string> DesktopUserInterface::runOpenPanel(const OpenPanel& panel,
                                                            Window* sheetParent) {
    const Busy busy(*this);
    OpenPanelDialog dialog(panel, widgetOf(sheetParent));
    dialog.showFolder(startFolder(panel.directoryPath));
    if (dialog.exec() != QDialog::Accepted)
        return {};
    return dialog.chosenPaths();
}

std::optional<std::string> DesktopUserInterface::runSavePanel(const SavePanel& panel,
                                                              Window* sheetParent) {
    const Busy busy(*this);
    QFileDialog dialog(widgetOf(sheetParent));
    dialog.setWindowModality(Qt::WindowModal);
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDirectory(QFile::decodeName(startFolder(panel.directoryPath).c_str()));
    dialog.selectFile(QString::fromStdString(panel.name));
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    return QFile::encodeName(dialog.selectedFiles().constFirst()).toStdString();
}

size_t DesktopUserInterface::runQuestion(const Question& question, Window* sheetParent) {
    const Busy busy(*this);
    QMessageBox box(widgetOf(sheetParent));
    box.setWindowModality(Qt::WindowModal);
    setTexts(box, question.messageText, question.informativeText);
    std::vector<QPushButton*> buttons;
    for (const auto& title : question.buttons)
        buttons.push_back(box.addButton(QString::fromStdString(title), QMessageBox::ActionRole));
    box.setDefaultButton(buttons.front());
    box.setEscapeButton(buttons.back());
    box.exec();
    const auto clicked = std::find(buttons.begin(), buttons.end(), box.clickedButton());
    return clicked == buttons.end() ? buttons.size() - 1
                                    : static_cast<size_t>(clicked - buttons.begin());
}

} // namespace zelmora::platform
