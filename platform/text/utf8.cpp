#include "platform/text/utf8.h"

#include "platform/text/unicode_codecs.h"

namespace zelmora::platform {
namespace {

constexpr char16_t kReplacement = 0xFFFD;
constexpr std::string_view kReplacementUTF8 = "\xEF\xBF\xBD";

/// Copies `utf8`, giving each byte that is not part of a valid sequence to `appendInvalid`.
template<typename AppendInvalid>
std::string withInvalidBytes(std::string_view utf8, AppendInvalid appendInvalid) {
    std::string result;
    result.reserve(utf8.size());
    for (size_t offset = 0; offset < utf8.size();) {
        const std::string_view rest = utf8.substr(offset);
        const size_t length = utf8SequenceLength(bytesOf(rest));
        if (length == 0)
            appendInvalid(result, rest.front());
        else
            result += rest.substr(0, length);
        offset += length == 0 ? 1 : length;
    }
    return result;
}

void appendHex(std::string& text, char byte) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    const auto value = static_cast<unsigned char>(byte);
    text += "\\x";
    text += kDigits[value >> 4];
    text += kDigits[value & 0x0F];
}

void appendControl(std::string& text, char control) {
    switch (control) {
    case '\n':
        text += "\\n";
        break;
    case '\r':
        text += "\\r";
        break;
    case '\t':
        text += "\\t";
        break;
    default:
        appendHex(text, control);
    }
}

bool isASCIIControl(char byte) {
    return static_cast<unsigned char>(byte) < 0x20 || byte == 0x7F;
}

/// U+0080 to U+009F, which many terminals obey like an escape sequence.
bool startsWithC1(std::string_view utf8) {
    return utf8.size() >= 2 && utf8[0] == '\xC2' && static_cast<unsigned char>(utf8[1]) < 0xA0;
}

} // namespace

std::string utf8FromUTF16(std::u16string_view text) {
    if (const auto bytes = encodeText(text, TextEncoding::utf8))
        return std::string(charsOf(*bytes));
    std::u16string repaired(text);
    for (size_t lone = findLoneSurrogate(text); lone != text.size();
         lone = findLoneSurrogate(text, lone + 1))
        repaired[lone] = kReplacement;
    return std::string(charsOf(*encodeText(repaired, TextEncoding::utf8)));
}

std::u16string utf16FromUTF8(std::string_view utf8) {
    if (auto text = decodeText(bytesOf(utf8), TextEncoding::utf8))
        return *std::move(text);
    const std::string repaired =
        withInvalidBytes(utf8, [](std::string& result, char) { result += kReplacementUTF8; });
    return *decodeText(bytesOf(repaired), TextEncoding::utf8);
}

std::string displayPath(std::string_view path) {
    return withInvalidBytes(path, appendHex);
}

std::string terminalPath(std::string_view path) {
    const std::string shown = displayPath(path);
    std::string result;
    result.reserve(shown.size());
    for (size_t offset = 0; offset < shown.size(); ++offset) {
        if (startsWithC1(std::string_view(shown).substr(offset))) {
            appendHex(result, shown[offset]);
            appendHex(result, shown[++offset]);
        } else if (isASCIIControl(shown[offset])) {
            appendControl(result, shown[offset]);
        } else {
            result += shown[offset];
        }
    }
    return result;
}

} // namespace zelmora::platform
