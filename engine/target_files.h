// Which files are converted, and which of the text steps a file gets.
#pragma once

#include "platform/defaults/user_defaults.h"
#include "platform/files/file_manager.h"

#include <functional>
#include <string>
#include <string_view>

namespace zelmora {

/// Tells target files by their names and finds them under a path. Settings are read at each use.
/// Safe on any thread. The store and the file manager are borrowed and must outlive it.
class TargetFiles {
  public:
    TargetFiles(const platform::UserDefaults& defaults, platform::FileManager& files)
        : _defaults(defaults), _files(files) {}

    /// Calls `found` with the path of each target file under `path`, which may be a file or a
    /// folder; links are not followed. What is no folder is judged by its name alone, be it there
    /// or not. A folder beneath that cannot be read is passed over and answered as a failure.
    platform::Status scan(const std::string& path,
                          const std::function<void(std::string)>& found) const;

    [[nodiscard]] bool isTarget(std::string_view path) const;
    [[nodiscard]] bool isHTMLFile(std::string_view path) const;
    [[nodiscard]] bool isXMLFile(std::string_view path) const;
    [[nodiscard]] bool isCSSFile(std::string_view path) const;
    /// Whether `extension` is in the extension list under `key`, without regard to case.
    [[nodiscard]] bool isExtensionInUserDefaults(std::string_view extension,
                                                 std::string_view key) const;

  private:
    const platform::UserDefaults& _defaults;
    platform::FileManager& _files;
};

} // namespace zelmora
