// The files that ship with the application.
#pragma once

#include "platform/defaults/localized_strings.h"
#include "platform/files/file_manager.h"

#include <string>
#include <string_view>

namespace zelmora::platform {

/// The resource folder: share/zelmora beside the folder of the running program, the same in the
/// build tree and installed. Immutable, safe on any thread.
class Bundle {
  public:
    /// The bundle of the running program (/proc/self/exe).
    static Bundle mainBundle();
    /// A bundle over any resource folder.
    explicit Bundle(std::string resourceFolder) : _folder(std::move(resourceFolder)) {}

    /// The path of the resource `name`.`type`; in the folder `language`.lproj first when
    /// `language` is not empty. Not checked for existence.
    [[nodiscard]] std::string pathForResource(std::string_view name, std::string_view type,
                                              std::string_view language = {}) const;

    /// The string table of `language` ("en", "ja"); an error when it is missing or unreadable.
    Result<LocalizedStrings> localizedStrings(FileManager& files, std::string_view language) const;

  private:
    std::string _folder;
};

/// The language to speak, from LC_ALL, LC_MESSAGES and LANG, the first that is set and not empty:
/// "ja" when it begins with "ja", otherwise "en".
[[nodiscard]] std::string preferredLanguage();

} // namespace zelmora::platform
