#include "engine/settings.h"

#include <algorithm>
#include <array>

namespace zelmora::settings {

namespace {

using platform::PropertyListArray;
using platform::PropertyListDictionary;
using platform::PropertyListValue;
using platform::SettingKey;
using enum platform::SettingType;

constexpr std::array kKeys{
    SettingKey{nameExtensionArray, extensionList},
    SettingKey{allowConvertNoNameExtension, boolean},
    SettingKey{allowConvertHiddenFiles, boolean},
    SettingKey{htmlExtensionArray, extensionList},
    SettingKey{xmlExtensionArray, extensionList},
    SettingKey{lineBreakCode, integer},
    SettingKey{encodingCode, integer},
    SettingKey{littleEndian, boolean},
    SettingKey{putBOM, boolean},
    SettingKey{sjisDeviceCharRead, integer},
    SettingKey{sjisDeviceCharWrite, integer},
    SettingKey{halfToFullKatakana, boolean},
    SettingKey{replaceMETA, boolean},
    SettingKey{exportMETA, boolean},
    SettingKey{replaceXMLProc, boolean},
    SettingKey{replaceCSSCharSet, boolean},
    SettingKey{exportCSSCharSet, boolean},
    SettingKey{replaceLink, boolean},
    SettingKey{actionForCreator, integer},
    SettingKey{creatorCode, string},
    SettingKey{actionForFileType, integer},
    SettingKey{fileType, string},
    SettingKey{convertExtension, integer},
    SettingKey{extensionOfDstFiles, string},
    SettingKey{actionForAddingExtension, integer},
    SettingKey{autoBackup, boolean},
    SettingKey{backupDataDir, string},
    SettingKey{actionForDupBackupFiles, integer},
    SettingKey{createLogFile, boolean},
    SettingKey{logFilePath, string},
    SettingKey{autoQuit, boolean},
    SettingKey{displayManualAlert, boolean},
};

std::optional<PropertyListValue> booleanFromText(std::string_view text) {
    if (text == "YES" || text == "true" || text == "1")
        return true;
    if (text == "NO" || text == "false" || text == "0")
        return false;
    return std::nullopt;
}

std::optional<PropertyListValue> extensionListFromText(std::string_view text) {
    PropertyListArray list;
    while (!text.empty()) {
        const size_t comma = text.find(',');
        const std::string_view extension = text.substr(0, comma);
        const bool endsInComma = comma == text.size() - 1;
        if (extension.empty() || endsInComma || extension.find_first_of("./") != extension.npos)
            return std::nullopt;
        list.emplace_back(PropertyListDictionary{{"nameExtension", std::string(extension)}});
        text.remove_prefix(comma == text.npos ? text.size() : comma + 1);
    }
    return list;
}

} // namespace

std::span<const SettingKey> allKeys() {
    return kKeys;
}

const SettingKey* keyNamed(std::string_view name) {
    const auto found = std::ranges::find(kKeys, name, &SettingKey::name);
    return found == kKeys.end() ? nullptr : &*found;
}

std::optional<PropertyListValue> valueFromText(const SettingKey& key, std::string_view text) {
    switch (key.type) {
    case boolean:
        return booleanFromText(text);
    case integer:
        if (const auto number = platform::integerFromDecimal(text))
            return *number;
        return std::nullopt;
    case string:
        return std::string(text);
    case extensionList:
        return extensionListFromText(text);
    }
    return std::nullopt;
}

void registerDefaults(platform::UserDefaults& defaults, platform::FileManager& files,
                      const platform::Bundle& bundle) {
    const std::string path = bundle.pathForResource("UserDefaults", "plist");
    const auto contents = files.contentsAtPath(path);
    if (!contents)
        return;
    const auto list = platform::propertyListFromXML(platform::charsOf(*contents), path);
    const auto* values = list ? list->as<PropertyListDictionary>() : nullptr;
    if (values)
        defaults.registerDefaults(*values);
}

} // namespace zelmora::settings
