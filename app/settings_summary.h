// What the settings will do to a file, in one line.
#pragma once

#include "platform/defaults/localized_strings.h"
#include "platform/defaults/user_defaults.h"
#include "platform/events/run_loop.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace zelmora {

/// For example "to UTF-8, LF, backup on"; UTF-8.
[[nodiscard]] std::string settingsSummary(const platform::UserDefaults& defaults,
                                          const platform::LocalizedStrings& strings);

/// Keeps someone informed of it: tells `show` the summary on its making and after each change of
/// what it tells of, on the main thread. Everything given is borrowed but the function.
class SettingsSummary {
  public:
    using Show = std::function<void(const std::string&)>;
    SettingsSummary(platform::UserDefaults& defaults, const platform::LocalizedStrings& strings,
                    platform::RunLoop& mainLoop, Show show);
    ~SettingsSummary();
    SettingsSummary(const SettingsSummary&) = delete;
    SettingsSummary& operator=(const SettingsSummary&) = delete;

  private:
    platform::UserDefaults& _defaults;
    std::vector<platform::UserDefaults::ObserverID> _observers;
    /// Owned here alone; changes that are still to be told hold it weakly.
    std::shared_ptr<const std::function<void()>> _update;
};

} // namespace zelmora
