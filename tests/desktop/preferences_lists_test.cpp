// The editable lists of extensions.
#include "preferences_fixture.h"

#include <QAbstractButton>
#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>

namespace zelmora::test {

namespace {

constexpr const char* kLists[] = {"nameExtensionArray", "htmlExtensionArray", "xmlExtensionArray"};

/// The extensions that `defaults` hold under `key`, one space after each.
std::string extensions(const platform::UserDefaults& defaults, std::string_view key) {
    std::string all;
    for (const auto& element : defaults.arrayForKey(key).value_or(platform::PropertyListArray())) {
        const auto* entries = element.as<platform::PropertyListDictionary>();
        all += *entries->at(std::string(kNameExtension)).as<std::string>() + " ";
    }
    return all;
}

std::string shown(const QListWidget& list) {
    QString all;
    for (int row = 0; row < list.count(); ++row)
        all += list.item(row)->text() + " ";
    return all.toStdString();
}

/// Types into the row being edited and presses `key`.
void typeIntoEditor(const QListWidget& list, const QString& text, Qt::Key key) {
    auto* editor = list.viewport()->findChild<QLineEdit*>();
    ASSERT_NE(editor, nullptr);
    editor->setText(text);
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
    QApplication::sendEvent(editor, &press);
    QApplication::processEvents(); // the delegate commits from the loop
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

} // namespace

class ListsTest : public PreferencesTest {
  protected:
    ListsTest() {
        for (const char* key : kLists) {
            platform::PropertyListArray array;
            for (const char* extension : {"htm", "html"})
                array.emplace_back(platform::PropertyListDictionary{
                    {std::string(kNameExtension), std::string(extension)}});
            defaults.setObject(std::move(array), key);
        }
        open();
    }

    void click(const std::string& button) { find<QAbstractButton>(button.c_str()).click(); }
    /// Both the window and the saved file have `expected`.
    void expectList(const char* key, const std::string& expected, const std::string& what) {
        EXPECT_EQ(shown(find<QListWidget>(key)), expected) << key << " " << what;
        EXPECT_EQ(extensions(*savedDefaults(), key), expected) << key << " " << what;
    }
};

TEST_F(ListsTest, EditsAddsAndRemovesAtOnce) {
    for (const char* key : kLists) {
        auto& list = find<QListWidget>(key);
        list.setCurrentRow(1);
        list.editItem(list.item(1));
        typeIntoEditor(list, "shtml", Qt::Key_Return);
        expectList(key, "htm shtml ", "edited");
        click(std::string(key) + "Add");
        typeIntoEditor(list, "xht", Qt::Key_Return);
        expectList(key, "htm shtml xht ", "added");
        list.setCurrentRow(0);
        click(std::string(key) + "Remove");
        expectList(key, "shtml xht ", "removed");
    }
}

TEST_F(ListsTest, TakesWhatIsMeantAndRefusesTheRest) {
    const char* key = kLists[0];
    auto& list = find<QListWidget>(key);
    for (const auto& [typed, taken] :
         {std::pair{" .txt ", "txt "}, {"日本", "日本 "}, {"", ""}, {"HTM", ""}, {"a/b", ""}}) {
        click(std::string(key) + "Add");
        EXPECT_EQ(list.count(), 3) << typed;
        typeIntoEditor(list, typed, Qt::Key_Return);
        expectList(key, "htm html " + std::string(taken), typed);
        if (list.count() == 3) {
            list.setCurrentRow(2);
            click(std::string(key) + "Remove");
        }
    }
    list.editItem(list.item(0));
    typeIntoEditor(list, "xyz", Qt::Key_Escape);
    expectList(key, "htm html ", "given up");
}

} // namespace zelmora::test
