// Names for byte buffers, shared by every floor.
#pragma once

#include <cstddef>
#include <memory>
#include <new>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace zelmora::platform {

/// Leaves new elements without a value of their own as they are, to be overwritten, instead of
/// filling them with zeroes.
template<typename T>
class BufferAllocator : public std::allocator<T> {
  public:
    BufferAllocator() = default;
    template<typename Other>
    BufferAllocator(const BufferAllocator<Other>&) noexcept {}

    template<typename Element>
    void construct(Element* at) {
        ::new (static_cast<void*>(at)) Element;
    }
    template<typename Element, typename... Arguments>
    void construct(Element* at, Arguments&&... arguments) {
        ::new (static_cast<void*>(at)) Element(std::forward<Arguments>(arguments)...);
    }
};

/// An owned run of bytes: a file's contents, an encoded text. resize() and a size alone make bytes
/// of no particular value.
using Bytes = std::vector<std::byte, BufferAllocator<std::byte>>;

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
