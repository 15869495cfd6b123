// A window and its controls as loaded from an interface description.
#pragma once

#include "platform/defaults/user_defaults.h"
#include "platform/desktop/qt_controls.h"
#include "platform/desktop/settings_bindings.h"
#include "platform/files/file_manager.h"
#include "platform/ui/controls.h"

#include <QWidget>
#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace zelmora::platform {

/// An interface description in Qt's .ui format, loaded at run time. Controls are found by their
/// object names. Its texts go through the installed translators (see StringTableTranslator). The
/// dynamic property "settingsKey" binds a control to a setting (see SettingsBindings), "enabledBy"
/// names the property (see setProperty) that enables it. Main thread only.
class QtInterface final : public LoadedForm {
  public:
    /// Loads the description at `path`, hidden; EINVAL when it is not one. `defaults` is borrowed
    /// and must outlive the interface.
    static Result<std::unique_ptr<QtInterface>> load(FileManager& files, const std::string& path,
                                                     UserDefaults& defaults);

    Window& window() override { return _window; }
    StaticText& staticText(std::string_view name) override;
    ProgressIndicator& progressIndicator(std::string_view name) override;
    Button& button(std::string_view name) override;
    Control& control(std::string_view name) override;
    PopUpMenu& popUpMenu(std::string_view name) override;
    EditableList& editableList(std::string_view name) override;
    void setProperty(std::string_view property, bool value) override;

    /// The window itself, for what only a front-end can do with it.
    [[nodiscard]] QWidget& widget() { return *_widget; }

  private:
    template<typename Adapter>
    using Named = std::map<std::string, Adapter, std::less<>>;

    QtInterface(std::unique_ptr<QWidget> widget, UserDefaults& defaults);
    template<typename Adapter>
    Adapter& named(Named<Adapter>& known, std::string_view name);

    std::unique_ptr<QWidget> _widget;
    QtWindow _window;
    SettingsBindings _bindings;
    Named<QtStaticText> _staticTexts;
    Named<QtProgressIndicator> _progressIndicators;
    Named<QtButton> _buttons;
    Named<QtControl> _controls;
    Named<QtPopUpMenu> _popUpMenus;
    Named<QtEditableList> _editableLists;
};

} // namespace zelmora::platform
