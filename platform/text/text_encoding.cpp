#include "platform/text/text_encoding.h"

#include "platform/text/legacy_codecs.h"
#include "platform/text/lossy.h"
#include "platform/text/unicode_codecs.h"

namespace zelmora::platform {
namespace {

/// `text` with "?" for every lone surrogate: all that keeps a text from being Unicode.
std::u16string withoutLoneSurrogates(std::u16string_view text, Alterations& alterations) {
    std::u16string repaired(text);
    for (size_t at = findLoneSurrogate(repaired); at < repaired.size();
         at = findLoneSurrogate(repaired, at + 1)) {
        alterations.add(at, repaired[at], u"?");
        repaired[at] = u'?';
    }
    return repaired;
}

std::optional<Bytes> encodeUnicode(std::u16string_view text, TextEncoding encoding) {
    switch (encoding) {
    case TextEncoding::utf16LE:
        return encodeUTF16(text, true);
    case TextEncoding::utf16BE:
        return encodeUTF16(text, false);
    case TextEncoding::utf32LE:
        return encodeUTF32(text, true);
    case TextEncoding::utf32BE:
        return encodeUTF32(text, false);
    default:
        return encodeUTF8(text);
    }
}

} // namespace

std::unique_ptr<LegacyEncoder> makeLegacyEncoder(TextEncoding encoding) {
    switch (encoding) {
    case TextEncoding::macJapanese:
        return makeMacJapaneseEncoder();
    case TextEncoding::codePage932:
        return makeCodePage932Encoder();
    case TextEncoding::iso2022JP:
        return makeISO2022JPEncoder();
    case TextEncoding::eucJP:
        return makeEUCJPEncoder();
    case TextEncoding::macOSRoman:
        return makeMacOSRomanEncoder();
    default:
        return nullptr;
    }
}

std::optional<std::u16string> decodeText(ByteView bytes, TextEncoding encoding) {
    switch (encoding) {
    case TextEncoding::macJapanese:
        return decodeMacJapanese(bytes);
    case TextEncoding::codePage932:
        return decodeCodePage932(bytes);
    case TextEncoding::iso2022JP:
        return decodeISO2022JP(bytes);
    case TextEncoding::eucJP:
        return decodeEUCJP(bytes);
    case TextEncoding::utf8:
        return decodeUTF8(bytes);
    case TextEncoding::utf16LE:
        return decodeUTF16(bytes, true);
    case TextEncoding::utf16BE:
        return decodeUTF16(bytes, false);
    case TextEncoding::utf32LE:
        return decodeUTF32(bytes, true);
    case TextEncoding::utf32BE:
        return decodeUTF32(bytes, false);
    case TextEncoding::macOSRoman:
        return decodeMacOSRoman(bytes);
    }
    return std::nullopt;
}

std::optional<Bytes> encodeText(std::u16string_view text, TextEncoding encoding) {
    const std::unique_ptr<LegacyEncoder> encoder = makeLegacyEncoder(encoding);
    if (encoder == nullptr)
        return encodeUnicode(text, encoding);
    Bytes bytes;
    bytes.reserve(2 * text.size());
    const char16_t* const end = text.data() + text.size();
    if (encoder->encode(text.data(), end, bytes) != end)
        return std::nullopt;
    encoder->finish(bytes);
    return bytes;
}

Bytes encodeTextLossy(std::u16string_view text, TextEncoding encoding, Alterations& alterations) {
    if (const std::unique_ptr<LegacyEncoder> encoder = makeLegacyEncoder(encoding))
        return encodeLossily(text, *encoder, alterations);
    return encodeUnicode(withoutLoneSurrogates(text, alterations), encoding).value_or(Bytes());
}

} // namespace zelmora::platform
