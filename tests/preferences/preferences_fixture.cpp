#include "preferences_fixture.h"

#include "engine/settings.h"

#include <QApplication>
#include <QLineEdit>

namespace zelmora::test {

namespace {

/// Qt's application: one for all tests, which must be gone before Qt's static objects are.
class ApplicationEnvironment final : public ::testing::Environment {
  public:
    void SetUp() override {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        _application = std::make_unique<QApplication>(_argumentCount, _arguments);
    }
    void TearDown() override { _application.reset(); }

  private:
    char _name[18] = "preferences_tests";
    char* _arguments[2] = {_name, nullptr};
    int _argumentCount = 1;
    std::unique_ptr<QApplication> _application;
};

const auto* const environment = ::testing::AddGlobalTestEnvironment(new ApplicationEnvironment);

} // namespace

std::vector<std::string> AnsweringPanels::runOpenPanel(const platform::OpenPanel& panel,
                                                       platform::Window* sheetParent) {
    lastOpenPanel = panel;
    lastSheetParent = sheetParent;
    return answer ? std::vector{*answer} : std::vector<std::string>();
}

std::optional<std::string> AnsweringPanels::runSavePanel(const platform::SavePanel& panel,
                                                         platform::Window* sheetParent) {
    lastSavePanel = panel;
    lastSheetParent = sheetParent;
    return answer;
}

PreferencesTest::PreferencesTest() : defaults(settings::allKeys()) {
    const platform::Bundle bundle(ZELMORA_RESOURCES);
    settings::registerDefaults(defaults, files, bundle);
    strings = bundle.localizedStrings(files, "en").value();
    EXPECT_TRUE(defaults.load(files, folder / "saved.plist").empty());
    open();
}

void PreferencesTest::open() {
    close();
    controller = std::make_unique<ZelPrefWndController>(
        PreferencesServices{defaults, files, strings, userInterface, panels,
                            [this](std::string_view name) { return loadForm(name); }});
    controller->showWindow();
}

std::unique_ptr<platform::LoadedForm> PreferencesTest::loadForm(std::string_view name) {
    const auto path = platform::Bundle(ZELMORA_RESOURCES).pathForResource(name, "ui");
    auto form = platform::QtInterface::load(files, path, defaults);
    window = &form.value()->widget();
    return std::move(form.value());
}

std::unique_ptr<platform::UserDefaults> PreferencesTest::savedDefaults() {
    auto other = std::make_unique<platform::UserDefaults>(settings::allKeys());
    EXPECT_TRUE(other->load(files, folder / "saved.plist").empty());
    return other;
}

void PreferencesTest::type(const char* name, const QString& text) {
    auto& edit = find<QLineEdit>(name);
    edit.clear();
    edit.insert(text);
    edit.setModified(true);
    Q_EMIT edit.editingFinished();
}

} // namespace zelmora::test
