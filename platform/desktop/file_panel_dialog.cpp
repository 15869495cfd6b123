#include "platform/desktop/file_panel_dialog.h"

#include "platform/text/path_string.h"
#include "platform/text/utf8.h"

#include <QCollator>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QStyle>
#include <QToolButton>
#include <algorithm>
#include <filesystem>
#include <vector>

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

FilePanelDialog::FilePanelDialog(const std::string& title,
                                 QDialogButtonBox::StandardButton acceptButton, QWidget* parent)
    : QDialog(parent), _location(new QLineEdit(this)), _list(new QListWidget(this)),
      _middle(new QVBoxLayout) {
    setWindowModality(Qt::WindowModal);
    setWindowTitle(QString::fromStdString(title));
    resize(560, 420);

    auto* up = new QToolButton(this);
    up->setIcon(style()->standardIcon(QStyle::SP_FileDialogToParent));
    up->setToolTip(tr("FilePanelParentFolder"));
    up->setAccessibleName(tr("FilePanelParentFolder"));
    up->setShortcut(QKeySequence(Qt::ALT | Qt::Key_Up));
    up->setFocusPolicy(Qt::StrongFocus);
    _location->setReadOnly(true);
    _location->setAccessibleName(tr("FilePanelFolder"));
    _list->setAccessibleName(tr("FilePanelItems"));
    _list->installEventFilter(this);
    _list->setFocus();
    auto* buttons = new QDialogButtonBox(acceptButton | QDialogButtonBox::Cancel, this);
    _acceptButton = buttons->button(acceptButton);

    auto* top = new QHBoxLayout;
    top->addWidget(up);
    top->addWidget(_location);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(_list);
    layout->addLayout(_middle);
    layout->addWidget(buttons);

    setTabOrder(up, _location);
    setTabOrder(_location, _list);

    connect(up, &QToolButton::clicked, this,
            [this] { showFolder(deletingLastPathComponent(_folder)); });
    connect(_list, &QListWidget::itemDoubleClicked, this,
            [this](const QListWidgetItem* item) { activate(*item); });
    connect(_list, &QListWidget::itemSelectionChanged, this, [this] { updateFromSelection(); });
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

void FilePanelDialog::showFolder(const std::string& path) {
    _folder = path.empty() ? "/" : path;
    _location->setText(QString::fromStdString(displayPath(_folder)));
    _list->clear();
    for (const auto& entry : entriesOf(_folder)) {
        if (!entry.isFolder && !isListed(entry.name))
            continue;
        const auto icon = entry.isFolder ? QStyle::SP_DirIcon : QStyle::SP_FileIcon;
        auto* item = new QListWidgetItem(style()->standardIcon(icon), entry.title, _list);
        item->setData(nameRole, QByteArray::fromStdString(entry.name));
        item->setData(folderRole, entry.isFolder);
    }
    updateFromSelection();
}

std::string FilePanelDialog::nameOf(const QListWidgetItem& item) {
    return item.data(nameRole).toByteArray().toStdString();
}

bool FilePanelDialog::isFolder(const QListWidgetItem& item) {
    return item.data(folderRole).toBool();
}

bool FilePanelDialog::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress || watched != _list)
        return QDialog::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent*>(event)->key();
    if ((key != Qt::Key_Return && key != Qt::Key_Enter) || !_list->currentItem())
        return false;
    // Kept from the dialog, whose default button would accept what a folder has just shown.
    activate(*_list->currentItem());
    return true;
}

void FilePanelDialog::activate(const QListWidgetItem& item) {
    if (isFolder(item))
        showFolder(appendingPathComponent(_folder, nameOf(item)));
    else
        accept();
}

} // namespace zelmora::platform
