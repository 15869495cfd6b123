// One text, decoded or encoded some of it at a time.
#pragma once

#include "platform/text/bytes.h"
#include "platform/text/text_encoding.h"

#include <memory>
#include <string>

namespace zelmora::platform {

/// Decodes one text from its beginning to its end; it remembers what an escape sequence has
/// switched to. Strict, as decodeText is.
class TextDecoder {
  public:
    virtual ~TextDecoder() = default;

    /// Takes the characters that begin in the first `count` of `bytes` off `bytes`, which must be
    /// all that is left of the text, and appends them to `text`. false at a code that is not valid
    /// or cut off; both are of no use then.
    [[nodiscard]] virtual bool decode(ByteView& bytes, size_t count, std::u16string& text) = 0;

    /// Whether what follows is read otherwise than at the beginning of a text.
    [[nodiscard]] virtual bool hasSwitched() const { return false; }
};

/// Encodes one text from its beginning to its end; it remembers what an escape sequence has
/// switched to.
class TextEncoder {
  public:
    virtual ~TextEncoder() = default;

    /// Appends the code of every unit from `in` on, and answers where it stopped: at `end`, or at
    /// the first unit that has none. What is one character or stands for one code must not be
    /// parted between two calls: surrogate pairs and the sequences of Macintosh Japanese.
    [[nodiscard]] virtual const char16_t* encode(const char16_t* in, const char16_t* end,
                                                 Bytes& out) = 0;

    /// Whether `unit` alone has a code.
    [[nodiscard]] virtual bool holds(char16_t unit) const = 0;

    /// Appends what has to follow the last character.
    virtual void finish(Bytes&) {}
};

/// For a new text.
[[nodiscard]] std::unique_ptr<TextDecoder> makeTextDecoder(TextEncoding encoding);
[[nodiscard]] std::unique_ptr<TextEncoder> makeTextEncoder(TextEncoding encoding);

} // namespace zelmora::platform
