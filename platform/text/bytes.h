// Names for byte buffers, shared by every floor.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

namespace zelmora::platform {

/// An owned run of bytes: a file's contents, an encoded text.
using Bytes = std::vector<std::byte>;

/// A borrowed run of bytes; valid as long as the buffer it was taken from.
using ByteView = std::span<const std::byte>;

/// Views the chars of `text` as bytes; valid as long as `text`'s buffer.
inline ByteView bytesOf(std::string_view text) {
    return std::as_bytes(std::span(text.data(), text.size()));
}

/// Views `bytes` as chars; valid as long as the buffer under `bytes`.
inline std::string_view charsOf(ByteView bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

} // namespace zelmora::platform
