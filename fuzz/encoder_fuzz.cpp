// Any units in any encoding, lone surrogates too: the lossy pass answers, within its bound, what
// the encoding reads, and tells exactly what it altered; what can be encoded exactly is, and reads
// as what it was.
#include "fuzz_input.h"
#include "platform/text/text_encoding.h"
#include "platform/text/utf8.h"

#include <algorithm>

using namespace zelmora;
using fuzz::require;
using platform::TextEncoding;

namespace {

/// The most bytes that a unit becomes: U+3316 is six katakana, each of two bytes, and in
/// ISO-2022-JP two escape sequences come with them.
constexpr size_t kMostBytesPerUnit = 18;
/// What the end of an ISO-2022-JP text takes.
constexpr size_t kMostBytesAtEnd = 3;

/// `text` with every character that was altered as it was written.
std::u16string altered(const std::u16string& text, const platform::Alterations& alterations) {
    require(alterations.count == alterations.listed.size());
    std::u16string result;
    size_t at = 0;
    for (const auto& [offset, codePoint, written] : alterations.listed) {
        require(offset >= at && offset < text.size());
        result += text.substr(at, offset - at) + written;
        at = offset + (codePoint > 0xFFFF ? 2 : 1);
    }
    return result + text.substr(at);
}

/// Whether a mark stands in `text` that may be composed with the letter before it.
bool hasComposingMark(const std::u16string& text) {
    return std::ranges::any_of(text, [](char16_t unit) {
        return (unit >= 0x0300 && unit <= 0x036F) || unit == 0x3099 || unit == 0x309A;
    });
}

void tryText(const std::u16string& text, TextEncoding encoding) {
    platform::Alterations alterations;
    const platform::Bytes bytes = platform::encodeTextLossy(text, encoding, alterations);
    require(bytes.size() <= text.size() * kMostBytesPerUnit + kMostBytesAtEnd);
    require(bytes.empty() || !text.empty());
    const auto read = platform::decodeText(bytes, encoding);
    require(read.has_value());
    if (!hasComposingMark(text))
        require(altered(text, alterations) == *read);
    if (const auto exact = platform::encodeText(text, encoding))
        require(platform::decodeText(*exact, encoding) == text);
    else
        require(alterations.count != 0 || hasComposingMark(text));
    // What was altered once is now as the encoding holds it.
    require(platform::encodeText(*read, encoding).has_value());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Input input(data, size);
    const auto encoding = static_cast<TextEncoding>(input.below(10));
    tryText(input.restAsUnits(), encoding);
    tryText(platform::utf16FromUTF8(input.restAsString()), encoding);
    return 0;
}
