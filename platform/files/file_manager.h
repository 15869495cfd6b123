// The one way to the file system. Nothing else in the system reads, writes, renames or deletes a
// user's file, so a test can make any operation fail by handing in a FileManager of its own.
//
// Paths are the file system's own bytes, of any length (longer than PATH_MAX too). Every operation
// is safe on any thread, blocks until it is done, and answers why it failed. Interrupted system
// calls are resumed; no operation opens anything but a regular file or a folder, so none can hang
// on a FIFO or wake a device. A path with a NUL in it is an error (EINVAL) everywhere.
//
// A write beyond the process's limit on file sizes is an error (EFBIG) only if the process ignores
// SIGXFSZ; otherwise the signal ends it, which costs no file either.
#pragma once

#include "platform/files/status.h"
#include "platform/text/bytes.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>

namespace zelmora::platform {

enum class FileType : int32_t { regular, directory, symbolicLink, other };

/// Macintosh type and creator code: four 8-bit characters each, the first in the most significant
/// byte; 0 means no code. Kept in bytes 0-3 (type) and 4-7 (creator), big-endian, of the 32-byte
/// extended attribute user.com.apple.FinderInfo, the layout under which such a file's Finder
/// information travels on other systems.
struct HFSCodes {
    uint32_t type = 0;
    uint32_t creator = 0;
    bool operator==(const HFSCodes&) const = default;
};

/// A regular file that is open to be read, at any place and by several threads at once.
class ReadableFile {
  public:
    virtual ~ReadableFile() = default;

    /// In bytes, when it was opened.
    [[nodiscard]] virtual uint64_t size() const = 0;

    /// Fills `bytes` with what stands in the file from `offset` on; EAGAIN when that is less.
    virtual Status read(uint64_t offset, std::span<std::byte> bytes) const = 0;

    /// EAGAIN when the file has shrunk, grown or been written to since it was opened. What was read
    /// before is not torn if this succeeds.
    virtual Status checkUnchanged() const = 0;
};

/// A new file on its way to its name. It is dropped, and nothing remains of it, unless
/// finishAtPath() succeeds. Used by one thread at a time.
class NewFile {
  public:
    virtual ~NewFile() = default;

    /// Adds `bytes` at the end and takes them: what comes back is empty, with room that the next
    /// ones may use. The first failure is kept for finishAtPath(); nothing is written after it.
    virtual void write(Bytes& bytes) = 0;

    /// Waits until the bytes are on disk (fdatasync) and gives the file the name `path`, in the
    /// folder it is in. EEXIST when that is taken: it may be called again with another name.
    /// Answers also what failed before. Nothing is written afterwards.
    virtual Status finishAtPath(const std::string& path) = 0;
};

class FileManager {
  public:
    virtual ~FileManager() = default;

    /// The process's FileManager on the real file system.
    static FileManager& defaultManager();

    // Looking. None of these follows a symbolic link at the path itself unless it says so.

    /// Whether anything has this name, a dangling symbolic link included: a name for which this is
    /// false is free to take. Also false where looking fails, so that a search for a free name ends
    /// and the error comes from taking it.
    [[nodiscard]] virtual bool fileExistsAtPath(const std::string& path) = 0;

    /// The type of the item at `path`; ENOENT when there is none.
    virtual Result<FileType> typeOfItemAtPath(const std::string& path) = 0;

    /// Whether a folder is there once links are followed.
    [[nodiscard]] virtual bool isDirectoryAtPath(const std::string& path) = 0;

    /// Whether the item at `path` is the item at `otherPath` or a folder that holds it at any
    /// depth, whatever links the two paths go through. NO when either is not there.
    [[nodiscard]] virtual bool itemAtPathContainsItemAtPath(const std::string& path,
                                                            const std::string& otherPath) = 0;

    /// Whether the way from the folder named by the first `folderLength` bytes of `path` (links
    /// followed) down to the folder that holds the item at `path` leads through folders alone:
    /// ENOTDIR where something else, a link for instance, has taken the place of one.
    virtual Status checkWayToItemAtPath(const std::string& path, size_t folderLength) = 0;

    /// The item's HFS codes; both 0 when it carries none or its file system can hold none.
    virtual Result<HFSCodes> hfsCodesOfItemAtPath(const std::string& path) = 0;

    /// Called for each item beneath a folder with its path relative to that folder and its type.
    /// Answers whether to go on.
    using EnumerationVisitor = std::function<bool(const std::string& relativePath, FileType type)>;

