#include "tests/support/temporary_directory.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <unistd.h>

namespace zelmora::test {

namespace fs = std::filesystem;

TemporaryDirectory::TemporaryDirectory() {
    const char* parent = std::getenv("TMPDIR");
    _path = std::string(parent != nullptr ? parent : "/tmp") + "/zelmora-test-XXXXXX";
    if (::mkdtemp(_path.data()) == nullptr) {
        std::perror(_path.c_str());
        std::abort(); // no test can go on without its folder
    }
}

TemporaryDirectory::~TemporaryDirectory() {
    std::error_code ignored;
    fs::remove_all(_path, ignored);
}

std::string TemporaryDirectory::operator/(std::string_view name) const {
    return _path + "/" + std::string(name);
}

std::string TemporaryDirectory::writeFile(std::string_view name, std::string_view contents) const {
    std::string path = *this / name;
    fs::create_directories(fs::path(path).parent_path());
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(contents.data(), static_cast<std::streamsize>(contents.size()));
    if (!file.flush()) {
        std::perror(path.c_str());
        std::abort();
    }
    return path;
}

std::vector<std::string> TemporaryDirectory::items() const {
    std::vector<std::string> found;
    for (const auto& item : fs::recursive_directory_iterator(_path)) {
        const char* mark = item.is_symlink() ? "@" : item.is_directory() ? "/" : "";
        found.push_back(item.path().string().substr(_path.size() + 1) + mark);
    }
    std::sort(found.begin(), found.end());
    return found;
}

std::string readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        return "<none>";
    }
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

} // namespace zelmora::test
