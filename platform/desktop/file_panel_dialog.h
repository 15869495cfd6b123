// What the panels for files and folders share.
#pragma once

#include <QDialog>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>
#include <string>

namespace zelmora::platform {

/// Lists one folder at a time. The names are bytes: Qt's own panels leave out those that are not
/// UTF-8. Hidden items are not listed. Window-modal for its parent; Enter or a double click opens a
/// folder and accepts a file.
class FilePanelDialog : public QDialog {
  public:
    /// Shows the folder at `path`; one that cannot be read shows as empty.
    void showFolder(const std::string& path);

  protected:
    /// `acceptButton` is Open or Save.
    FilePanelDialog(const std::string& title, QDialogButtonBox::StandardButton acceptButton,
                    QWidget* parent);

    /// Whether the file `name` is listed.
    [[nodiscard]] virtual bool isListed(const std::string& name) const = 0;
    /// What to do when the selection has changed.
    virtual void updateFromSelection() = 0;

    [[nodiscard]] const std::string& folder() const { return _folder; }
    [[nodiscard]] QListWidget& list() const { return *_list; }
    [[nodiscard]] QPushButton& acceptButton() const { return *_acceptButton; }
    /// Between the list and the buttons.
    [[nodiscard]] QVBoxLayout& middle() const { return *_middle; }
    [[nodiscard]] static std::string nameOf(const QListWidgetItem& item);
    [[nodiscard]] static bool isFolder(const QListWidgetItem& item);

    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void activate(const QListWidgetItem& item);

    std::string _folder;
    QLineEdit* _location; ///< the controls are the dialog's own children
    QListWidget* _list;
    QVBoxLayout* _middle;
    QPushButton* _acceptButton;
};

} // namespace zelmora::platform
