// The codecs of the encodings that are older than Unicode.
//
// Decoding is strict: every function below answers nullopt when a code is unassigned or cut off.
// Encoding is in the hands of an encoder, which serves the strict and the lossy pass alike.
#pragma once

#include "platform/text/bytes.h"
#include "platform/text/text_encoding.h"

#include <memory>
#include <optional>
#include <string>

namespace zelmora::platform {

[[nodiscard]] std::optional<std::u16string> decodeMacJapanese(ByteView bytes);
[[nodiscard]] std::optional<std::u16string> decodeCodePage932(ByteView bytes);
[[nodiscard]] std::optional<std::u16string> decodeISO2022JP(ByteView bytes);
[[nodiscard]] std::optional<std::u16string> decodeEUCJP(ByteView bytes);
[[nodiscard]] std::optional<std::u16string> decodeMacOSRoman(ByteView bytes);

/// Encodes one text; it remembers what an escape sequence has switched to.
class LegacyEncoder {
  public:
    virtual ~LegacyEncoder() = default;

    /// Appends the code of every unit from `in` on, and answers where it stopped: at `end`, or at
    /// the first unit that has none.
    [[nodiscard]] virtual const char16_t* encode(const char16_t* in, const char16_t* end,
                                                 Bytes& out) = 0;

    /// Whether `unit` alone has a code.
    [[nodiscard]] virtual bool holds(char16_t unit) const = 0;

    /// Appends what has to follow the last character.
    virtual void finish(Bytes&) {}
};

/// An encoder for a new text; none for the Unicode encodings.
[[nodiscard]] std::unique_ptr<LegacyEncoder> makeLegacyEncoder(TextEncoding encoding);

std::unique_ptr<LegacyEncoder> makeMacJapaneseEncoder();
std::unique_ptr<LegacyEncoder> makeCodePage932Encoder();
std::unique_ptr<LegacyEncoder> makeISO2022JPEncoder();
std::unique_ptr<LegacyEncoder> makeEUCJPEncoder();
std::unique_ptr<LegacyEncoder> makeMacOSRomanEncoder();

} // namespace zelmora::platform
