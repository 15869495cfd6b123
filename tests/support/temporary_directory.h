// A folder of a test's own on the real file system, and the shortest ways to fill and look into it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zelmora::test {

/// A new folder under $TMPDIR (or /tmp), deleted with everything in it when the object goes.
class TemporaryDirectory {
  public:
    TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
    ~TemporaryDirectory();

    [[nodiscard]] const std::string& path() const { return _path; }
    /// The path of `name` in the folder.
    [[nodiscard]] std::string operator/(std::string_view name) const;

    /// Writes a file, and the folders on the way to it; answers its path. A file there is replaced.
    std::string writeFile(std::string_view name, std::string_view contents) const;

    /// Everything beneath the folder, sorted by path; a folder's ends in "/", a link's in "@".
    [[nodiscard]] std::vector<std::string> items() const;

  private:
    std::string _path;
};

/// The whole contents of the file at `path`; "<none>" when it cannot be read.
std::string readFile(const std::string& path);

} // namespace zelmora::test
