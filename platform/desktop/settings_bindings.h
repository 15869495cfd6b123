// Controls that show a setting and change it.
#pragma once

#include "platform/defaults/user_defaults.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <functional>
#include <string>
#include <vector>

namespace zelmora::platform {

/// Keeps the controls of a window and the settings the same, both ways. A control names its
/// setting in the dynamic property "settingsKey" of the interface description:
///
/// - a check box shows a boolean;
/// - a combo box an integer: the tag of the chosen item; "itemTags" lists them ("0,1,4");
/// - a widget with radio buttons an integer: the "tag" of the one that is chosen;
/// - a line edit a string, written when the user has finished it. With a "pattern" (a regular
///   expression) a text that does not match is not written and the stored one comes back.
///
/// Main thread only, and the settings shown must be changed on that thread.
class SettingsBindings {
  public:
    /// Binds every such control below `root`. Both are borrowed and must outlive this object.
    SettingsBindings(QWidget& root, UserDefaults& defaults);
    /// Writes what was typed and not finished.
    ~SettingsBindings();
    SettingsBindings(const SettingsBindings&) = delete;
    SettingsBindings& operator=(const SettingsBindings&) = delete;

  private:
    void bindWidget(QWidget& widget, const std::string& key);
    void bindCheckBox(QCheckBox& box, const std::string& key);
    void bindComboBox(QComboBox& box, const std::string& key);
    void bindRadioButtons(QWidget& container, const std::string& key);
    void bindLineEdit(QLineEdit& edit, const std::string& key);
    void commit(QLineEdit& edit, const std::string& key);
    /// Calls `update` now and whenever the setting has changed.
    void keepUpToDate(const std::string& key, const std::function<void()>& update);

    UserDefaults& _defaults;
    QObject _context; ///< the connections end with it
    std::vector<UserDefaults::ObserverID> _observers;
    std::vector<std::function<void()>> _unfinishedEdits;
};

} // namespace zelmora::platform
