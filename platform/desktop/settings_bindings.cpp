#include "platform/desktop/settings_bindings.h"

#include "platform/text/utf8.h"

#include <QButtonGroup>
#include <QRadioButton>
#include <QRegularExpression>
#include <QRegularExpressionValidator>

namespace zelmora::platform {

namespace {

/// A path's bytes that are no text show as escapes.
QString storedText(const UserDefaults& defaults, const std::string& key) {
    return QString::fromStdString(displayPath(defaults.stringForKey(key).value_or(std::string())));
}

/// Refuses what does not match its pattern; an unfinished text gives way to the stored one.
class SettingValidator final : public QRegularExpressionValidator {
  public:
    SettingValidator(const QString& pattern, const UserDefaults& defaults, std::string key,
                     QObject* parent)
        : QRegularExpressionValidator(QRegularExpression(pattern), parent), _defaults(defaults),
          _key(std::move(key)) {}

    void fixup(QString& text) const override { text = storedText(_defaults, _key); }

  private:
    const UserDefaults& _defaults;
    std::string _key;
};

} // namespace

SettingsBindings::SettingsBindings(QWidget& root, UserDefaults& defaults) : _defaults(defaults) {
    for (auto* widget : root.findChildren<QWidget*>()) {
        const QString key = widget->property("settingsKey").toString();
        if (!key.isEmpty())
            bindWidget(*widget, key.toStdString());
    }
}

SettingsBindings::~SettingsBindings() {
    for (const auto& commitEdit : _unfinishedEdits)
        commitEdit();
    for (const auto observer : _observers)
        _defaults.removeObserver(observer);
}

void SettingsBindings::bindWidget(QWidget& widget, const std::string& key) {
    if (auto* checkBox = qobject_cast<QCheckBox*>(&widget))
        bindCheckBox(*checkBox, key);
    else if (auto* comboBox = qobject_cast<QComboBox*>(&widget))
        bindComboBox(*comboBox, key);
    else if (auto* lineEdit = qobject_cast<QLineEdit*>(&widget))
        bindLineEdit(*lineEdit, key);
    else
        bindRadioButtons(widget, key);
}

// The signals below are those that only the user's own doing sends: what an update shows is not
// written back.

void SettingsBindings::bindCheckBox(QCheckBox& box, const std::string& key) {
    keepUpToDate(key, [this, &box, key] { box.setChecked(_defaults.boolForKey(key)); });
    QObject::connect(&box, &QCheckBox::clicked, &_context,
                     [this, key](bool isChecked) { _defaults.setBool(isChecked, key); });
}

void SettingsBindings::bindComboBox(QComboBox& box, const std::string& key) {
    const auto tags = box.property("itemTags").toString().split(',', Qt::SkipEmptyParts);
    for (int row = 0; row < std::min(box.count(), static_cast<int>(tags.size())); ++row)
        box.setItemData(row, tags[row].toLongLong());
    keepUpToDate(key, [this, &box, key] {
        box.setCurrentIndex(
            box.findData(QVariant::fromValue<qlonglong>(_defaults.integerForKey(key))));
    });
    QObject::connect(&box, &QComboBox::activated, &_context, [this, &box, key](int row) {
        _defaults.setInteger(box.itemData(row).toLongLong(), key);
    });
}

void SettingsBindings::bindRadioButtons(QWidget& container, const std::string& key) {
    auto* group = new QButtonGroup(&container);
    for (auto* button : container.findChildren<QRadioButton*>())
        group->addButton(button, button->property("tag").toInt());
    keepUpToDate(key, [this, group, key] {
        const auto tag = _defaults.integerForKey(key);
        group->setExclusive(false); // so that a tag without a button leaves none chosen
        for (auto* button : group->buttons())
            button->setChecked(group->id(button) == tag);
        group->setExclusive(true);
    });
    QObject::connect(group, &QButtonGroup::idClicked, &_context,
                     [this, key](int tag) { _defaults.setInteger(tag, key); });
}

void SettingsBindings::bindLineEdit(QLineEdit& edit, const std::string& key) {
    if (const QString pattern = edit.property("pattern").toString(); !pattern.isEmpty())
        edit.setValidator(new SettingValidator(pattern, _defaults, key, &edit));
    keepUpToDate(key, [this, &edit, key] { edit.setText(storedText(_defaults, key)); });
    QObject::connect(&edit, &QLineEdit::editingFinished, &_context,
                     [this, &edit, key] { commit(edit, key); });
    _unfinishedEdits.emplace_back([this, &edit, key] { commit(edit, key); });
}

void SettingsBindings::commit(QLineEdit& edit, const std::string& key) {
    // A field that was only visited must not turn a registered default into a saved value.
    if (!edit.isModified() || !edit.hasAcceptableInput())
        return;
    edit.setModified(false);
    // Pasted, and nothing that the saved file could hold.
    static const QRegularExpression unstorable("[\\x00-\\x1F\\x{FFFE}\\x{FFFF}]");
    _defaults.setObject(edit.text().remove(unstorable).toStdString(), key);
}

void SettingsBindings::keepUpToDate(const std::string& key, const std::function<void()>& update) {
    update();
    _observers.push_back(_defaults.addObserver(key, [update](std::string_view) { update(); }));
}

} // namespace zelmora::platform
