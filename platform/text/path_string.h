// Operations on path strings. A path is a string of the file system's own bytes, of any length;
// nothing here looks at the disk or assumes an encoding. Safe on any thread.
//
// Extensions: the text after the last "." of the last component, unless that "." is the name's
// first character. So ".profile" has none, ".a.txt" has "txt"; a trailing "." is an empty
// extension, which counts as none. The folder names "." and ".." have none either.
//
// Slashes at the end of a path count for nothing, except that "/" is the root.
#pragma once

#include <string>
#include <string_view>

namespace zelmora::platform {

/// The last component, without trailing slashes: "c" of "/a/b/c/". "/" for the root, empty for "".
[[nodiscard]] std::string lastPathComponent(std::string_view path);

/// The path without its last component: "/a/b" of "/a/b/c", "/" of "/a", "" of "a".
[[nodiscard]] std::string deletingLastPathComponent(std::string_view path);

/// The extension of the last component without its dot; empty when there is none.
[[nodiscard]] std::string pathExtension(std::string_view path);

/// The path without its extension and that extension's dot: "/a/b" of "/a/b.txt" and of "/a/b.".
[[nodiscard]] std::string deletingPathExtension(std::string_view path);

/// The path with "." and `extension` added; the path itself when `extension` is empty.
[[nodiscard]] std::string appendingPathExtension(std::string_view path, std::string_view extension);

/// `path`, one "/", and `component`; one of them alone when the other is empty.
[[nodiscard]] std::string appendingPathComponent(std::string_view path, std::string_view component);

/// The path with a leading "~" or "~user" replaced by that home folder ("~" by $HOME, and by the
/// password database without it); as it is when there is none, or no such user.
[[nodiscard]] std::string expandingTilde(std::string_view path);

/// `path` made absolute against the process's working folder; not cleaned, links not followed.
[[nodiscard]] std::string absolutePath(std::string_view path);

/// Whether both are equal, ASCII letters without regard to case, every other byte as it is.
/// For extensions, which are compared this way everywhere.
[[nodiscard]] bool equalsIgnoringASCIICase(std::string_view left, std::string_view right);

} // namespace zelmora::platform
