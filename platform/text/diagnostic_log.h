// Messages for whoever looks into a fault; never for the user, who has alerts and the log file.
#pragma once

#include <string_view>

namespace zelmora::platform {

/// Writes `message` as one line to the standard error. Safe on any thread; lines do not mix. A
/// failure to write is ignored.
void platformLog(std::string_view message);

} // namespace zelmora::platform
