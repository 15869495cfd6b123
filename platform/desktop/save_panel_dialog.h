// The panel in which the place of a file that is to be written is chosen.
#pragma once

#include "platform/desktop/file_panel_dialog.h"
#include "platform/ui/panels.h"

#include <QCheckBox>
#include <string>

namespace zelmora::platform {

/// A name is typed or taken from the list, which shows the files of the allowed type; it always
/// ends in that type's extension, seen or not. An existing file is taken only when the user
/// confirms it.
class SavePanelDialog final : public FilePanelDialog {
  public:
    SavePanelDialog(const SavePanel& panel, QWidget* parent);

    [[nodiscard]] std::string chosenPath() const;

    void accept() override;

  private:
    [[nodiscard]] bool isListed(const std::string& name) const override;
    void updateFromSelection() override;
    [[nodiscard]] bool hasAllowedType(const std::string& name) const;
    /// The name with its extension.
    [[nodiscard]] std::string chosenName() const;
    void setName(const std::string& name);
    void updateSaveButton();

    SavePanel _panel;
    std::string _name;     ///< as typed, or the bytes of the name taken from the list
    QLineEdit* _nameField; ///< the controls are the dialog's own children
    QCheckBox* _hidesExtension;
};

} // namespace zelmora::platform
