// Runs a codec's inner loop over a text chunk by chunk. The loop writes to a buffer that is large
// enough for whatever a chunk can become, so it need not check for room; the result is never filled
// with zeroes first.
#pragma once

#include "platform/text/text_coders.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <string>

namespace zelmora::platform {

using Octet = unsigned char;

constexpr std::ptrdiff_t kChunk = 4096; ///< bytes or units of input
constexpr std::ptrdiff_t kStraddle = 8; ///< the most that the last character reaches past its chunk

/// Decodes with `step(in, stop, end, out)`, which moves `in` to `stop`, past it where a character
/// straddles it, or at least on, and `out` past what it wrote; it answers false at an invalid code.
/// A byte becomes at most `unitsPerByte` units. A step with a state has hasSwitched().
template<size_t unitsPerByte, typename Step>
class ChunkDecoder final : public TextDecoder {
  public:
    explicit ChunkDecoder(Step step) : _step(step) {}

    bool decode(ByteView& bytes, size_t count, std::u16string& text) override {
        std::array<char16_t, unitsPerByte*(kChunk + kStraddle)> units;
        const Octet* const begin = reinterpret_cast<const Octet*>(bytes.data());
        const Octet* const end = begin + bytes.size();
        const Octet* const stop = begin + std::min(count, bytes.size());
        const Octet* in = begin;
        while (in < stop) {
            char16_t* out = units.data();
            if (!_step(in, in + std::min(kChunk, stop - in), end, out))
                return false;
            text.append(units.data(), out);
        }
        bytes = bytes.subspan(static_cast<size_t>(in - begin));
        return true;
    }

    [[nodiscard]] bool hasSwitched() const override {
        if constexpr (requires { _step.hasSwitched(); })
            return _step.hasSwitched();
        return false;
    }

  private:
    Step _step;
};

template<size_t unitsPerByte, typename Step>
std::unique_ptr<TextDecoder> makeChunkDecoder(Step step) {
    return std::make_unique<ChunkDecoder<unitsPerByte, Step>>(step);
}

/// Encodes the units from `in` to `end` with `step(in, stop, end, out)`, likewise, and appends the
/// bytes to `bytes`. Answers `end`, or the unit at which `step` answered false: the first one that
/// has no code. A unit becomes at most `bytesPerUnit` bytes.
template<size_t bytesPerUnit, typename Step>
const char16_t* encodeInChunks(const char16_t* in, const char16_t* end, Bytes& bytes, Step step) {
    constexpr std::ptrdiff_t kFirstChunk = 64; // many a run ends soon, at a unit without a code
    bool encodes = true;
    for (std::ptrdiff_t chunk = kFirstChunk; encodes && in != end; chunk = kChunk) {
        const size_t size = bytes.size();
        const std::ptrdiff_t count = std::min(chunk, end - in);
        bytes.resize(size + bytesPerUnit * static_cast<size_t>(count + kStraddle));
        Octet* const begin = reinterpret_cast<Octet*>(bytes.data());
        Octet* out = begin + size;
        encodes = step(in, in + count, end, out);
        bytes.resize(static_cast<size_t>(out - begin));
    }
    return in;
}

} // namespace zelmora::platform
