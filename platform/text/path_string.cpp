#include "platform/text/path_string.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <pwd.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace zelmora::platform {
namespace {

/// `path` without the slashes at its end; one is left of a path of nothing else.
std::string_view withoutTrailingSlashes(std::string_view path) {
    const size_t last = path.find_last_not_of('/');
    return last == path.npos ? path.substr(0, 1) : path.substr(0, last + 1);
}

/// Where the last component begins. REQUIRES: no trailing slashes.
size_t lastComponentOffset(std::string_view path) {
    const size_t slash = path.rfind('/');
    return slash == path.npos || path.size() == 1 ? 0 : slash + 1;
}

/// The offset of the dot before the extension, be the extension empty; npos when there is none.
/// REQUIRES: no trailing slashes.
size_t extensionDot(std::string_view path) {
    const size_t name = lastComponentOffset(path);
    const size_t dot = path.rfind('.');
    // The dots of ".." are a folder's name, not an extension's.
    if (dot == path.npos || dot <= name || path.substr(name) == "..")
        return path.npos;
    return dot;
}

/// The home folder of `user` by the password database, of the process's user when it is empty.
std::optional<std::string> homeByDatabase(const std::string& user) {
    std::vector<char> buffer(1024);
    passwd entry{};
    passwd* found = nullptr;
    while (true) {
        const int error =
            user.empty() ? getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found)
                         : getpwnam_r(user.c_str(), &entry, buffer.data(), buffer.size(), &found);
        if (error != ERANGE)
            break;
        buffer.resize(buffer.size() * 2);
    }
    if (found == nullptr || found->pw_dir == nullptr || *found->pw_dir == '\0')
        return std::nullopt;
    return found->pw_dir;
}

std::optional<std::string> homeOfUser(const std::string& user) {
    if (user.empty()) {
        if (const char* home = std::getenv("HOME"); home != nullptr && *home != '\0')
            return home;
    }
    return homeByDatabase(user);
}

char lowerASCII(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

} // namespace

std::string lastPathComponent(std::string_view path) {
    path = withoutTrailingSlashes(path);
    return std::string(path.substr(lastComponentOffset(path)));
}

std::string deletingLastPathComponent(std::string_view path) {
    path = withoutTrailingSlashes(path);
    if (path == "/")
        return "/";
    return std::string(withoutTrailingSlashes(path.substr(0, lastComponentOffset(path))));
}

std::string pathExtension(std::string_view path) {
    path = withoutTrailingSlashes(path);
    const size_t dot = extensionDot(path);
    return dot == path.npos ? std::string() : std::string(path.substr(dot + 1));
}

std::string deletingPathExtension(std::string_view path) {
    path = withoutTrailingSlashes(path);
    return std::string(path.substr(0, extensionDot(path)));
}

std::string appendingPathExtension(std::string_view path, std::string_view extension) {
    std::string result(path);
    if (!extension.empty()) {
        result = withoutTrailingSlashes(path);
        result += '.';
        result += extension;
    }
    return result;
}

std::string appendingPathComponent(std::string_view path, std::string_view component) {
    if (path.empty())
        return std::string(component);
    std::string result(withoutTrailingSlashes(path));
    component.remove_prefix(std::min(component.find_first_not_of('/'), component.size()));
    if (component.empty())
        return result;
    if (result != "/")
        result += '/';
    result += component;
    return result;
}

std::string expandingTilde(std::string_view path) {
    if (!path.starts_with('~'))
        return std::string(path);
    const size_t slash = std::min(path.find('/'), path.size());
    const auto home = homeOfUser(std::string(path.substr(1, slash - 1)));
    if (!home)
        return std::string(path);
    return appendingPathComponent(*home, path.substr(slash));
}

std::string absolutePath(std::string_view path) {
    if (path.starts_with('/'))
        return std::string(path);
    std::error_code error;
    const std::string folder = std::filesystem::current_path(error).string();
    return error ? std::string(path) : appendingPathComponent(folder, path);
}

bool equalsIgnoringASCIICase(std::string_view left, std::string_view right) {
    return std::ranges::equal(left, right, {}, lowerASCII, lowerASCII);
}

} // namespace zelmora::platform
