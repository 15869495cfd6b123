// What every fuzz target stands on.
#pragma once

#include "platform/text/bytes.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

namespace zelmora::fuzz {

/// Ends the process, which is how a target says that its property does not hold.
inline void require(bool holds) {
    if (!holds)
        std::abort();
}

/// An input's bytes, taken from the front to choose by; what is left is the text. Borrowed.
class Input {
  public:
    Input(const uint8_t* data, size_t size) : _rest(std::as_bytes(std::span(data, size))) {}

    /// The next byte; 0 once there is none.
    uint8_t byte() {
        if (_rest.empty())
            return 0;
        const auto first = static_cast<uint8_t>(_rest.front());
        _rest = _rest.subspan(1);
        return first;
    }

    /// A number below `limit`, which is at most 256.
    unsigned below(unsigned limit) { return byte() % limit; }

    [[nodiscard]] platform::ByteView rest() const { return _rest; }
    [[nodiscard]] std::string restAsString() const { return std::string(platform::charsOf(_rest)); }
    /// The rest as a string, over and over where the next byte says so: long texts pass through the
    /// seams of whatever works in pieces, and short inputs are soon found. At most `most` bytes,
    /// unless the rest alone is longer.
    std::string repeatedRest(size_t most) {
        const size_t wanted = byte() < 128 ? 0 : (byte() + 1u) * most / 256;
        const std::string text = restAsString();
        std::string repeated = text;
        while (!text.empty() && repeated.size() + text.size() <= wanted)
            repeated += text;
        return repeated;
    }

    /// The rest as whole units, so that any text can come up, lone surrogates too.
    [[nodiscard]] std::u16string restAsUnits() const {
        std::u16string units(_rest.size() / sizeof(char16_t), u'\0');
        if (!units.empty())
            std::memcpy(units.data(), _rest.data(), units.size() * sizeof(char16_t));
        return units;
    }

  private:
    platform::ByteView _rest;
};

} // namespace zelmora::fuzz

/// libFuzzer's entry: tries one input. Always answers 0.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);
