#include "engine/target_files.h"

#include "engine/settings.h"
#include "platform/text/path_string.h"

namespace zelmora {

using platform::FileType;

platform::Status TargetFiles::scan(const std::string& path,
                                   const std::function<void(std::string)>& found) const {
    const auto type = _files.typeOfItemAtPath(path);
    if (!type.ok() || *type != FileType::directory) {
        if (isTarget(path))
            found(path);
        return {};
    }
    return _files.enumerateAtPath(path, [&](const std::string& relativePath, FileType entryType) {
        if (entryType != FileType::directory && isTarget(relativePath))
            found(platform::appendingPathComponent(path, relativePath));
        return true;
    });
}

bool TargetFiles::isTarget(std::string_view path) const {
    const auto name = platform::lastPathComponent(path);
    if (name == ".DS_Store")
        return false;
    if (name.starts_with('.') && !_defaults.boolForKey(settings::allowConvertHiddenFiles))
        return false;
    const auto extension = platform::pathExtension(name);
    if (!extension.empty())
        return isExtensionInUserDefaults(extension, settings::nameExtensionArray);
    return _defaults.boolForKey(settings::allowConvertNoNameExtension);
}

bool TargetFiles::isHTMLFile(std::string_view path) const {
    return isExtensionInUserDefaults(platform::pathExtension(path), settings::htmlExtensionArray);
}

bool TargetFiles::isXMLFile(std::string_view path) const {
    return isExtensionInUserDefaults(platform::pathExtension(path), settings::xmlExtensionArray);
}

bool TargetFiles::isCSSFile(std::string_view path) const {
    return platform::equalsIgnoringASCIICase(platform::pathExtension(path), "css");
}

bool TargetFiles::isExtensionInUserDefaults(std::string_view extension,
                                            std::string_view key) const {
    if (extension.empty())
        return false;
    const auto value = _defaults.sharedObjectForKey(key);
    const auto* list = value ? value->as<platform::PropertyListArray>() : nullptr;
    if (list == nullptr)
        return false;
    for (const auto& entry : *list) {
        const auto* dictionary = entry.as<platform::PropertyListDictionary>();
        if (dictionary == nullptr)
            continue;
        const auto found = dictionary->find("nameExtension");
        const auto* name = found == dictionary->end() ? nullptr : found->second.as<std::string>();
        if (name != nullptr && platform::equalsIgnoringASCIICase(*name, extension))
            return true;
    }
    return false;
}

} // namespace zelmora
