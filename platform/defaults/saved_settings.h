// The file that holds the saved settings. Internal to the settings store.
#pragma once

#include "platform/defaults/user_defaults.h"

namespace zelmora::platform {

using ValuePointer = std::shared_ptr<const PropertyListValue>;

/// Keys and what was set (a value) or removed (null) there.
using SettingChanges = std::map<std::string, ValuePointer, std::less<>>;

/// What a saved file holds, and what is wrong with it.
struct SavedSettings {
    PropertyListDictionary values;     ///< without those of the wrong type
    std::vector<std::string> problems; ///< one message each, the file first; empty: all is well
};

/// Reads the file at `path`; a missing one is an empty one. Only values of `knownKeys` are checked.
SavedSettings readSavedSettings(FileManager& files, const std::string& path,
                                std::span<const SettingKey> knownKeys);

/// Reads the file at `path`, applies `changes` and replaces it; answers what it then holds. A file
/// with a problem is left alone (EINVAL). REQUIRES: the file's lock is held.
Result<PropertyListDictionary> mergeIntoSavedSettings(FileManager& files, const std::string& path,
                                                      std::span<const SettingKey> knownKeys,
                                                      const SettingChanges& changes);

} // namespace zelmora::platform
