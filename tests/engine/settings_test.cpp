#include "engine/settings.h"

#include "tests/support/temporary_directory.h"

#include <gtest/gtest.h>
#include <limits>

namespace zelmora::settings {
namespace {

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
        {putBOM, "true", true},
        {putBOM, "1", true},
        {putBOM, "NO", false},
        {putBOM, "false", false},
        {putBOM, "0", false},
        {putBOM, "yes", std::nullopt},
        {putBOM, "", std::nullopt},
        {encodingCode, "+4", 4},
        {encodingCode, "-9223372036854775808", std::numeric_limits<int64_t>::min()},
        {encodingCode, "9223372036854775808", std::nullopt},
        {encodingCode, "+-4", std::nullopt},
        {encodingCode, "4.0", std::nullopt},
        {encodingCode, "", std::nullopt},
        {backupDataDir, "~/\xFF=a,b", "~/\xFF=a,b"},
        {nameExtensionArray, "", PropertyListArray{}},
        {nameExtensionArray, "txt,HTM,日本", extensions({"txt", "HTM", "日本"})},
        {nameExtensionArray, "txt,", std::nullopt},
        {nameExtensionArray, "a,,b", std::nullopt},
        {nameExtensionArray, ".txt", std::nullopt},
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
    for (const std::string_view name : {"", "putbom", "putBOM ", "putBO"})
        EXPECT_EQ(keyNamed(name), nullptr) << name;
    EXPECT_EQ(codeForKey(defaults, encodingCode), 4) << "UTF-8";
    EXPECT_TRUE(defaults.boolForKey(autoBackup));
    EXPECT_EQ(defaults.arrayForKey(xmlExtensionArray), extensions({"xml", "xhtml"}));
    defaults.setInteger(0x180000001, encodingCode); // a code is the low 32 bits
    EXPECT_EQ(codeForKey(defaults, encodingCode), std::numeric_limits<int32_t>::min() + 1);
}

TEST(SettingsTest, UnreadableDefaultsRegisterNothing) {
    const test::TemporaryDirectory directory;
    directory.writeFile("text/UserDefaults.plist", "text");
    directory.writeFile("array/UserDefaults.plist", "<plist><array/></plist>");
    for (const std::string_view folder : {"missing", "text", "array"}) {
        UserDefaults defaults;
        registerDefaults(defaults, FileManager::defaultManager(),
                         platform::Bundle(directory / folder));
        EXPECT_EQ(defaults.objectForKey(encodingCode), std::nullopt) << folder;
    }
}

} // namespace
} // namespace zelmora::settings
