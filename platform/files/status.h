// What an operation that can fail answers: a Status, or a Result that holds a value on success.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace zelmora::platform {

/// Why an operation failed: a code to branch on and a message to show.
struct Error {
    int code = 0;        ///< an errno value (ENOENT, ENOSPC, ...)
    std::string message; ///< UTF-8, the path first, shown escaped: "/a/b: rename: No space left"

    /// The one place where an errno value becomes an Error. `path` is raw file-system bytes.
    static Error fromErrno(int code, std::string_view path, std::string_view operation);
};

/// Success, or an Error.
class [[nodiscard]] Status {
  public:
    Status() = default;
    Status(Error error) : _error(std::move(error)), _ok(false) {} // NOLINT: implicit by intent

    [[nodiscard]] bool ok() const { return _ok; }
    explicit operator bool() const { return _ok; }
    /// REQUIRES: !ok().
    [[nodiscard]] const Error& error() const { return _error; }

  private:
    Error _error;
    bool _ok = true;
};

/// A T, or an Error.
template<typename T>
class [[nodiscard]] Result {
  public:
    Result(T value) : _content(std::in_place_index<0>, std::move(value)) {}     // NOLINT: implicit
    Result(Error error) : _content(std::in_place_index<1>, std::move(error)) {} // NOLINT: implicit

    [[nodiscard]] bool ok() const { return _content.index() == 0; }
    explicit operator bool() const { return ok(); }
    /// REQUIRES: ok().
    [[nodiscard]] T& value() { return *std::get_if<0>(&_content); }
    [[nodiscard]] const T& value() const { return *std::get_if<0>(&_content); }
    T& operator*() { return value(); }
    const T& operator*() const { return value(); }
    T* operator->() { return &value(); }
    const T* operator->() const { return &value(); }
    /// REQUIRES: !ok().
    [[nodiscard]] const Error& error() const { return *std::get_if<1>(&_content); }

  private:
    std::variant<T, Error> _content;
};

} // namespace zelmora::platform
