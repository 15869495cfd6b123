// What the settings will do to a file, in one line.
#pragma once

#include "platform/defaults/localized_strings.h"
#include "platform/defaults/user_defaults.h"

#include <span>
#include <string>
#include <string_view>

namespace zelmora {

/// For example "to UTF-8, LF, backup on"; UTF-8.
[[nodiscard]] std::string settingsSummary(const platform::UserDefaults& defaults,
                                          const platform::LocalizedStrings& strings);

/// The keys that it tells of.
[[nodiscard]] std::span<const std::string_view> settingsSummaryKeys();

} // namespace zelmora
