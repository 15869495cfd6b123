// File URLs, as drops and other programs hand them over.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zelmora::platform {

/// The path that a file URL of this machine names, in raw bytes ("file:///a%20b",
/// "file://localhost/a", "file:/a"); nullopt for anything else: another scheme or host, a path that
/// is not absolute, a bad percent escape, a NUL.
[[nodiscard]] std::optional<std::string> pathFromFileURL(std::string_view url);

/// The file URL of an absolute path, raw bytes: all but ASCII letters, digits and -._~/ is escaped.
[[nodiscard]] std::string fileURLFromPath(std::string_view path);

} // namespace zelmora::platform
