#include "platform/desktop/message_list_window.h"

#include <QApplication>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QShortcut>
#include <QStyle>
#include <QWindow>

namespace zelmora::platform {

namespace {

constexpr QSize kListSize(640, 360); // leaves room on a screen of 1024 by 768

QString indentedLine(const QTreeWidgetItem& item) {
    return (item.parent() ? "\t" : "") + item.text(0) + "\n";
}

/// `text` with places at which a label may break its long words: paths have none of their own.
QString withBreaks(const QString& text) {
    constexpr QChar breakPlace(0x200B); // ZERO WIDTH SPACE
    constexpr qsizetype longestWord = 32;
    QStringList words = text.split(' ');
    for (auto& word : words) {
        for (qsizetype i = word.size() > longestWord ? word.size() - 1 : 0; i > 0; --i) {
            if (!word[i].isLowSurrogate() && !word[i].isMark())
                word.insert(i, breakPlace);
        }
    }
    return words.join(' ');
}

} // namespace

MessageListWindow::MessageListWindow()
    : _message(new QLabel(this)), _information(new QLabel(this)), _list(new QTreeWidget(this)) {
    setWindowModality(Qt::ApplicationModal);
    setWindowTitle(QApplication::applicationDisplayName());
    makeContents();
}

void MessageListWindow::makeContents() {
    auto* icon = new QLabel(this);
    const int iconSize = style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, this);
    icon->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(iconSize));
    for (auto* label : {_message, _information}) {
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
        label->setMinimumWidth(kListSize.width() / 2);
    }
    QFont bold = _message->font();
    bold.setBold(true);
    _message->setFont(bold);

    _list->setAccessibleName(tr("MessageList"));
    _list->setHeaderHidden(true);
    _list->setRootIsDecorated(false);
    _list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    // Long paths are read by scrolling; a dot in their middle would hide what matters.
    _list->setTextElideMode(Qt::ElideNone);
    _list->header()->setStretchLastSection(false);
    _list->header()->setSectionResizeMode(QHeaderView::ResizeToContents);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
    auto* copyAll = buttons->addButton(tr("MessageListCopyAll"), QDialogButtonBox::ActionRole);
    auto* layout = new QGridLayout(this);
    layout->addWidget(icon, 0, 0, 2, 1, Qt::AlignTop);
    layout->addWidget(_message, 0, 1);
    layout->addWidget(_information, 1, 1);
    layout->addWidget(_list, 2, 0, 1, 2);
    layout->addWidget(buttons, 3, 0, 1, 2);
    layout->setColumnStretch(1, 1);
    layout->setRowStretch(2, 1);

    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(copyAll, &QPushButton::clicked, this,
            [this] { QApplication::clipboard()->setText(text()); });
    auto* copyKey = new QShortcut(QKeySequence::Copy, _list);
    copyKey->setContext(Qt::WidgetShortcut);
    connect(copyKey, &QShortcut::activated, this, [this] {
        QString selected;
        for (QTreeWidgetItemIterator item(_list, QTreeWidgetItemIterator::Selected); *item; ++item)
            selected += indentedLine(**item);
        QApplication::clipboard()->setText(selected);
    });
    buttons->button(QDialogButtonBox::Ok)->setFocus();
}

void MessageListWindow::add(const std::string& message, const std::string& information) {
    auto& group = heading(QString::fromStdString(message));
    if (!information.empty())
        new QTreeWidgetItem(&group, {QString::fromStdString(information)});
    ++_count;
    showMessages();
}

QTreeWidgetItem& MessageListWindow::heading(const QString& message) {
    for (int row = 0; row < _list->topLevelItemCount(); ++row) {
        if (auto* item = _list->topLevelItem(row); item->text(0) == message)
            return *item;
    }
    auto* item = new QTreeWidgetItem(_list, {message});
    item->setFont(0, _message->font());
    item->setExpanded(true);
    return *item;
}

void MessageListWindow::showMessages() {
    const auto* first = _list->topLevelItem(0);
    const auto* firstDetail = first ? first->child(0) : nullptr;
    const bool isList = _count > 1;
    _message->setText(isList  ? tr("MessageListCount").replace("%u", QString::number(_count))
                      : first ? first->text(0)
                              : QString());
    const bool hasInformation = !isList && firstDetail;
    _information->setText(hasInformation ? withBreaks(firstDetail->text(0)) : QString());
    _information->setVisible(hasInformation);
    const bool becomesList = isList && !_list->isVisibleTo(this);
    _list->setVisible(isList);
    if (becomesList)
        resize(kListSize);
    else if (!isList)
        adjustSize();
}

void MessageListWindow::showInFront() {
    const auto* active = QApplication::activeWindow();
    winId(); // makes the window, so that it has one to stand over
    windowHandle()->setTransientParent(active && active != this ? active->windowHandle() : nullptr);
    show();
    raise();
    activateWindow();
}

QString MessageListWindow::text() const {
    QString all;
    for (QTreeWidgetItemIterator item(_list); *item; ++item)
        all += indentedLine(**item);
    return all;
}

void MessageListWindow::done(int result) {
    hide();
    _list->clear();
    _count = 0;
    showMessages();
    QDialog::done(result);
}

} // namespace zelmora::platform
