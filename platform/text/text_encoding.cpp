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

bool isUnicode(TextEncoding encoding) {
    return encoding >= TextEncoding::utf8 && encoding <= TextEncoding::utf32BE;
}

} // namespace

std::unique_ptr<TextDecoder> makeTextDecoder(TextEncoding encoding) {
    switch (encoding) {
    case TextEncoding::macJapanese:
        return makeMacJapaneseDecoder();
    case TextEncoding::codePage932:
        return makeCodePage932Decoder();
    case TextEncoding::iso2022JP:
        return makeISO2022JPDecoder();
    case TextEncoding::eucJP:
        return makeEUCJPDecoder();
    case TextEncoding::utf8:
        return makeUTF8Decoder();
    case TextEncoding::utf16LE:
    case TextEncoding::utf16BE:
        return makeUTF16Decoder(encoding == TextEncoding::utf16LE);
    case TextEncoding::utf32LE:
    case TextEncoding::utf32BE:
        return makeUTF32Decoder(encoding == TextEncoding::utf32LE);
    case TextEncoding::macOSRoman:
        break;
    }
    return makeMacOSRomanDecoder();
}

std::unique_ptr<TextEncoder> makeTextEncoder(TextEncoding encoding) {
    switch (encoding) {
    case TextEncoding::macJapanese:
        return makeMacJapaneseEncoder();
    case TextEncoding::codePage932:
        return makeCodePage932Encoder();
    case TextEncoding::iso2022JP:
        return makeISO2022JPEncoder();
    case TextEncoding::eucJP:
        return makeEUCJPEncoder();
    case TextEncoding::utf8:
        return makeUTF8Encoder();
    case TextEncoding::utf16LE:
    case TextEncoding::utf16BE:
        return makeUTF16Encoder(encoding == TextEncoding::utf16LE);
    case TextEncoding::utf32LE:
    case TextEncoding::utf32BE:
        return makeUTF32Encoder(encoding == TextEncoding::utf32LE);
    case TextEncoding::macOSRoman:
        break;
    }
    return makeMacOSRomanEncoder();
}

std::optional<std::u16string> decodeText(ByteView bytes, TextEncoding encoding) {
    std::u16string text;
    text.reserve(bytes.size());
    if (!makeTextDecoder(encoding)->decode(bytes, bytes.size(), text))
        return std::nullopt;
    return text;
}

std::optional<Bytes> encodeText(std::u16string_view text, TextEncoding encoding) {
    const std::unique_ptr<TextEncoder> encoder = makeTextEncoder(encoding);
    Bytes bytes;
    bytes.reserve((encoding == TextEncoding::utf8 ? 3 : 2) * text.size());
    const char16_t* const end = text.data() + text.size();
    if (encoder->encode(text.data(), end, bytes) != end)
        return std::nullopt;
    encoder->finish(bytes);
    return bytes;
}

Bytes encodeTextLossy(std::u16string_view text, TextEncoding encoding, Alterations& alterations) {
    if (isUnicode(encoding))
        return encodeText(withoutLoneSurrogates(text, alterations), encoding).value_or(Bytes());
    return encodeLossily(text, *makeTextEncoder(encoding), alterations);
}

} // namespace zelmora::platform
