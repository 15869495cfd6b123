#include "platform/desktop/open_panel_dialog.h"

#include "platform/text/path_string.h"

namespace zelmora::platform {

OpenPanelDialog::OpenPanelDialog(const OpenPanel& panel, QWidget* parent)
    : FilePanelDialog(panel.title, QDialogButtonBox::Open, parent), _panel(panel) {
    list().setSelectionMode(panel.allowsMultipleSelection ? QAbstractItemView::ExtendedSelection
                                                          : QAbstractItemView::SingleSelection);
}

std::vector<std::string> OpenPanelDialog::chosenPaths() const {
    std::vector<std::string> paths;
    // By row: the panel's order, not the order of the clicks.
    for (int row = 0; row < list().count(); ++row) {
        const auto* item = list().item(row);
        if (item->isSelected() && (_panel.canChooseDirectories || !isFolder(*item)))
            paths.push_back(appendingPathComponent(folder(), nameOf(*item)));
    }
    // Not where files can be chosen too: a slip would convert all of the folder.
    if (paths.empty() && !_panel.canChooseFiles)
        paths.push_back(folder());
    return paths;
}

} // namespace zelmora::platform
