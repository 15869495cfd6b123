// What a form is to the code that does not know the front-end: a loaded interface whose controls
// show settings.
//
// Which setting a control shows is said in the interface description, and the front-end keeps the
// two the same: code never reads or writes a control's value, it reads and writes the setting.
// Interfaces only, for the main thread. Texts are UTF-8.
#pragma once

#include "platform/ui/user_interface.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace zelmora::platform {

/// A check box, text field, group of radio buttons, or anything else that can be greyed out.
class Control {
  public:
    virtual ~Control() = default;
    virtual void setEnabled(bool enabled) = 0;
};

/// A menu that shows the chosen one of its items; each has an integer tag. Items are enabled as
/// they are told to be, never by themselves.
class PopUpMenu {
  public:
    virtual ~PopUpMenu() = default;
    /// Whether the user can choose the item with `tag`.
    virtual void setItemEnabled(int64_t tag, bool enabled) = 0;
};

/// What the user did to an editable list. The list shows nothing of it by itself once the call
/// returns: whoever is told answers with setItems().
struct EditableListActions {
    std::function<void(const std::string& text)> added;
    std::function<void(size_t row, const std::string& text)> edited;
    std::function<void(size_t row)> removed;
};

/// A list of short texts that the user edits in place, adds to and removes from.
class EditableList {
  public:
    virtual ~EditableList() = default;
    virtual void setItems(const std::vector<std::string>& items) = 0;
    /// Replaces the earlier actions.
    virtual void setActions(EditableListActions actions) = 0;
};

/// A loaded interface with such controls. As in a LoadedInterface, they live as long as it does,
/// and asking for one that it does not have is a fault of the program.
class LoadedForm : public LoadedInterface {
  public:
    virtual Control& control(std::string_view name) = 0;
    virtual PopUpMenu& popUpMenu(std::string_view name) = 0;
    virtual EditableList& editableList(std::string_view name) = 0;
    /// Enables, or greys out, every control that is described to be enabled by `property`.
    virtual void setProperty(std::string_view property, bool value) = 0;
};

} // namespace zelmora::platform
