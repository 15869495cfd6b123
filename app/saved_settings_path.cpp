#include "app/saved_settings_path.h"

#include "platform/text/path_string.h"

#include <cstdlib>

namespace zelmora {

std::string savedSettingsPath() {
    const char* variable = std::getenv("XDG_CONFIG_HOME");
    const std::string folder = variable != nullptr && variable[0] == '/'
                                   ? std::string(variable)
                                   : platform::expandingTilde("~/.config");
    return platform::appendingPathComponent(folder, "zelmora/zelmora.plist");
}

} // namespace zelmora
