// What the engine works with.
#pragma once

#include "platform/defaults/localized_strings.h"
#include "platform/defaults/user_defaults.h"
#include "platform/events/run_loop.h"
#include "platform/files/file_manager.h"
#include "platform/ui/user_interface.h"

namespace zelmora {

/// The services that a front-end (or a test) hands to the engine when it makes it. Borrowed: each
/// must outlive every object made with it. `defaults`, `files` and `strings` are used from the
/// worker thread and the main thread, `mainLoop`'s queue too; `userInterface` from the main thread.
struct EngineServices {
    platform::UserDefaults& defaults;
    platform::FileManager& files;
    const platform::LocalizedStrings& strings;
    platform::RunLoop& mainLoop;
    platform::UserInterface& userInterface;
};

} // namespace zelmora
