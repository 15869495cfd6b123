// Preloaded into a program under test: a disk on which syncing a file takes long.

#include <cstdlib>
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

/// Makes the file $SYNC_BEGUN and waits $SYNC_SECONDS before it does what it is there for.
extern "C" int fdatasync(int descriptor) {
    if (const char* sign = std::getenv("SYNC_BEGUN"))
        close(open(sign, O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
    if (const char* seconds = std::getenv("SYNC_SECONDS"))
        sleep(static_cast<unsigned>(std::atoi(seconds)));
    return static_cast<int>(syscall(SYS_fdatasync, descriptor));
}
