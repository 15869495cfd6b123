#include "platform/defaults/saved_settings.h"

#include "platform/text/utf8.h"

#include <algorithm>
#include <cerrno>

namespace zelmora::platform {

namespace {

bool isExtensionList(const PropertyListValue& value) {
    const auto* list = value.as<PropertyListArray>();
    return list && std::ranges::all_of(*list, [](const PropertyListValue& item) {
               const auto* entry = item.as<PropertyListDictionary>();
               if (!entry)
                   return false;
               const auto extension = entry->find("nameExtension");
               return extension != entry->end() && extension->second.as<std::string>();
           });
}

std::vector<std::string_view> keysOfWrongType(const PropertyListDictionary& values,
                                              std::span<const SettingKey> knownKeys) {
    std::vector<std::string_view> wrong;
    for (const SettingKey& key : knownKeys) {
        const auto found = values.find(key.name);
        if (found != values.end() && !isValueOfType(found->second, key.type))
            wrong.push_back(key.name);
    }
    return wrong;
}

// A path may hold bytes that are no text: a string setting of that kind is saved as data.

void takeDataAsStrings(PropertyListDictionary& values, std::span<const SettingKey> knownKeys) {
    for (const SettingKey& key : knownKeys) {
        const auto found = values.find(key.name);
        if (found == values.end() || key.type != SettingType::string)
            continue;
        if (const auto* bytes = found->second.as<Bytes>())
            found->second = std::string(charsOf(*bytes));
    }
}

PropertyListDictionary withDataForStrings(PropertyListDictionary values,
                                          std::span<const SettingKey> knownKeys) {
    for (const SettingKey& key : knownKeys) {
        const auto found = values.find(key.name);
        if (found == values.end() || key.type != SettingType::string)
            continue;
        const auto* text = found->second.as<std::string>();
        if (text && !isPropertyListText(*text)) {
            const ByteView bytes = bytesOf(*text);
            found->second = Bytes(bytes.begin(), bytes.end());
        }
    }
    return values;
}

std::string wrongTypeMessage(const std::string& path, std::string_view key) {
    return displayPath(path) + ": " + std::string(key) + ": a value of the wrong type";
}

} // namespace

bool isValueOfType(const PropertyListValue& value, SettingType type) {
    switch (type) {
    case SettingType::boolean:
        return value.as<bool>() != nullptr;
    case SettingType::integer:
        return value.as<int64_t>() != nullptr;
    case SettingType::string:
        return value.as<std::string>() != nullptr;
    case SettingType::extensionList:
        return isExtensionList(value);
    }
    return false;
}

SavedSettings readSavedSettings(FileManager& files, const std::string& path,
                                std::span<const SettingKey> knownKeys) {
    const auto contents = files.contentsAtPath(path);
    if (!contents) {
        if (contents.error().code == ENOENT)
            return {};
        return {{}, {contents.error().message}};
    }
    const std::string name = displayPath(path);
    auto list = propertyListFromXML(charsOf(*contents), name);
    if (!list)
        return {{}, {list.error().message}};
    auto* values = list->as<PropertyListDictionary>();
    if (!values)
        return {{}, {name + ": not a dictionary of settings"}};
    SavedSettings saved{std::move(*values), {}};
    takeDataAsStrings(saved.values, knownKeys);
    for (const std::string_view key : keysOfWrongType(saved.values, knownKeys)) {
        saved.problems.push_back(wrongTypeMessage(path, key));
        saved.values.erase(saved.values.find(key));
    }
    return saved;
}

Result<PropertyListDictionary> mergeIntoSavedSettings(FileManager& files, const std::string& path,
                                                      std::span<const SettingKey> knownKeys,
                                                      const SettingChanges& changes) {
    SavedSettings file = readSavedSettings(files, path, knownKeys);
    if (!file.problems.empty())
        return Error{EINVAL, file.problems.front()};
    for (const auto& [key, value] : changes) {
        if (value)
            file.values.insert_or_assign(key, *value);
        else
            file.values.erase(key);
    }
    // A file that load() would refuse must not come from here.
    if (const auto wrong = keysOfWrongType(file.values, knownKeys); !wrong.empty())
        return Error{EINVAL, wrongTypeMessage(path, wrong.front())};
    const auto xml = xmlFromPropertyList(withDataForStrings(file.values, knownKeys));
    if (!xml)
        return Error{xml.error().code, displayPath(path) + ": " + xml.error().message};
    if (const auto status = files.replaceFileAtPath(path, bytesOf(*xml)); !status)
        return status.error();
    return std::move(file.values);
}

} // namespace zelmora::platform
