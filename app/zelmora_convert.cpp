// The console program's entry.

#include "app/console_application.h"

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {

/// Takes the standard descriptors that the caller has closed. A converted file would get their
/// numbers otherwise, and messages would be written into it. Opened the wrong way round: using
/// them still fails.
void occupyStandardDescriptors() {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(descriptor, F_GETFD) < 0)
            open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
}

} // namespace

int main(int argc, char** argv) {
    occupyStandardDescriptors();
    // A reader that has gone away shows as a failed write, not as a death between two files.
    std::signal(SIGPIPE, SIG_IGN);
    zelmora::ConsoleApplication application(zelmora::platform::FileManager::defaultManager());
    const std::span arguments(argv, static_cast<size_t>(argc));
    return application.run(arguments.subspan(argc > 0 ? 1 : 0));
}
