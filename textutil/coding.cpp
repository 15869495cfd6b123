// Bytes to text and back by the encoding record. Marks are handled here alone: the platform's
// codecs take U+FEFF for a character like any other.
#include "platform/text/text_encoding.h"
#include "textutil/encoding_detector.h"
#include "textutil/text_pieces.h"
#include "textutil/text_utility_private.h"

#include <algorithm>

namespace zelmora {
namespace {

using platform::Bytes;
using platform::ByteView;
using platform::TextEncoding;

/// nullopt for UTF-16 and UTF-32 without a byte order.
std::optional<TextEncoding> textEncodingOf(OrvEncodingInfo info) {
    const auto byByteOrder = [&](TextEncoding little, TextEncoding big) {
        return info.byteOrder == OrvByteOrder::littleEndian ? std::optional(little)
               : info.byteOrder == OrvByteOrder::bigEndian  ? std::optional(big)
                                                            : std::nullopt;
    };
    switch (info.encoding) {
    case OrvEncoding::shiftjis:
        return info.characterMapping == OrvCharacterMapping::windows ? TextEncoding::codePage932
                                                                     : TextEncoding::macJapanese;
    case OrvEncoding::jis:
        return TextEncoding::iso2022JP;
    case OrvEncoding::eucjp:
        return TextEncoding::eucJP;
    case OrvEncoding::utf8:
        return TextEncoding::utf8;
    case OrvEncoding::utf16:
        return byByteOrder(TextEncoding::utf16LE, TextEncoding::utf16BE);
    case OrvEncoding::utf32:
        return byByteOrder(TextEncoding::utf32LE, TextEncoding::utf32BE);
    default:
        return TextEncoding::macOSRoman;
    }
}

/// The byte-order mark of `encoding`, nothing for one that has none. Valid for ever.
ByteView markOf(TextEncoding encoding) {
    using namespace std::string_view_literals;
    switch (encoding) {
    case TextEncoding::utf8:
        return platform::bytesOf("\xEF\xBB\xBF"sv);
    case TextEncoding::utf16LE:
        return platform::bytesOf("\xFF\xFE"sv);
    case TextEncoding::utf16BE:
        return platform::bytesOf("\xFE\xFF"sv);
    case TextEncoding::utf32LE:
        return platform::bytesOf("\xFF\xFE\0\0"sv);
    case TextEncoding::utf32BE:
        return platform::bytesOf("\0\0\xFE\xFF"sv);
    default:
        return {};
    }
}

TextEncoding targetEncodingOf(OrvEncodingInfo info) {
    return textEncodingOf(info).value_or(TextEncoding::macOSRoman);
}

/// Where `text` can be cut: behind the last line break of which all is there, `from` when there is
/// none behind that.
size_t endOfLastLine(std::u16string_view text, size_t from) {
    for (size_t end = text.size(); end > from; --end) {
        const char16_t unit = text[end - 1];
        const bool mayGoOn = unit == u'\r' && end == text.size();
        if ((unit == u'\n' || unit == u'\r' || unit == u'\u2028') && !mayGoOn)
            return end;
    }
    return from;
}

} // namespace

TextReader::TextReader(ByteView data, OrvEncodingInfo encodingInfo) : _data(data) {
    const auto encoding = textEncodingOf(encodingInfo);
    _hasFailed = !encoding;
    if (_hasFailed)
        return;
    const size_t skipped = encodingInfo.hasBOM ? markOf(*encoding).size() : 0;
    _data = data.subspan(std::min(skipped, data.size()));
    _decoder = platform::makeTextDecoder(*encoding);
}

bool TextReader::read(std::u16string& piece) {
    constexpr size_t kPieceSize = 64 * 1024; // bytes; with all it becomes, within a processor's L2
    piece.assign(_begun);
    _begun.clear();
    while (!_hasFailed && !_data.empty()) {
        const size_t searched = piece.size() - (piece.ends_with(u'\r') ? 1 : 0);
        _hasFailed = !_decoder->decode(_data, kPieceSize, piece);
        const size_t end = endOfLastLine(piece, searched);
        if (end != searched && !_data.empty() && !_hasFailed) {
            _begun.assign(piece, end);
            piece.resize(end);
            break;
        }
    }
    return !_hasFailed && !piece.empty();
}

TextWriter::TextWriter(OrvEncodingInfo encodingInfo, Bytes& bytes)
    : _bytes(bytes), _encoder(platform::makeTextEncoder(targetEncodingOf(encodingInfo))) {
    const ByteView mark = markOf(targetEncodingOf(encodingInfo));
    if (encodingInfo.hasBOM)
        bytes.insert(bytes.end(), mark.begin(), mark.end());
}

bool TextWriter::write(std::u16string_view piece) {
    const char16_t* const end = piece.data() + piece.size();
    return _encoder->encode(piece.data(), end, _bytes) == end;
}

OrvEncodingInfo OrvTextUtilityPrivate::encodingInfoOfTextData(std::optional<ByteView> data) const {
    return data ? detectEncodingInfo(*data) : OrvEncodingInfo{};
}

std::optional<std::u16string>
OrvTextUtilityPrivate::stringWithData(std::optional<ByteView> data,
                                      OrvEncodingInfo encodingInfo) const {
    const auto encoding = textEncodingOf(encodingInfo);
    if (!data || !encoding)
        return std::nullopt;
    const size_t skipped = encodingInfo.hasBOM ? markOf(*encoding).size() : 0;
    return platform::decodeText(data->subspan(std::min(skipped, data->size())), *encoding);
}

std::optional<Bytes> OrvTextUtilityPrivate::dataWithString(std::optional<std::u16string_view> text,
                                                           OrvEncodingInfo encodingInfo) const {
    platform::Alterations alterations;
    return dataWithString(text, encodingInfo, alterations);
}

std::optional<Bytes>
OrvTextUtilityPrivate::dataWithString(std::optional<std::u16string_view> text,
                                      OrvEncodingInfo encodingInfo,
                                      platform::Alterations& alterations) const {
    if (!text)
        return std::nullopt;
    const TextEncoding encoding = targetEncodingOf(encodingInfo);
    auto data = platform::encodeText(*text, encoding);
    if (!data)
        data = platform::encodeTextLossy(*text, encoding, alterations);
    if (encodingInfo.hasBOM) {
        const ByteView mark = markOf(encoding);
        data->insert(data->begin(), mark.begin(), mark.end());
    }
    return data;
}

} // namespace zelmora
