// Zelmora's own window.
#pragma once

#include "platform/defaults/localized_strings.h"
#include "platform/desktop/qt_controls.h"

#include <QMainWindow>
#include <functional>
#include <string>
#include <vector>

namespace zelmora::platform {

/// What the main window's menus and drops do.
struct MainWindowActions {
    std::function<void()> convert;
    std::function<void()> showPreferences;
    std::function<void()> quit; ///< also what closing the window does
    std::function<void()> openManual;
    std::function<void()> openSupportSite;
    std::function<void()> openContactPage;
    std::function<void()> about;
    /// Absolute paths, raw bytes, in the order dropped.
    std::function<void(const std::vector<std::string>&)> openFiles;
};

/// Takes drops of local files and folders, refuses everything else while it still hovers, shows one
/// line about what will be done to them, and carries the menus.
class MainWindow final : public QMainWindow {
  public:
    /// `strings` gives the words and is not kept.
    MainWindow(const LocalizedStrings& strings, MainWindowActions actions);

    /// Itself, as the parent of sheets.
    Window& asWindow() { return _asWindow; }
    /// Shows it, in front of the others as far as the desktop allows.
    void present();
    /// Shows what will be done, UTF-8.
    void setSummary(const std::string& summary);

  protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

  private:
    void makeMenus(const LocalizedStrings& strings);
    void makeContents(const LocalizedStrings& strings);

    MainWindowActions _actions;
    QtWindow _asWindow{*this};
    QLabel* _summary = nullptr; ///< the window's own child
};

} // namespace zelmora::platform
