#include "platform/files/process_setup.h"

#include <csignal>
#include <fcntl.h>
#include <initializer_list>
#include <unistd.h>

namespace zelmora::platform {

void setUpProcess() {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        // Opened the wrong way round: using it is the same error as if it were closed.
        if (fcntl(descriptor, F_GETFD) < 0)
            open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

} // namespace zelmora::platform
