// Runs a codec's inner loop over a text chunk by chunk. The loop writes to a small buffer that
// stays in the cache and is large enough for whatever a chunk can become, so it need not check for
// room; the result is reserved once, and never filled with zeroes first.
#pragma once

#include "platform/text/bytes.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string>

namespace zelmora::platform {

using Octet = unsigned char;

constexpr std::ptrdiff_t kChunk = 4096; ///< bytes or units of input
constexpr std::ptrdiff_t kStraddle = 8; ///< the most that the last character reaches past its chunk

/// Decodes `bytes` with `step(in, stop, end, out)`, which moves `in` to `stop` or past it, where a
/// character straddles it, and `out` past what it wrote; it answers false at an invalid code.
/// A byte becomes at most `unitsPerByte` units.
template<size_t unitsPerByte, typename Step>
std::optional<std::u16string> decodeInChunks(ByteView bytes, Step step) {
    std::array<char16_t, unitsPerByte*(kChunk + kStraddle)> units;
    std::u16string text;
    text.reserve(bytes.size());
    const Octet* in = reinterpret_cast<const Octet*>(bytes.data());
    const Octet* const end = in + bytes.size();
    while (in != end) {
        char16_t* out = units.data();
        if (!step(in, in + std::min(kChunk, end - in), end, out))
            return std::nullopt;
        text.append(units.data(), out);
    }
    return text;
}

/// Encodes the units from `in` to `end` with `step(in, stop, end, out)`, likewise, and appends the
/// bytes to `bytes`. Answers `end`, or the unit at which `step` answered false: the first one that
/// has no code. A unit becomes at most `bytesPerUnit` bytes.
template<size_t bytesPerUnit, typename Step>
const char16_t* encodeInChunks(const char16_t* in, const char16_t* end, Bytes& bytes, Step step) {
    std::array<Octet, bytesPerUnit*(kChunk + kStraddle)> octets;
    bool encodes = true;
    while (encodes && in != end) {
        Octet* out = octets.data();
        encodes = step(in, in + std::min(kChunk, end - in), end, out);
        const std::byte* const written = reinterpret_cast<const std::byte*>(octets.data());
        bytes.insert(bytes.end(), written, written + (out - octets.data()));
    }
    return in;
}

} // namespace zelmora::platform