    /// Visits everything beneath the folder at `path`, in the file system's order, sub-folders
    /// (hidden ones too) just before what they hold. Symbolic links are visited, never followed; a
    /// link at `path` itself is not followed either (ENOTDIR). A sub-folder that cannot be read is
    /// passed over and the visit goes on; the first such failure is answered at the end. A folder's
    /// names are read before the first of them is visited: what the visitor adds or removes there
    /// does not disturb the visit. ESTALE ends it when folders were moved away from under it.
    virtual Status enumerateAtPath(const std::string& path, const EnumerationVisitor& visitor) = 0;

    // Reading and writing.

    /// Opens the regular file at `path`, links followed. Anything but a regular file is an error
    /// (EISDIR for a folder, EINVAL for the rest) and is not opened.
    virtual Result<std::unique_ptr<ReadableFile>> openFileAtPath(const std::string& path) = 0;

    /// Its whole contents. A file that shrinks, grows or is written to while it is read is an error
    /// (EAGAIN): never a torn text.
    virtual Result<Bytes> contentsAtPath(const std::string& path) = 0;

    /// Makes a new file at `path` holding `contents`, with the permissions a new file gets. The
    /// bytes are on disk (fdatasync) when it succeeds, and so is the name (fsync of its folder).
    /// They are written to a file without a name, which then takes it; so `path` holds all of them
    /// or does not exist, and a process killed on the way leaves nothing. (Where the file system
    /// has no such files, to a scratch file in the same folder, ".zlm" and digits.) A name that is
    /// taken, by a dangling link too, is an error (EEXIST) and stays as it was. On failure no
    /// scratch file remains.
    virtual Status createFileAtPath(const std::string& path, ByteView contents) = 0;

    /// The same in the folder that holds the item `path`, for contents that are made piece by piece
    /// and a name that is chosen when they are complete. Never null: a failure is the new file's,
    /// told when it is finished.
    [[nodiscard]] virtual std::unique_ptr<NewFile> newFileBesidePath(const std::string& path) = 0;

    /// The same, but replaces what regular file has the name (EISDIR or EINVAL when it is none).
    /// Links are followed and stay: the file they lead to is replaced. For files of the program's
    /// own (settings), never for a user's. A replaced file's permissions and, where the process may
    /// set it, owner are kept.
    virtual Status replaceFileAtPath(const std::string& path, ByteView contents) = 0;

    /// Adds `contents` at the end of the existing regular file at `path`, links followed, in a
    /// single append; what stood there before is never touched. ENOENT when there is none, EISDIR
    /// or EINVAL when it is not a regular file, ENOSPC when only a part could be added.
    virtual Status appendToFileAtPath(const std::string& path, ByteView contents) = 0;

    /// Makes a folder, and the missing folders above it, with default permissions; the names of all
    /// of them are on disk when it succeeds. A folder that exists (links followed) is a success;
    /// anything else that has the name is EEXIST.
    virtual Status createDirectoryAtPath(const std::string& path) = 0;

    /// Sets both HFS codes. Two zero codes on an item without the attribute do nothing and
    /// succeed; the rest of an existing attribute is kept. A file system that cannot hold
    /// a non-zero code is an error (ENOTSUP), and so is a symbolic link (EPERM).
    virtual Status setHFSCodes(HFSCodes codes, const std::string& path) = 0;

    // Moving, copying, deleting.

    /// Deletes a file or a symbolic link, never a folder (EISDIR).
    virtual Status removeFileAtPath(const std::string& path) = 0;

    /// Deletes an item of any kind, a folder with everything in it; links are deleted, never
    /// followed. What cannot be deleted stays and the rest goes; the first failure is answered.
    virtual Status removeItemAtPath(const std::string& path) = 0;

    /// Renames an item within one file system. A name that is taken is an error (EEXIST); nothing
    /// is ever replaced.
    virtual Status moveItemAtPath(const std::string& path, const std::string& toPath) = 0;

    /// Copies an item, a folder with everything in it at any depth: names, contents, permissions,
    /// times, symbolic links as links, the user's extended attributes; owners and the system's
    /// attributes where the process may set them. `toPath` must be free (EEXIST) and must not lie
    /// inside the folder being copied (EINVAL). The copy is made under a scratch name beside
    /// `toPath` and takes that name when it is complete and on disk, so a copy that failed half-way
    /// never looks whole; then the name is brought to the disk. On failure before that the scratch
    /// copy is deleted. A FIFO, socket or device is made
    /// anew, never opened; for a device that takes the superuser (EPERM). A file that grows
    /// meanwhile is copied up to its first length; one that shrinks fails the copy (EAGAIN). The
    /// error names the item that failed.
    virtual Status copyItemAtPath(const std::string& path, const std::string& toPath) = 0;
};

} // namespace zelmora::platform
