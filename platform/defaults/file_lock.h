// A lock between processes, for the moment in which a shared file is read, changed and replaced.
#pragma once

#include "platform/files/file_descriptor.h"
#include "platform/files/status.h"

#include <string>

namespace zelmora::platform {

/// Holds an advisory lock (flock) on a file of its own until destroyed. The system drops the lock
/// with the process, so a killed program leaves no stale lock; the empty lock file stays, for
/// deleting it would let two processes hold locks on two files of one name. Excludes threads of
/// one process too.
class FileLock {
  public:
    /// Takes the lock at `path`, made when missing in a folder that must exist. Waits up to five
    /// seconds for another holder, then EAGAIN: a stopped process must not hang this one.
    static Result<FileLock> acquire(const std::string& path);

  private:
    explicit FileLock(FileDescriptor file) : _file(std::move(file)) {}

    FileDescriptor _file;
};

} // namespace zelmora::platform
