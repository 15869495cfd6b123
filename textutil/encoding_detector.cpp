// One walk over the bytes. Three counters gather evidence; some bytes settle the matter at once.
// Most bytes can do neither, and the walk leaps from one that can to the next:
// - at first only zero bytes, ESC and bytes from 80 on matter;
// - once UTF-8 is ruled out and EUC-JP has a sign, more signs of EUC-JP change nothing, and only
//   zero bytes, ESC and bytes from 80 to 9F matter;
// - behind a byte that only Shift_JIS uses, only zero bytes matter.
#include "textutil/encoding_detector.h"

#include "platform/text/block_scan.h"

#include <bit>
#include <cstring>

namespace zelmora {
namespace {

constexpr uint8_t kEscape = 0x1B;

uint64_t bytesLeft(const DetectEncodingContext& context) {
    return context.textLength - context.textOffset;
}

uint64_t bytesToLookAt(const DetectEncodingContext& context) {
    return context.lookEnd - context.textOffset;
}

void advance(DetectEncodingContext& context, uint64_t count = 1) {
    context.textOffset += count;
    context.curBytes += count;
}

bool isContinuation(uint8_t byte) {
    return (byte & 0xC0) == 0x80;
}

/// A lead byte of Shift_JIS that no other encoding uses, 8E and 8F being EUC-JP's too.
bool isShiftJISOnly(uint8_t byte) {
    return byte >= 0x80 && byte <= 0x9F && byte != 0x8E && byte != 0x8F;
}

bool isEUCByte(uint8_t byte) {
    return byte >= 0xA1 && byte <= 0xFE;
}

bool setInfo(DetectEncodingContext& context, OrvEncoding encoding,
             OrvByteOrder byteOrder = OrvByteOrder::none, bool hasBOM = false) {
    context.encodingInfo = {.encoding = encoding, .byteOrder = byteOrder, .hasBOM = hasBOM};
    return true;
}

/// Moves to the next byte that can change the answer; false where the looking ends.
bool skipToEvidence(DetectEncodingContext& context) {
    const auto fromStart = [](uint8_t byte) {
        return (byte == 0) | (byte == kEscape) | (byte >= 0x80);
    };
    const auto onceEUC = [](uint8_t byte) {
        return (byte == 0) | (byte == kEscape) | ((byte & 0xE0) == 0x80);
    };
    const uint64_t left = bytesToLookAt(context);
    const uint64_t skipped = context.isNeverUTF8 && context.eucFeatures != 0
                                 ? platform::findFirstUnit(context.curBytes, left, onceEUC)
                                 : platform::findFirstUnit(context.curBytes, left, fromStart);
    advance(context, skipped);
    return skipped != left;
}

/// Whether the escape sequence here switches to a double-byte set, which settles ISO-2022-JP; one
/// that switches back is counted.
bool checkEscape(DetectEncodingContext& context) {
    if (bytesLeft(context) < 3)
        return false;
    const uint8_t* const bytes = context.curBytes;
    if (bytes[1] == '(' && (bytes[2] == 'B' || bytes[2] == 'J'))
        ++context.jisFeatures;
    return bytes[1] == '$' && (bytes[2] == '@' || bytes[2] == 'B') &&
           setInfo(context, OrvEncoding::jis);
}

void countEUCFeatures(DetectEncodingContext& context) {
    const uint8_t* const bytes = context.curBytes;
    if (!isEUCByte(bytes[0]) || (bytesLeft(context) > 1 && isEUCByte(bytes[1])))
        ++context.eucFeatures;
}

/// Whether a zero byte shows another encoding than Shift_JIS, or UTF-8, after all.
bool findTellingZero(DetectEncodingContext& context) {
    while (const void* zero = std::memchr(context.curBytes, 0, bytesToLookAt(context))) {
        advance(context,
                static_cast<uint64_t>(static_cast<const uint8_t*>(zero) - context.curBytes));
        if (checkUTFnFeatures(context))
            return true;
        advance(context);
    }
    advance(context, bytesToLookAt(context));
    return false;
}

/// Gathers the evidence; true when the answer fell on the way.
bool walk(DetectEncodingContext& context) {
    for (; !context.hasShiftJISByte && skipToEvidence(context); advance(context)) {
        if (!context.isNeverUTF8 && checkUTF8Features(context))
            continue;
        if (checkUTFnFeatures(context))
            return true;
        const uint8_t byte = *context.curBytes;
        if (byte == kEscape && checkEscape(context))
            return true;
        context.hasShiftJISByte = isShiftJISOnly(byte);
        if (!isIncludedInASCII(byte) && !isIncludedInJISX0201Roman(byte))
            countEUCFeatures(context);
    }
    return context.hasShiftJISByte && findTellingZero(context);
}

OrvEncoding encodingByCounters(const DetectEncodingContext& context) {
    if (context.hasShiftJISByte)
        return context.utf8Features != 0 ? OrvEncoding::utf8 : OrvEncoding::shiftjis;
    // UTF-8's form alone proves little: a pair of Latin-1 letters has it too.
    if (context.eucFeatures == 0 && context.jisFeatures == 0)
        return OrvEncoding::none;
    if (context.utf8Features > context.jisFeatures && context.utf8Features > context.eucFeatures)
        return OrvEncoding::utf8;
    return context.jisFeatures != 0 ? OrvEncoding::jis : OrvEncoding::eucjp;
}

} // namespace

bool detectEncodingInfoWithBOM(DetectEncodingContext& context) {
    const uint8_t* const bytes = context.textBytes;
    const uint64_t length = context.textLength;
    if (length < 2)
        return false;
    if (length > 2 && bytes[0] == 0xEF)
        return bytes[1] == 0xBB && bytes[2] == 0xBF &&
               setInfo(context, OrvEncoding::utf8, OrvByteOrder::none, true);
    if (bytes[0] == 0xFF) {
        const bool isUTF32 = length >= 4 && bytes[2] == 0 && bytes[3] == 0;
        return bytes[1] == 0xFE &&
               setInfo(context, isUTF32 ? OrvEncoding::utf32 : OrvEncoding::utf16,
                       OrvByteOrder::littleEndian, true);
    }
    if (bytes[0] == 0xFE)
        return bytes[1] == 0xFF &&
               setInfo(context, OrvEncoding::utf16, OrvByteOrder::bigEndian, true);
    return length >= 4 && std::memcmp(bytes, "\x00\x00\xFE\xFF", 4) == 0 &&
           setInfo(context, OrvEncoding::utf32, OrvByteOrder::bigEndian, true);
}

bool checkUTF8Features(DetectEncodingContext& context) {
    const uint8_t lead = *context.curBytes;
    if (lead < 0xC0)
        return false;
    // The lead bits ask for 2 to 6 bytes, however large a code point those make; FE and FF for
    // none at all.
    const uint64_t wanted = static_cast<uint64_t>(std::countl_one(lead));
    uint64_t found = 1;
    while (found < wanted && found < bytesLeft(context) && isContinuation(context.curBytes[found]))
        ++found;
    if (found != wanted || wanted > 6) {
        context.isNeverUTF8 = true;
        context.utf8Features = 0;
        return false;
    }
    ++context.utf8Features;
    return true;
}

bool checkUTFnFeatures(DetectEncodingContext& context) {
    const uint8_t* const bytes = context.curBytes;
    if (bytes[0] != 0)
        return false;
    const uint64_t offset = context.textOffset;
    const uint64_t left = bytesLeft(context);
    // Two zero bytes in a row are UTF-32's, wherever the run of them ends.
    if (left > 1 && bytes[1] == 0)
        return setInfo(context, OrvEncoding::utf32,
                       offset % 4 == 0 ? OrvByteOrder::bigEndian : OrvByteOrder::littleEndian);
    const bool fitsUTF32 = (offset % 4 == 0 || offset % 4 == 3) && context.textLength % 4 == 0;
    if (fitsUTF32 && (left < 4 || (bytes[2] != 0 && bytes[3] != 0)))
        return false;
    return setInfo(context, OrvEncoding::utf16,
                   offset % 2 == 0 ? OrvByteOrder::bigEndian : OrvByteOrder::littleEndian);
}

bool EncodingDetector::look(platform::ByteView bytes, size_t count) {
    _context.textBytes = reinterpret_cast<const uint8_t*>(bytes.data());
    _context.curBytes = _context.textBytes;
    _context.lookEnd = _context.textOffset + count;
    _isSettled = _isSettled || (_context.textOffset == 0 && detectEncodingInfoWithBOM(_context)) ||
                 walk(_context);
    return _isSettled;
}

OrvEncodingInfo EncodingDetector::encodingInfo() const {
    if (_isSettled)
        return _context.encodingInfo;
    return {.encoding = encodingByCounters(_context)};
}

OrvEncodingInfo detectEncodingInfo(platform::ByteView data) {
    EncodingDetector detector(data.size());
    detector.look(data, data.size());
    return detector.encodingInfo();
}

} // namespace zelmora
