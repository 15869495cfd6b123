// Watches the system calls by which the code under test reaches the disk, and fails them on demand.
//
// For test programs that are linked with --wrap for each of these calls (see watch_system_calls in
// tests/CMakeLists.txt): what the linked floors call then comes here first. Libraries outside the
// program are not watched.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zelmora::test {

enum class CallKind {
    open,
    look,
    read,
    write,
    sync,
    close,
    link,
    rename,
    remove,
    folder,
    attribute
};

/// One call. Names are as given: relative to their folder, which may be AT_FDCWD.
struct SystemCall {
    CallKind kind;
    const char* function;
    int file = -1;              ///< what it works on, or the folder that `name` is in
    const char* name = nullptr; ///< null: none
    int toFolder = -1;          ///< of a link or a rename
    const char* toName = nullptr;
    int flags = 0;    ///< of open
    size_t count = 0; ///< bytes to read or to write
};

class SystemCallObserver {
  public:
    virtual ~SystemCallObserver() = default;
    /// Answers 0 to have the call made, or the errno with which it is to fail; a file whose close
    /// is to fail is closed all the same. May lower the count of a call.
    virtual int before(SystemCall&) { return 0; }
    /// The call has succeeded.
    virtual void after(const SystemCall&, int64_t /*answer*/) {}
};

/// Shows the program's system calls to an observer for as long as it lives, those of all threads,
/// one at a time. The observer's own are not shown.
class ObservedSystemCalls {
  public:
    explicit ObservedSystemCalls(SystemCallObserver& observer);
    ObservedSystemCalls(const ObservedSystemCalls&) = delete;
    ObservedSystemCalls& operator=(const ObservedSystemCalls&) = delete;
    ~ObservedSystemCalls();
};

} // namespace zelmora::test
