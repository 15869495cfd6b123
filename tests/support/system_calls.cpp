#include "tests/support/system_calls.h"

#include <cerrno>
#include <cstdarg>
#include <fcntl.h>
#include <mutex>
#include <sys/stat.h>
#include <sys/types.h>

namespace zelmora::test {

namespace {

std::mutex observerMutex; ///< held while the observer is asked
SystemCallObserver* theObserver = nullptr;
thread_local bool isObserversOwn = false;

/// Asks the observer, whose own calls are not shown to it; 0 without one.
template<typename Question>
int ask(Question question) {
    const std::lock_guard lock(observerMutex);
    isObserversOwn = true;
    const int answer = theObserver != nullptr ? question(*theObserver) : 0;
    isObserversOwn = false;
    return answer;
}

/// Makes a call by `make`, which takes the number of bytes, under the observer's eyes.
template<typename Make>
auto observed(SystemCall call, Make make) -> decltype(make(size_t())) {
    if (isObserversOwn)
        return make(call.count);
    int code = ask([&](SystemCallObserver& observer) { return observer.before(call); });
    decltype(make(size_t())) answer = -1;
    if (code == 0 || call.kind == CallKind::close)
        answer = make(call.count);
    if (code == 0 && answer < 0)
        code = errno;
    if (code == 0)
        ask([&](SystemCallObserver& observer) {
            observer.after(call, answer);
            return 0;
        });
    errno = code;
    return code == 0 ? answer : -1;
}

} // namespace

ObservedSystemCalls::ObservedSystemCalls(SystemCallObserver& observer) {
    const std::lock_guard lock(observerMutex);
    theObserver = &observer;
}

ObservedSystemCalls::~ObservedSystemCalls() {
    const std::lock_guard lock(observerMutex);
    theObserver = nullptr;
}

} // namespace zelmora::test

// NOLINTBEGIN: the linker's names
using zelmora::test::CallKind;
using zelmora::test::observed;

// ZELMORA_WRAP(kind, answer, function, (parameters), (arguments), initializers of the call): the
// bytes to count, if any, are `allowed` among the arguments.
#define ZELMORA_WRAP(KIND, ANSWER, FUNCTION, PARAMETERS, ARGUMENTS, ...)                           \
    ANSWER __real_##FUNCTION PARAMETERS;                                                           \
    ANSWER __wrap_##FUNCTION PARAMETERS {                                                          \
        return observed(                                                                           \
            {.kind = CallKind::KIND, .function = #FUNCTION, __VA_ARGS__},                          \
            [&]([[maybe_unused]] size_t allowed) { return __real_##FUNCTION ARGUMENTS; });         \
    }

extern "C" {

int __real_openat(int folder, const char* name, int flags, ...);
int __wrap_openat(int folder, const char* name, int flags, ...) {
    va_list more;
    va_start(more, flags);
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(more, mode_t) : 0;
    va_end(more);
    return observed({.kind = CallKind::open,
                     .function = "openat",
                     .file = folder,
                     .name = name,
                     .flags = flags},
                    [&](size_t) { return __real_openat(folder, name, flags, mode); });
}

ZELMORA_WRAP(read, ssize_t, read, (int file, void* bytes, size_t count), (file, bytes, allowed),
             .file = file, .count = count)
ZELMORA_WRAP(read, ssize_t, pread, (int file, void* bytes, size_t count, off_t offset),
             (file, bytes, allowed, offset), .file = file, .count = count)
ZELMORA_WRAP(write, ssize_t, write, (int file, const void* bytes, size_t count),
             (file, bytes, allowed), .file = file, .count = count)
ZELMORA_WRAP(write, ssize_t, copy_file_range,
             (int from, off64_t* fromOffset, int to, off64_t* toOffset, size_t count,
              unsigned flags),
             (from, fromOffset, to, toOffset, allowed, flags), .file = to, .count = count)
ZELMORA_WRAP(look, int, fstat, (int file, struct stat* status), (file, status), .file = file)
ZELMORA_WRAP(look, int, fstatat, (int folder, const char* name, struct stat* status, int flags),
             (folder, name, status, flags), .file = folder, .name = name)
ZELMORA_WRAP(look, ssize_t, getdents64, (int folder, void* entries, size_t size),
             (folder, entries, size), .file = folder)
ZELMORA_WRAP(look, ssize_t, readlinkat, (int folder, const char* name, char* target, size_t size),
             (folder, name, target, size), .file = folder, .name = name)
ZELMORA_WRAP(sync, int, fsync, (int file), (file), .file = file)
ZELMORA_WRAP(sync, int, fdatasync, (int file), (file), .file = file)
ZELMORA_WRAP(sync, int, syncfs, (int file), (file), .file = file)
ZELMORA_WRAP(close, int, close, (int file), (file), .file = file)
ZELMORA_WRAP(link, int, linkat,
             (int folder, const char* name, int toFolder, const char* toName, int flags),
             (folder, name, toFolder, toName, flags), .file = folder, .name = name,
             .toFolder = toFolder, .toName = toName)
ZELMORA_WRAP(rename, int, renameat,
             (int folder, const char* name, int toFolder, const char* toName),
             (folder, name, toFolder, toName), .file = folder, .name = name, .toFolder = toFolder,
             .toName = toName)
ZELMORA_WRAP(rename, int, renameat2,
             (int folder, const char* name, int toFolder, const char* toName, unsigned flags),
             (folder, name, toFolder, toName, flags), .file = folder, .name = name,
             .toFolder = toFolder, .toName = toName)
ZELMORA_WRAP(remove, int, unlinkat, (int folder, const char* name, int flags),
             (folder, name, flags), .file = folder, .name = name)
ZELMORA_WRAP(folder, int, mkdirat, (int folder, const char* name, mode_t mode),
             (folder, name, mode), .file = folder, .name = name)
ZELMORA_WRAP(attribute, ssize_t, lgetxattr,
             (const char* path, const char* attribute, void* value, size_t size),
             (path, attribute, value, size), .file = AT_FDCWD, .name = path)
ZELMORA_WRAP(attribute, int, lsetxattr,
             (const char* path, const char* attribute, const void* value, size_t size, int flags),
             (path, attribute, value, size, flags), .file = AT_FDCWD, .name = path)
ZELMORA_WRAP(attribute, ssize_t, fgetxattr,
             (int file, const char* attribute, void* value, size_t size),
             (file, attribute, value, size), .file = file)
ZELMORA_WRAP(attribute, int, fsetxattr,
             (int file, const char* attribute, const void* value, size_t size, int flags),
             (file, attribute, value, size, flags), .file = file)
ZELMORA_WRAP(attribute, ssize_t, flistxattr, (int file, char* names, size_t size),
             (file, names, size), .file = file)
ZELMORA_WRAP(attribute, int, fchmod, (int file, mode_t mode), (file, mode), .file = file)
ZELMORA_WRAP(attribute, int, fchown, (int file, uid_t owner, gid_t group), (file, owner, group),
             .file = file)
ZELMORA_WRAP(attribute, int, futimens, (int file, const struct timespec times[2]), (file, times),
             .file = file)

} // extern "C"
// NOLINTEND
