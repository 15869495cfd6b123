// What the tests of the codecs share.
#pragma once

#include "platform/text/text_encoding.h"

#include <string>

namespace zelmora::platform {

/// Decodes a copy of exactly this size, so that the address sanitizer sees a read past its end.
inline std::optional<std::u16string> decoded(std::string_view bytes, TextEncoding encoding) {
    const ByteView view = bytesOf(bytes);
    return decodeText(Bytes(view.begin(), view.end()), encoding);
}

inline std::optional<std::string> encoded(std::u16string_view text, TextEncoding encoding) {
    const auto bytes = encodeText(text, encoding);
    return bytes ? std::optional<std::string>(charsOf(*bytes)) : std::nullopt;
}

template<typename String>
String repeated(size_t count, const String& piece) {
    String all;
    for (size_t i = 0; i < count; ++i)
        all += piece;
    return all;
}

} // namespace zelmora::platform
