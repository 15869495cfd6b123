// The words of the program.
#pragma once

#include "platform/defaults/bundle.h"

namespace zelmora {

/// The bundle's string table in the user's language. Without one an empty table, whose texts are
/// their keys; why is then on the standard error.
[[nodiscard]] platform::LocalizedStrings loadStringTable(const platform::Bundle& bundle,
                                                         platform::FileManager& files);

} // namespace zelmora
