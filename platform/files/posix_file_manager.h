// FileManager on the real file system, by POSIX and Linux calls. One .cpp for each subject.
#pragma once

#include "platform/files/file_manager.h"
#include "platform/files/location.h"

namespace zelmora::platform {

class PosixFileManager final : public FileManager {
  public:
    // posix_looking.cpp
    [[nodiscard]] bool fileExistsAtPath(const std::string& path) override;
    Result<FileType> typeOfItemAtPath(const std::string& path) override;
    [[nodiscard]] bool isDirectoryAtPath(const std::string& path) override;
    Status enumerateAtPath(const std::string& path, const EnumerationVisitor& visitor) override;
    Status checkWayToItemAtPath(const std::string& path, size_t folderLength) override;

    // posix_hfs_codes.cpp
    Result<HFSCodes> hfsCodesOfItemAtPath(const std::string& path) override;
    Status setHFSCodes(HFSCodes codes, const std::string& path) override;

    // posix_reading.cpp
    Result<std::unique_ptr<ReadableFile>> openFileAtPath(const std::string& path) override;
    Result<Bytes> contentsAtPath(const std::string& path) override;

    // posix_writing.cpp
    Status createFileAtPath(const std::string& path, ByteView contents) override;
    [[nodiscard]] std::unique_ptr<NewFile> newFileBesidePath(const std::string& path) override;
    Status replaceFileAtPath(const std::string& path, ByteView contents) override;
    Status appendToFileAtPath(const std::string& path, ByteView contents) override;
    Status createDirectoryAtPath(const std::string& path) override;

    // posix_moving.cpp
    Status removeFileAtPath(const std::string& path) override;
    Status removeItemAtPath(const std::string& path) override;
    Status moveItemAtPath(const std::string& path, const std::string& toPath) override;

    // posix_copying.cpp
    [[nodiscard]] bool itemAtPathContainsItemAtPath(const std::string& path,
                                                    const std::string& otherPath) override;
    Status copyItemAtPath(const std::string& path, const std::string& toPath) override;
};

/// Opens the regular file at `path`, links followed; what is not one is never opened, as opening
/// alone can block or wake a device. `status` receives what is known of the open file. Answers 0
/// or an errno: EISDIR for a folder, EINVAL for the rest.
int openRegularFile(const Location& at, int flags, FileDescriptor& file, struct stat& status);

/// A Status out of an errno, 0 being success.
inline Status statusOf(int code, std::string_view path, std::string_view operation) {
    return code == 0 ? Status() : Status(Error::fromErrno(code, path, operation));
}

/// Runs `action`, which takes a Location and answers 0 or an errno, at `path`.
template<typename Action>
Status performAt(const std::string& path, std::string_view operation, Action action) {
    const Location at(path);
    return statusOf(at.error() != 0 ? at.error() : action(at), path, operation);
}

/// `path` with "/" and `relativePath`, when there is one.
std::string pathInTree(const std::string& path, const std::string& relativePath);

} // namespace zelmora::platform
