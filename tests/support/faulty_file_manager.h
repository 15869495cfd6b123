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

    [[nodiscard]] bool fileExistsAtPath(const std::string& path) override;
    platform::Result<platform::FileType> typeOfItemAtPath(const std::string& path) override;
    [[nodiscard]] bool isDirectoryAtPath(const std::string& path) override;
    [[nodiscard]] bool itemAtPathContainsItemAtPath(const std::string& path,
                                                    const std::string& otherPath) override;
    platform::Status checkWayToItemAtPath(const std::string& path, size_t folderLength) override;
    platform::Result<platform::HFSCodes> hfsCodesOfItemAtPath(const std::string& path) override;
    platform::Status enumerateAtPath(const std::string& path,
                                     const EnumerationVisitor& visitor) override;
    platform::Result<platform::Bytes> contentsAtPath(const std::string& path) override;
    platform::Status createFileAtPath(const std::string& path,
                                      platform::ByteView contents) override;
    /// What is done with the new file are operations too, "write" and "finish". When one fails, the
    /// file behind it is dropped.
    [[nodiscard]] std::unique_ptr<platform::NewFile>
    newFileBesidePath(const std::string& path) override;
    platform::Status replaceFileAtPath(const std::string& path,
                                       platform::ByteView contents) override;
    platform::Status appendToFileAtPath(const std::string& path,
                                        platform::ByteView contents) override;
    platform::Status createDirectoryAtPath(const std::string& path) override;
    platform::Status setHFSCodes(platform::HFSCodes codes, const std::string& path) override;
    platform::Status removeFileAtPath(const std::string& path) override;
    platform::Status removeItemAtPath(const std::string& path) override;
    platform::Status moveItemAtPath(const std::string& path, const std::string& toPath) override;
    platform::Status copyItemAtPath(const std::string& path, const std::string& toPath) override;

  private:
    class FaultyNewFile;

    /// Notes the operation; answers the errno it is to fail with, or 0.
    int begin(const char* name, const std::string& path);

    /// Runs `operation`, an operation of the target, unless it is to fail.
    template<typename Action>
    auto perform(const char* name, const std::string& path, Action operation)
        -> decltype(operation()) {
        if (const int code = begin(name, path)) {
            return platform::Error::fromErrno(code, path, name);
        }
        return operation();
    }

    platform::FileManager& _target;
    std::function<void(const Operation&)> _hook;
    mutable std::mutex _mutex; ///< guards what follows
    std::vector<Operation> _operations;
    std::map<std::string, int> _codeOfName;
};

} // namespace zelmora::test
