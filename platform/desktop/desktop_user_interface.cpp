#include "platform/desktop/desktop_user_interface.h"

#include "platform/desktop/open_panel_dialog.h"
#include "platform/desktop/qt_interface.h"
#include "platform/desktop/save_panel_dialog.h"
#include "platform/text/path_string.h"

#include <QEventLoop>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <algorithm>
#include <system_error>
#include <thread>
#include <utility>

namespace zelmora::platform {

namespace {

constexpr int kInformationColumns = 70; ///< at which the second text of a question is broken

/// Sets both texts as they are: a file name that looks like HTML is none.
void setTexts(QMessageBox& box, const std::string& message, const std::string& information) {
    box.setTextFormat(Qt::PlainText);
    box.setText(QString::fromStdString(message));
    box.setInformativeText(QString::fromStdString(information));
    for (auto* label : box.findChildren<QLabel*>())
        label->setTextFormat(Qt::PlainText);
    // Left alone, Qt makes the second text as narrow as the first.
    if (auto* label = box.findChild<QLabel*>("qt_msgbox_informativelabel")) {
        const QFontMetrics metrics = label->fontMetrics();
        label->setMinimumWidth(std::min(metrics.size(0, label->text()).width(),
                                        kInformationColumns * metrics.averageCharWidth()));
    }
}

/// Refuses what a window manager asks for by a key or a menu of its own.
class CloseRefusal final : public QObject {
  public:
    using QObject::QObject;
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() != QEvent::Close)
            return false;
        event->ignore();
        return true;
    }
};

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
    Session(DesktopUserInterface& owner, QWidget* window)
        : _owner(owner), _busy(owner), _window(window) {
        ++_owner._sessionCount;
        setModality(Qt::ApplicationModal);
    }
    ~Session() override {
        setModality(Qt::NonModal);
        if (--_owner._sessionCount == 0)
            _owner.showAlertsLater();
    }

    void run(const std::function<void()>& work) override {
        QEventLoop loop;
        std::thread worker;
        try {
            worker = std::thread([&] {
                work();
                QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
            });
        } catch (const std::system_error&) {
            return work(); // no thread to be had: a window that stands still is the lesser evil
        }
        loop.exec();
        worker.join(); // the loop may also have been ended by someone else
    }

  private:
    /// A window takes its modality over when it is shown.
    void setModality(Qt::WindowModality modality) {
        const bool isVisible = _window->isVisible();
        _window->hide();
        _window->setWindowModality(modality);
        _window->setVisible(isVisible);
    }

    DesktopUserInterface& _owner;
    Busy _busy;
    QWidget* _window;
};

void DesktopUserInterface::runModal(const Alert& alert) {
    if (!_alerts) {
        _alerts = std::make_unique<MessageListWindow>();
        QObject::connect(_alerts.get(), &QDialog::finished, [this] { _busyWithAlerts.reset(); });
    }
    if (!_busyWithAlerts)
        _busyWithAlerts.emplace(*this);
    _alerts->add(alert.messageText, alert.informativeText);
    showAlertsLater();
}

void DesktopUserInterface::showAlertsLater() {
    if (!_alerts)
        return;
    // Not before the loop has its turn again: a batch whose every backup fails is one list.
    QMetaObject::invokeMethod(
        _alerts.get(),
        [this] {
            if (_sessionCount == 0 && !_alerts->isEmpty() && !_alerts->isVisible())
                _alerts->showInFront();
        },
        Qt::QueuedConnection);
}

std::unique_ptr<LoadedInterface> DesktopUserInterface::loadInterface(std::string_view name) {
    auto loaded = loadForm(name);
    // Its buttons decide when it closes: a progress window closed by its frame would go unseen on.
    auto* widget = widgetOf(&loaded->window());
    widget->setWindowFlags(Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint);
    widget->installEventFilter(new CloseRefusal(widget));
    return loaded;
}

std::unique_ptr<LoadedForm> DesktopUserInterface::loadForm(std::string_view name) {
    auto form = QtInterface::load(_services.files, _services.bundle.pathForResource(name, "ui"),
                                  _services.defaults);
    if (form.ok())
        return std::move(*form);
    MessageListWindow alert;
    alert.add(QCoreApplication::translate("", "InvalidPackage").toStdString(),
              form.error().message);
    alert.exec();
    qFatal("%s", form.error().message.c_str());
}

std::unique_ptr<ModalSession> DesktopUserInterface::beginModalSessionForWindow(Window& window) {
    return std::make_unique<Session>(*this, widgetOf(&window));
}

void DesktopUserInterface::terminate() {
    _shouldTerminate = true;
    terminateLater();
}

void DesktopUserInterface::terminateIf(std::function<bool()> isStillWanted) {
    _mayTerminate = std::move(isStillWanted);
    terminateLater();
}

void DesktopUserInterface::terminateLater() {
    _services.application.runLoop().mainQueue().async([this] {
        if (_busyCount > 0)
            return;
        const auto mayTerminate = std::exchange(_mayTerminate, {});
        if (std::exchange(_shouldTerminate, false) || (mayTerminate && mayTerminate()))
            _services.application.terminate();
    });
}

void DesktopUserInterface::endBusy() {
    if (--_busyCount == 0 && (_shouldTerminate || _mayTerminate))
        terminateLater();
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
    SavePanelDialog dialog(panel, widgetOf(sheetParent));
    dialog.showFolder(startFolder(panel.directoryPath));
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    return dialog.chosenPath();
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
