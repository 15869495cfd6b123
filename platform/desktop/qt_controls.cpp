#include "platform/desktop/qt_controls.h"

#include <QScreen>
#include <QShortcut>
#include <QSignalBlocker>
#include <QStandardItemModel>
#include <algorithm>
#include <utility>

namespace zelmora::platform {

namespace {

constexpr int kStepsPerPercent = 10; // fine enough for a bar of any width to move smoothly

} // namespace

void QtWindow::show() {
    _widget.show();
    _widget.raise();
    _widget.activateWindow();
}

void QtWindow::center() {
    _widget.adjustSize();
    const QRect available = _widget.screen()->availableGeometry();
    _widget.move(available.center() - _widget.rect().center());
}

void QtStaticText::setStringValue(const std::string& text) {
    _label.setTextFormat(Qt::PlainText);
    _label.setText(qtString(text));
}

void QtProgressIndicator::setDoubleValue(double percent) {
    _bar.setValue(static_cast<int>(std::clamp(percent, 0.0, 100.0) * kStepsPerPercent));
}

void QtProgressIndicator::setIndeterminate(bool indeterminate) {
    _bar.setRange(0, indeterminate ? 0 : 100 * kStepsPerPercent);
}

void QtButton::setAction(std::function<void()> action) {
    QObject::disconnect(_connection);
    _connection = QObject::connect(&_button, &QAbstractButton::clicked, &_button,
                                   [action = std::move(action)] { action(); });
}

void QtPopUpMenu::setItemEnabled(int64_t tag, bool enabled) {
    const int row = _box.findData(QVariant::fromValue<qlonglong>(tag));
    if (auto* model = qobject_cast<QStandardItemModel*>(_box.model()); model && row >= 0)
        model->item(row)->setEnabled(enabled);
}

QtEditableList::QtEditableList(QListWidget& list)
    : _list(list), _removeButton(outlet<QAbstractButton>(
                       list, list.objectName().append("Remove").toStdString())) {
    auto& addButton = outlet<QAbstractButton>(list, list.objectName().append("Add").toStdString());
    QObject::connect(&addButton, &QAbstractButton::clicked, &_context, [this] { add(); });
    QObject::connect(&_removeButton, &QAbstractButton::clicked, &_context, [this] { remove(); });
    auto* deleteKey = new QShortcut(QKeySequence::Delete, &_list);
    deleteKey->setContext(Qt::WidgetShortcut);
    QObject::connect(deleteKey, &QShortcut::activated, &_context, [this] { remove(); });
    QObject::connect(&_list, &QListWidget::itemChanged, &_context,
                     [this](QListWidgetItem* item) { commit(*item); });
    QObject::connect(&_list, &QListWidget::itemSelectionChanged, &_context,
                     [this] { enableButtons(); });
    QObject::connect(_list.itemDelegate(), &QAbstractItemDelegate::closeEditor, &_context,
                     [this] { endAdding(); });
    enableButtons();
}

void QtEditableList::setItems(const std::vector<std::string>& items) {
    const QSignalBlocker quiet(_list);
    while (_list.count() > static_cast<int>(items.size()))
        delete _list.takeItem(_list.count() - 1);
    while (_list.count() < static_cast<int>(items.size()))
        _list.addItem(QString());
    for (int row = 0; row < _list.count(); ++row) {
        auto* item = _list.item(row);
        item->setText(qtString(items[static_cast<size_t>(row)]));
        item->setFlags(item->flags() | Qt::ItemIsEditable);
    }
    enableButtons();
}

void QtEditableList::add() {
    const QSignalBlocker quiet(_list);
    _newItem = new QListWidgetItem(&_list);
    _newItem->setFlags(_newItem->flags() | Qt::ItemIsEditable);
    _list.setCurrentItem(_newItem);
    _list.editItem(_newItem);
}

void QtEditableList::remove() {
    const int row = _list.currentRow();
    if (row >= 0 && !_list.selectedItems().isEmpty() && _actions.removed)
        _actions.removed(static_cast<size_t>(row));
    enableButtons();
}

void QtEditableList::commit(QListWidgetItem& item) {
    if (&item != _newItem && _actions.edited)
        _actions.edited(static_cast<size_t>(_list.row(&item)), item.text().toStdString());
}

void QtEditableList::endAdding() {
    if (!_newItem)
        return;
    // Told of here and not in commit(), for the row can go only once its editor is closed.
    const std::string text = _newItem->text().toStdString();
    delete std::exchange(_newItem, nullptr);
    if (!text.empty() && _actions.added)
        _actions.added(text);
    _list.setCurrentRow(_list.count() - 1);
}

void QtEditableList::enableButtons() {
    _removeButton.setEnabled(!_list.selectedItems().isEmpty());
}

} // namespace zelmora::platform
