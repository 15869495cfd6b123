// The settings' names, types and texts, and which files under a path they make targets.

#include "engine/settings.h"
#include "engine/target_files.h"
#include "engine_fixture.h"

#include <limits>
#include <unistd.h>

namespace zelmora::test {
namespace {

using namespace settings;
using platform::FileManager;
using platform::PropertyListArray;
using platform::PropertyListDictionary;
using platform::PropertyListValue;
using platform::UserDefaults;

PropertyListArray extensions(std::initializer_list<const char*> names) {
    PropertyListArray list;
    for (const char* name : names)
        list.emplace_back(PropertyListDictionary{{"nameExtension", name}});
    return list;
}

TEST(SettingsTest, ReadsValuesFromText) {
    const struct {
        std::string_view key, text;
        std::optional<PropertyListValue> value;
    } cases[] = {
        {putBOM, "YES", true},
        {putBOM, "NO", false},
        {putBOM, "0", false},
        {putBOM, "yes", std::nullopt},
        {encodingCode, "+4", 4},
        {encodingCode, "-9223372036854775808", std::numeric_limits<int64_t>::min()},
        {encodingCode, "9223372036854775808", std::nullopt},
        {encodingCode, "4.0", std::nullopt},
        {backupDataDir, "~/\xFF=a,b", "~/\xFF=a,b"},
        {nameExtensionArray, "", PropertyListArray{}},
        {nameExtensionArray, "txt,HTM,日本", extensions({"txt", "HTM", "日本"})},
        {nameExtensionArray, "txt,", std::nullopt},
        {nameExtensionArray, "a/b", std::nullopt},
    };
    for (const auto& [name, text, value] : cases)
        EXPECT_EQ(valueFromText(*keyNamed(name), text), value) << name << "=" << text;
}

TEST(SettingsTest, ShippedDefaultsGiveEveryKeyAValueOfItsType) {
    UserDefaults defaults;
    registerDefaults(defaults, FileManager::defaultManager(), platform::Bundle(ZELMORA_RESOURCES));
    for (const auto& key : allKeys()) {
        EXPECT_EQ(keyNamed(key.name), &key) << key.name << " stands twice";
        const auto value = defaults.objectForKey(key.name);
        ASSERT_TRUE(value) << key.name;
        EXPECT_TRUE(platform::isValueOfType(*value, key.type)) << key.name;
    }
    EXPECT_EQ(keyNamed("putbom"), nullptr);
    EXPECT_EQ(codeForKey(defaults, encodingCode), 4) << "UTF-8";
    EXPECT_TRUE(defaults.boolForKey(autoBackup));
}

class TargetFilesTest : public EngineTest {
  protected:
    void setExtensions(std::string_view key, const char* list) {
        defaults.setObject(*valueFromText(*keyNamed(key), list), key);
    }
    TargetFiles targets{defaults, files};
};

TEST_F(TargetFilesTest, NameAloneDecides) {
    setExtensions(nameExtensionArray, "txt,HTM");
    const struct {
        const char* name;
        bool answers[4]; ///< with neither switch, with each alone, with both
    } cases[] = {
        {"/x/a.TXT", {true, true, true, true}},
        {"/x/a.html", {false, false, false, false}},
        {"/x/README", {false, false, true, true}},
        {"/x/.hidden.txt", {false, true, false, true}},
        {"/x/.profile", {false, false, false, true}},
        {"/x/.DS_Store", {false, false, false, false}},
        {"/.hidden/a.txt", {true, true, true, true}},
        {"/x.txt/a", {false, false, true, true}},
    };
    for (const auto& [name, answers] : cases) {
        for (const int mode : {0, 1, 2, 3}) {
            defaults.setBool((mode & 1) != 0, allowConvertHiddenFiles);
            defaults.setBool((mode & 2) != 0, allowConvertNoNameExtension);
            EXPECT_EQ(targets.isTarget(name), answers[mode]) << name << " " << mode;
        }
    }
    // Entries of another shape are passed over.
    defaults.setObject(PropertyListArray{std::string("txt")}, nameExtensionArray);
    EXPECT_FALSE(targets.isTarget("a.txt"));
}

TEST_F(TargetFilesTest, LinksAreNotFollowedAndWhatIsNotThereMayBeATarget) {
    folder.writeFile("out/e.txt", "");
    folder.writeFile("folder.txt/d.bin", "");
    ASSERT_EQ(symlink("out", (folder / "link").c_str()), 0);
    const std::pair<const char*, Items> cases[] = {{"", {"out/e.txt"}},
                                                   {"out", {"out/e.txt"}},
                                                   {"link", {}}, // a link is no folder
                                                   {"folder.txt/d.bin", {}},
                                                   {"not there.txt", {"not there.txt"}}};
    for (const auto& [name, expected] : cases) {
        Items names;
        EXPECT_TRUE(targets
                        .scan(folder.path() + (*name ? "/" : "") + name,
                              [&](const std::string& target) {
                                  names.push_back(target.substr(folder.path().size() + 1));
                              })
                        .ok());
        EXPECT_EQ(names, expected) << name;
    }
}

} // namespace
} // namespace zelmora::test
