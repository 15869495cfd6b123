#include "platform/desktop/open_panel_dialog.h"

#include "platform/text/path_string.h"
#include "platform/text/utf8.h"

#include <QCollator>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <filesystem>

namespace zelmora::platform {

namespace {

constexpr int nameRole = Qt::UserRole;       ///< the entry's name, bytes
constexpr int folderRole = Qt::UserRole + 1; ///< whether it is a folder, links followed

struct Entry {
    std::string name;
    QString title;
    bool isFolder;
};

/// What the folder at `path` holds, without hidden entries; folders first, then by name as a reader
/// of the language sorts.
std::vector<Entry> entriesOf(const std::string& path) {
    std::vector<Entry> entries;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(path, error), end; !error && entry != end;
         entry.increment(error)) {
        const auto name = entry->path().filename().native();
        std::error_code notAFolder;
        if (!name.starts_with('.'))
            entries.push_back(
                {name, QString::fromStdString(displayPath(name)), entry->is_directory(notAFolder)});
    }
    QCollator collator;
    collator.setNumericMode(true);
    std::sort(entries.begin(), entries.end(), [&](const Entry& left, const Entry& right) {
        if (left.isFolder != right.isFolder)
            return left.isFolder;
        return collator.compare(left.title, right.title) < 0;
    });
    return entries;
}

} // namespace

OpenPanelDialog::OpenPanelDialog(const OpenPanel& panel, QWidget* parent)
    : QDialog(parent), _panel(panel), _location(new QLineEdit(this)), _list(new QListWidget(this)) {
    setWindowModality(Qt::WindowModal);
    setWindowTitle(tr("OpenPanelTitle"));
    resize(560, 420);

    auto* up = new QToolButton(this);
    up->setIcon(style()->standardIcon(QStyle::SP_FileDialogToParent));
    up->setToolTip(tr("OpenPanelParentFolder"));
    _location->setReadOnly(true);
    _list->setFocus();
    _list->setSelectionMode(panel.allowsMultipleSelection ? QAbstractItemView::ExtendedSelection
                                                          : QAbstractItemView::SingleSelection);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Open | QDialogButtonBox::Cancel, this);
    _openButton = buttons->button(QDialogButtonBox::Open);

    auto* top = new QHBoxLayout;
    top->addWidget(up);
    top->addWidget(_location);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(_list);
    layout->addWidget(buttons);

    connect(up, &QToolButton::clicked, this,
            [this] { showFolder(deletingLastPathComponent(_folder)); });
    connect(_list, &QListWidget::itemActivated, this,
            [this](const QListWidgetItem* item) { activate(*item); });
    connect(_list, &QListWidget::itemSelectionChanged, this, [this] { updateOpenButton(); });
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

void OpenPanelDialog::showFolder(const std::string& path) {
    _folder = path.empty() ? "/" : path;
    _location->setText(QString::fromStdString(displayPath(_folder)));
    _list->clear();
    for (const auto& entry : entriesOf(_folder)) {
        if (!entry.isFolder && !_panel.canChooseFiles)
            continue;
        const auto icon = entry.isFolder ? QStyle::SP_DirIcon : QStyle::SP_FileIcon;
        auto* item = new QListWidgetItem(style()->standardIcon(icon), entry.title, _list);
        item->setData(nameRole, QByteArray::fromStdString(entry.name));
        item->setData(folderRole, entry.isFolder);
    }
    updateOpenButton();
}

std::vector<std::string> OpenPanelDialog::chosenPaths() const {
    std::vector<std::string> paths;
    // By row: the panel's order, not the order of the clicks.
    for (int row = 0; row < _list->count(); ++row) {
        const auto* item = _list->item(row);
        if (item->isSelected() && (_panel.canChooseDirectories || !item->data(folderRole).toBool()))
            paths.push_back(
                appendingPathComponent(_folder, item->data(nameRole).toByteArray().toStdString()));
    }
    // Not where files can be chosen too: a slip would convert all of the folder.
    if (paths.empty() && !_panel.canChooseFiles)
        paths.push_back(_folder);
    return paths;
}

void OpenPanelDialog::activate(const QListWidgetItem& item) {
    if (item.data(folderRole).toBool())
        showFolder(
            appendingPathComponent(_folder, item.data(nameRole).toByteArray().toStdString()));
    else
        accept();
}

} // namespace zelmora::platform
