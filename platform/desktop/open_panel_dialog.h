// The panel in which existing files and folders are chosen.
#pragma once

#include "platform/ui/panels.h"

#include <QDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <string>
#include <vector>

namespace zelmora::platform {

/// Lists one folder at a time. Files and folders can be chosen together, which Qt's own panel does
/// not offer, and the names are bytes: Qt's panel leaves out those that are not UTF-8.
/// Window-modal for its parent. Where only folders are looked for and none is chosen, the folder
/// shown is meant.
class OpenPanelDialog final : public QDialog {
  public:
    OpenPanelDialog(const OpenPanel& panel, QWidget* parent);

    /// Shows the folder at `path`; one that cannot be read shows as empty.
    void showFolder(const std::string& path);
    [[nodiscard]] std::vector<std::string> chosenPaths() const;

  private:
    void activate(const QListWidgetItem& item);
    void updateOpenButton() { _openButton->setEnabled(!chosenPaths().empty()); }

    OpenPanel _panel;
    std::string _folder;
    QLineEdit* _location; ///< the controls are the dialog's own children
    QListWidget* _list;
    QPushButton* _openButton;
};

} // namespace zelmora::platform
