// The controls of a loaded interface, each over the Qt widget that it names. The widgets are
// borrowed; they live as long as the QtInterface that hands the controls out.
#pragma once

#include "platform/ui/controls.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QProgressBar>

namespace zelmora::platform {

/// The string `name` as Qt's.
[[nodiscard]] inline QString qtString(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

class QtWindow final : public Window {
  public:
    explicit QtWindow(QWidget& widget) : _widget(widget) {}
    [[nodiscard]] bool isVisible() const override { return _widget.isVisible(); }
    /// Also brings the window to the front.
    void show() override;
    /// On the screen's part that no panel covers.
    void center() override;
    void close() override { _widget.hide(); }
    /// The window itself, as the parent of sheets.
    [[nodiscard]] QWidget& widget() { return _widget; }

  private:
    QWidget& _widget;
};

class QtStaticText final : public StaticText {
  public:
    using Widget = QLabel;
    explicit QtStaticText(QLabel& label) : _label(label) {}
    /// Shown as plain text, whatever it looks like.
    void setStringValue(const std::string& text) override;

  private:
    QLabel& _label;
};

class QtProgressIndicator final : public ProgressIndicator {
  public:
    using Widget = QProgressBar;
    explicit QtProgressIndicator(QProgressBar& bar) : _bar(bar) { setIndeterminate(false); }
    void setDoubleValue(double percent) override;
    void setIndeterminate(bool indeterminate) override;
    /// Nothing to do: Qt draws on the main thread only, and an indeterminate bar always moves.
    void setUsesThreadedAnimation(bool) override {}
    void startAnimation() override {}

  private:
    QProgressBar& _bar;
};

class QtButton final : public Button {
  public:
    using Widget = QAbstractButton;
    explicit QtButton(QAbstractButton& button) : _button(button) {}
    void setEnabled(bool enabled) override { _button.setEnabled(enabled); }
    void setAction(std::function<void()> action) override;

  private:
    QAbstractButton& _button;
    QMetaObject::Connection _connection;
};

class QtControl final : public Control {
  public:
    using Widget = QWidget;
    explicit QtControl(QWidget& widget) : _widget(widget) {}
    void setEnabled(bool enabled) override { _widget.setEnabled(enabled); }

  private:
    QWidget& _widget;
};

class QtPopUpMenu final : public PopUpMenu {
  public:
    using Widget = QComboBox;
    explicit QtPopUpMenu(QComboBox& box) : _box(box) {}
    void setItemEnabled(int64_t tag, bool enabled) override;

  private:
    QComboBox& _box;
};

/// A list widget; its buttons have its name with "Add" and "Remove" at the end. A double click or
/// F2 edits a row, the Delete key removes it. A new row that stays empty goes again.
class QtEditableList final : public EditableList {
  public:
    using Widget = QListWidget;
    explicit QtEditableList(QListWidget& list);
    void setItems(const std::vector<std::string>& items) override;
    void setActions(EditableListActions actions) override { _actions = std::move(actions); }

  private:
    void add();
    void remove();
    void commit(QListWidgetItem& item);
    void endAdding();
    void enableButtons();

    QListWidget& _list;
    QObject _context; ///< the connections end with it
    QAbstractButton& _removeButton;
    EditableListActions _actions;
    QListWidgetItem* _newItem = nullptr; ///< the row that is being added, while it is edited
};

/// The widget `name` in the window of `sibling`, or `sibling` itself; ends the program when the
/// interface description has no such widget.
template<typename Widget>
Widget& outlet(QWidget& sibling, std::string_view name) {
    QWidget* window = sibling.window();
    if (auto* found = qobject_cast<Widget*>(window); found && found->objectName() == qtString(name))
        return *found;
    auto* found = window->findChild<Widget*>(qtString(name));
    if (!found)
        qFatal("%s: no control %.*s", qPrintable(window->objectName()),
               static_cast<int>(name.size()), name.data());
    return *found;
}

} // namespace zelmora::platform
