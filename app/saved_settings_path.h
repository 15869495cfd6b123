// Where the saved settings stand, the same for every front-end.
#pragma once

#include <string>

namespace zelmora {

/// $XDG_CONFIG_HOME/zelmora/zelmora.plist; that folder's default is ~/.config, also when the
/// variable holds a relative path, which is to be ignored. Absolute, raw bytes.
[[nodiscard]] std::string savedSettingsPath();

} // namespace zelmora
