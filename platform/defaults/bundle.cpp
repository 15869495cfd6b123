#include "platform/defaults/bundle.h"

#include "platform/text/path_string.h"
#include "platform/text/utf8.h"

#include <cstdlib>
#include <unistd.h>

namespace zelmora::platform {

namespace {

/// The path of the running program; empty when the system does not tell (no /proc).
std::string programPath() {
    std::string path(256, '\0');
    for (;;) {
        const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
        if (length < 0)
            return {};
        // A full buffer may hold a cut-off path.
        if (static_cast<size_t>(length) < path.size()) {
            path.resize(static_cast<size_t>(length));
            return path;
        }
        path.resize(path.size() * 2);
    }
}

} // namespace

Bundle Bundle::mainBundle() {
    const std::string programFolder = deletingLastPathComponent(programPath());
    return Bundle(
        appendingPathComponent(deletingLastPathComponent(programFolder), "share/zelmora"));
}

std::string Bundle::pathForResource(std::string_view name, std::string_view type,
                                    std::string_view language) const {
    const std::string folder =
        language.empty() ? _folder
                         : appendingPathComponent(_folder, std::string(language) + ".lproj");
    return appendingPathExtension(appendingPathComponent(folder, name), type);
}

Result<LocalizedStrings> Bundle::localizedStrings(FileManager& files,
                                                  std::string_view language) const {
    const std::string path = pathForResource("Localizable", "strings", language);
    const auto contents = files.contentsAtPath(path);
    if (!contents)
        return contents.error();
    return LocalizedStrings::parse(charsOf(*contents), displayPath(path));
}

std::string preferredLanguage() {
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* value = std::getenv(name);
        if (value && *value)
            return std::string_view(value).starts_with("ja") ? "ja" : "en";
    }
    return "en";
}

} // namespace zelmora::platform
