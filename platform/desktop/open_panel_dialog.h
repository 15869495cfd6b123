// The panel in which existing files and folders are chosen.
#pragma once

#include "platform/desktop/file_panel_dialog.h"
#include "platform/ui/panels.h"

#include <string>
#include <vector>

namespace zelmora::platform {

/// Files and folders can be chosen together, which Qt's own panel does not offer. Where only
/// folders are looked for and none is chosen, the folder shown is meant.
class OpenPanelDialog final : public FilePanelDialog {
  public:
    OpenPanelDialog(const OpenPanel& panel, QWidget* parent);

    [[nodiscard]] std::vector<std::string> chosenPaths() const;

  private:
    [[nodiscard]] bool isListed(const std::string&) const override { return _panel.canChooseFiles; }
    void updateFromSelection() override { acceptButton().setEnabled(!chosenPaths().empty()); }

    OpenPanel _panel;
};

} // namespace zelmora::platform
