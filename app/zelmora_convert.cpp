// The console program's entry.

#include "app/console_application.h"

#include <csignal>

int main(int argc, char** argv) {
    // A reader that has gone away shows as a failed write, not as a death between two files.
    std::signal(SIGPIPE, SIG_IGN);
    zelmora::ConsoleApplication application(zelmora::platform::FileManager::defaultManager());
    const std::span arguments(argv, static_cast<size_t>(argc));
    return application.run(arguments.subspan(argc > 0 ? 1 : 0));
}
