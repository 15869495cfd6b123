#include "platform/desktop/save_panel_dialog.h"

#include "platform/text/path_string.h"
#include "platform/text/utf8.h"

#include <QFormLayout>
#include <QMessageBox>
#include <climits>
#include <filesystem>

namespace zelmora::platform {

SavePanelDialog::SavePanelDialog(const SavePanel& panel, QWidget* parent)
    : FilePanelDialog(panel.title, QDialogButtonBox::Save, parent), _panel(panel),
      _nameField(new QLineEdit(this)),
      _hidesExtension(new QCheckBox(tr("SavePanelHideExtension"), this)) {
    list().setSelectionMode(QAbstractItemView::SingleSelection);
    _hidesExtension->setChecked(panel.isExtensionHidden);
    _hidesExtension->setVisible(panel.canSelectHiddenExtension && !panel.allowedFileType.empty());
    auto* form = new QFormLayout;
    form->addRow(tr("SavePanelName"), _nameField);
    form->addRow(_hidesExtension);
    middle().addLayout(form);

    connect(_nameField, &QLineEdit::textEdited, this, [this](const QString& text) {
        _name = text.toStdString();
        updateSaveButton();
    });
    connect(_hidesExtension, &QCheckBox::toggled, this, [this] { setName(chosenName()); });
    _name = panel.name;
    setName(chosenName());
    setTabOrder(&list(), _nameField);
    setTabOrder(_nameField, _hidesExtension);
    _nameField->setFocus();
    _nameField->selectAll();
}

std::string SavePanelDialog::chosenPath() const {
    return appendingPathComponent(folder(), chosenName());
}

bool SavePanelDialog::isListed(const std::string& name) const {
    return _panel.allowedFileType.empty() || hasAllowedType(name);
}

void SavePanelDialog::updateFromSelection() {
    const auto selected = list().selectedItems();
    if (!selected.isEmpty() && !isFolder(*selected.front()))
        setName(nameOf(*selected.front()));
    updateSaveButton();
}

bool SavePanelDialog::hasAllowedType(const std::string& name) const {
    return equalsIgnoringASCIICase(pathExtension(name), _panel.allowedFileType);
}

std::string SavePanelDialog::chosenName() const {
    // A name may hold a "." of its own, so another extension is not replaced.
    return _name.empty() || hasAllowedType(_name)
               ? _name
               : appendingPathExtension(_name, _panel.allowedFileType);
}

void SavePanelDialog::setName(const std::string& name) {
    _name = name;
    const bool isShortened = _hidesExtension->isChecked() && hasAllowedType(name);
    _nameField->setText(
        QString::fromStdString(displayPath(isShortened ? deletingPathExtension(name) : name)));
    updateSaveButton();
}

void SavePanelDialog::updateSaveButton() {
    acceptButton().setEnabled(!_name.empty() && _name != "." && _name != ".." &&
                              _name.find('/') == std::string::npos &&
                              chosenName().size() <= NAME_MAX);
}

void SavePanelDialog::accept() {
    std::error_code error;
    const auto status = std::filesystem::status(chosenPath(), error);
    if (std::filesystem::is_directory(status))
        return showFolder(chosenPath());
    if (std::filesystem::exists(status)) {
        QMessageBox question(
            QMessageBox::Question, windowTitle(),
            tr("SavePanelExists").replace("%@", QString::fromStdString(displayPath(chosenName()))),
            QMessageBox::Yes | QMessageBox::No, this);
        question.setTextFormat(Qt::PlainText);
        question.setDefaultButton(QMessageBox::No);
        if (question.exec() != QMessageBox::Yes)
            return;
    }
    FilePanelDialog::accept();
}

} // namespace zelmora::platform
