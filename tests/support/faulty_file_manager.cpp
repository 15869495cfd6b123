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

std::unique_ptr<NewFile> FaultyFileManager::newFileBesidePath(const std::string& path) {
    return std::make_unique<FaultyNewFile>(*this, path);
}

} // namespace zelmora::test
