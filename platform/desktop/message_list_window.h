// The window in which the user reads what went wrong.
#pragma once

#include <QDialog>
#include <QLabel>
#include <QTreeWidget>
#include <string>

namespace zelmora::platform {

/// Gathers messages until they are dismissed all together. A single one is told in plain words;
/// several become a list in which those that say the same of different things stand under one
/// heading. Messages can be added while it is open. Application-modal, without a parent; main
/// thread only. Texts are UTF-8 and shown as they are, whatever they look like.
class MessageListWindow final : public QDialog {
  public:
    MessageListWindow();

    /// `message` says what happened, `information` to what and why (it may be empty).
    void add(const std::string& message, const std::string& information);
    [[nodiscard]] bool isEmpty() const { return _list->topLevelItemCount() == 0; }
    /// Opens it over the active window.
    void showInFront();

    /// All messages, one line each; what a heading holds is indented. What "Copy All" copies.
    [[nodiscard]] QString text() const;

    /// Also forgets the messages.
    void done(int result) override;

  private:
    void makeContents();
    QTreeWidgetItem& heading(const QString& message);
    void showMessages();

    int _count = 0;
    QLabel* _message; ///< the controls are the window's own children
    QLabel* _information;
    QTreeWidget* _list; ///< holds the messages, also while it is hidden
};

} // namespace zelmora::platform
