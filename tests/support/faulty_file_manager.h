// A FileManager that passes every operation on to another one, remembers it, and fails on demand.
#pragma once

#include "platform/files/file_manager.h"

#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace zelmora::test {

/// Stands between the code under test and `target`, which must outlive it. A failed operation does
/// nothing at all but answer the error. Safe on any thread, as any FileManager is.
///
/// The questions that answer a bool cannot fail; they are not counted.
class FaultyFileManager final : public platform::FileManager {
    using Bytes = platform::Bytes;
    using ByteView = platform::ByteView;
    using Path = std::string;
    using Status = platform::Status;
    template<typename T>
    using Result = platform::Result<T>;

  public:
    struct Operation {
        std::string name; ///< the method's name
        std::string path; ///< its first path
        bool operator==(const Operation&) const = default;
    };

    explicit FaultyFileManager(platform::FileManager& target) : _target(target) {}

    /// Every operation of this name fails with this errno, from now on; with 0 it works again.
    void failEvery(const std::string& name, int code);

    /// Called with each operation before it is carried out, on the thread that asks for it. Set it
    /// while no other thread uses this.
    void setHook(std::function<void(const Operation&)> hook) { _hook = std::move(hook); }

    /// What has been asked for so far, failed operations included.
    [[nodiscard]] std::vector<Operation> operations() const;

    [[nodiscard]] bool fileExistsAtPath(const Path& path) override {
        return _target.fileExistsAtPath(path);
    }
    [[nodiscard]] bool isDirectoryAtPath(const Path& path) override {
        return _target.isDirectoryAtPath(path);
    }
    [[nodiscard]] bool itemAtPathContainsItemAtPath(const Path& path, const Path& other) override {
        return _target.itemAtPathContainsItemAtPath(path, other);
    }

    /// What is done with the new file are operations too, "write" and "finish". When one fails, the
    /// file behind it is dropped.
    [[nodiscard]] std::unique_ptr<platform::NewFile> newFileBesidePath(const Path& path) override;

#define ZELMORA_PASS(ANSWER, METHOD, PARAMETERS, ARGUMENTS)                                        \
    ANSWER METHOD PARAMETERS override {                                                            \
        return perform(#METHOD, path, [&] { return _target.METHOD ARGUMENTS; });                   \
    }
    ZELMORA_PASS(Result<platform::FileType>, typeOfItemAtPath, (const Path& path), (path))
    ZELMORA_PASS(Status, checkWayToItemAtPath, (const Path& path, size_t length), (path, length))
    ZELMORA_PASS(Result<platform::HFSCodes>, hfsCodesOfItemAtPath, (const Path& path), (path))
    ZELMORA_PASS(Status, enumerateAtPath, (const Path& path, const EnumerationVisitor& visitor),
                 (path, visitor))
    ZELMORA_PASS(Result<std::unique_ptr<platform::ReadableFile>>, openFileAtPath,
                 (const Path& path), (path))
    ZELMORA_PASS(Result<Bytes>, contentsAtPath, (const Path& path), (path))
    ZELMORA_PASS(Status, createFileAtPath, (const Path& path, ByteView bytes), (path, bytes))
    ZELMORA_PASS(Status, replaceFileAtPath, (const Path& path, ByteView bytes), (path, bytes))
    ZELMORA_PASS(Status, appendToFileAtPath, (const Path& path, ByteView bytes), (path, bytes))
    ZELMORA_PASS(Status, createDirectoryAtPath, (const Path& path), (path))
    ZELMORA_PASS(Status, setHFSCodes, (platform::HFSCodes codes, const Path& path), (codes, path))
    ZELMORA_PASS(Status, removeFileAtPath, (const Path& path), (path))
    ZELMORA_PASS(Status, removeItemAtPath, (const Path& path), (path))
    ZELMORA_PASS(Status, moveItemAtPath, (const Path& path, const Path& to), (path, to))
    ZELMORA_PASS(Status, copyItemAtPath, (const Path& path, const Path& to), (path, to))
#undef ZELMORA_PASS

  private:
    class FaultyNewFile;

    /// Notes the operation; answers the errno it is to fail with, or 0.
    int begin(const char* name, const std::string& path);

    /// Runs `operation`, an operation of the target, unless it is to fail.
    template<typename Action>
    auto perform(const char* name, const std::string& path, Action operation)
        -> decltype(operation()) {
        if (const int code = begin(name, path))
            return platform::Error::fromErrno(code, path, name);
        return operation();
    }

    platform::FileManager& _target;
    std::function<void(const Operation&)> _hook;
    mutable std::mutex _mutex; ///< guards what follows
    std::vector<Operation> _operations;
    std::map<std::string, int> _codeOfName;
};

} // namespace zelmora::test
