#include "tests/support/faulty_file_manager.h"

namespace zelmora::test {

using namespace platform;

class FaultyFileManager::FaultyNewFile final : public NewFile {
  public:
    FaultyNewFile(FaultyFileManager& files, const std::string& path)
        : _files(files), _path(path), _code(files.begin("newFileBesidePath", path)) {
        if (_code == 0)
            _target = files._target.newFileBesidePath(path);
    }

    void write(Bytes& bytes) override {
        if (passes("write"))
            _target->write(bytes);
        bytes.clear();
    }

    Status finishAtPath(const std::string& path) override {
        return passes("finishAtPath") ? _target->finishAtPath(path)
                                      : Error::fromErrno(_code, path, "finish");
    }

  private:
    /// Whether `operation` is to reach the target.
    bool passes(const char* operation) {
        if (_code == 0)
            _code = _files.begin(operation, _path);
        return _code == 0;
    }

    FaultyFileManager& _files;
    const std::string _path;
    int _code;
    std::unique_ptr<NewFile> _target;
};

void FaultyFileManager::failEvery(const std::string& name, int code) {
    const std::scoped_lock lock(_mutex);
    _codeOfName[name] = code;
}

std::vector<FaultyFileManager::Operation> FaultyFileManager::operations() const {
    const std::scoped_lock lock(_mutex);
    return _operations;
}

int FaultyFileManager::begin(const char* name, const std::string& path) {
    if (_hook)
        _hook({name, path});
    const std::scoped_lock lock(_mutex);
    _operations.push_back({name, path});
    const auto byName = _codeOfName.find(name);
    return byName != _codeOfName.end() ? byName->second : 0;
}

bool FaultyFileManager::fileExistsAtPath(const std::string& path) {
    return _target.fileExistsAtPath(path);
}

bool FaultyFileManager::itemAtPathContainsItemAtPath(const std::string& path,
                                                     const std::string& otherPath) {
    return _target.itemAtPathContainsItemAtPath(path, otherPath);
}

bool FaultyFileManager::isDirectoryAtPath(const std::string& path) {
    return _target.isDirectoryAtPath(path);
}

Result<FileType> FaultyFileManager::typeOfItemAtPath(const std::string& path) {
    return perform("typeOfItemAtPath", path, [&] { return _target.typeOfItemAtPath(path); });
}

Status FaultyFileManager::checkWayToItemAtPath(const std::string& path, size_t folderLength) {
    return perform("checkWayToItemAtPath", path,
                   [&] { return _target.checkWayToItemAtPath(path, folderLength); });
}

Result<HFSCodes> FaultyFileManager::hfsCodesOfItemAtPath(const std::string& path) {
    return perform("hfsCodesOfItemAtPath", path,
                   [&] { return _target.hfsCodesOfItemAtPath(path); });
}

Status FaultyFileManager::enumerateAtPath(const std::string& path,
                                          const EnumerationVisitor& visitor) {
    return perform("enumerateAtPath", path, [&] { return _target.enumerateAtPath(path, visitor); });
}

Result<Bytes> FaultyFileManager::contentsAtPath(const std::string& path) {
    return perform("contentsAtPath", path, [&] { return _target.contentsAtPath(path); });
}

Status FaultyFileManager::createFileAtPath(const std::string& path, ByteView contents) {
    return perform("createFileAtPath", path,
                   [&] { return _target.createFileAtPath(path, contents); });
}

std::unique_ptr<NewFile> FaultyFileManager::newFileBesidePath(const std::string& path) {
    return std::make_unique<FaultyNewFile>(*this, path);
}

Status FaultyFileManager::replaceFileAtPath(const std::string& path, ByteView contents) {
    return perform("replaceFileAtPath", path,
                   [&] { return _target.replaceFileAtPath(path, contents); });
}

Status FaultyFileManager::appendToFileAtPath(const std::string& path, ByteView contents) {
    return perform("appendToFileAtPath", path,
                   [&] { return _target.appendToFileAtPath(path, contents); });
}

Status FaultyFileManager::createDirectoryAtPath(const std::string& path) {
    return perform("createDirectoryAtPath", path,
                   [&] { return _target.createDirectoryAtPath(path); });
}

Status FaultyFileManager::setHFSCodes(HFSCodes codes, const std::string& path) {
    return perform("setHFSCodes", path, [&] { return _target.setHFSCodes(codes, path); });
}

Status FaultyFileManager::removeFileAtPath(const std::string& path) {
    return perform("removeFileAtPath", path, [&] { return _target.removeFileAtPath(path); });
}

Status FaultyFileManager::removeItemAtPath(const std::string& path) {
    return perform("removeItemAtPath", path, [&] { return _target.removeItemAtPath(path); });
}

Status FaultyFileManager::moveItemAtPath(const std::string& path, const std::string& toPath) {
    return perform("moveItemAtPath", path, [&] { return _target.moveItemAtPath(path, toPath); });
}

Status FaultyFileManager::copyItemAtPath(const std::string& path, const std::string& toPath) {
    return perform("copyItemAtPath", path, [&] { return _target.copyItemAtPath(path, toPath); });
}

} // namespace zelmora::test
