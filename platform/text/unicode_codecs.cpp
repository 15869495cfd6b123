#include "platform/text/unicode_codecs.h"

#include "platform/text/ascii_run.h"
#include "platform/text/block_scan.h"
#include "platform/text/chunks.h"
#include "platform/text/wide_kernels.h"

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

namespace zelmora::platform {
namespace {

constexpr char32_t kLastCodePoint = 0x10FFFF;

const Octet* octetsOf(ByteView bytes) {
    return reinterpret_cast<const Octet*>(bytes.data());
}

uint32_t loadLittleEndian32(const Octet* in) {
    return static_cast<uint32_t>(in[0]) | static_cast<uint32_t>(in[1]) << 8 |
           static_cast<uint32_t>(in[2]) << 16 | static_cast<uint32_t>(in[3]) << 24;
}

bool isContinuation(Octet byte) {
    return (byte & 0xC0) == 0x80;
}

/// Takes three-byte sequences, which Japanese text is made of, as long as one follows another and
/// a byte is left after it.
void widenThreeByteRun(const Octet*& in, const Octet* stop, const Octet* end, char16_t*& out) {
    while (in < stop && end - in >= 4) {
        const uint32_t word = loadLittleEndian32(in);
        if ((word & 0x00C0C0F0) != 0x008080E0)
            return;
        const uint32_t codePoint = (word & 0x0F) << 12 | (word >> 2 & 0x0FC0) | (word >> 16 & 0x3F);
        if (codePoint < 0x800 || (codePoint & 0xF800) == 0xD800)
            return;
        *out++ = static_cast<char16_t>(codePoint);
        in += 3;
    }
}

struct Sequence {
    size_t length; // 0: not valid
    char32_t codePoint;
};

/// REQUIRES: `in` is not `end`.
Sequence readSequence(const Octet* in, const Octet* end) {
    const Octet lead = *in;
    if (lead < 0x80)
        return {1, lead};
    const size_t length = lead < 0xC0 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF8 ? 4 : 0;
    if (length == 0 || static_cast<size_t>(end - in) < length)
        return {0, 0};
    char32_t codePoint = lead & (0x7Fu >> length);
    for (size_t i = 1; i < length; ++i) {
        if (!isContinuation(in[i]))
            return {0, 0};
        codePoint = codePoint << 6 | (in[i] & 0x3F);
    }
    constexpr std::array<char32_t, 5> kSmallest = {0, 0, 0x80, 0x800, 0x10000};
    if (codePoint < kSmallest[length] || codePoint > kLastCodePoint ||
        (codePoint >= 0xD800 && codePoint <= 0xDFFF))
        return {0, 0};
    return {length, codePoint};
}

Octet continuation(char32_t codePoint, int shift) {
    return static_cast<Octet>(0x80 | (codePoint >> shift & 0x3F));
}

/// REQUIRES: `codePoint` is not ASCII.
void writeUTF8(char32_t codePoint, Octet*& out) {
    if (codePoint < 0x800) {
        *out++ = static_cast<Octet>(0xC0 | codePoint >> 6);
    } else if (codePoint < 0x10000) {
        *out++ = static_cast<Octet>(0xE0 | codePoint >> 12);
        *out++ = continuation(codePoint, 6);
    } else {
        *out++ = static_cast<Octet>(0xF0 | codePoint >> 18);
        *out++ = continuation(codePoint, 12);
        *out++ = continuation(codePoint, 6);
    }
    *out++ = continuation(codePoint, 0);
}

bool isSurrogatePair(char16_t first, char16_t second) {
    return isHighSurrogate(first) && isLowSurrogate(second);
}

/// Decodes from `in` to `stop` or past it; false where it is not valid.
bool decodePlainly(const Octet*& in, const Octet* stop, const Octet* end, char16_t*& out) {
    while (in < stop) {
        if (*in < 0x80) {
            copyASCIIRun(in, stop, out, IsNotASCII());
            continue;
        }
        const Octet* const start = in;
        widenThreeByteRun(in, stop, end, out);
        if (in != start)
            continue;
        const Sequence sequence = readSequence(in, end);
        if (sequence.length == 0)
            return false;
        writeUnits(sequence.codePoint, out);
        in += sequence.length;
    }
    return true;
}

bool decodeUTF8Step(const Octet*& source, const Octet* stop, const Octet* end, char16_t*& target) {
    return convertInTurns(source, stop, target, decodeUTF8Windows,
                          [end](const Octet*& in, const Octet* pause, char16_t*& out) {
                              return decodePlainly(in, pause, end, out);
                          });
}

/// Encodes from `in` to `stop` or past it; false at a lone surrogate.
bool encodePlainly(const char16_t*& in, const char16_t* stop, const char16_t* end, Octet*& out) {
    while (in < stop) {
        if (*in < 0x80) {
            copyASCIIRun(in, stop, out, IsNotASCII());
        } else if (!isSurrogate(*in)) {
            writeUTF8(*in++, out);
        } else if (end - in >= 2 && isSurrogatePair(in[0], in[1])) {
            writeUTF8(codePointOfPair(in[0], in[1]), out);
            in += 2;
        } else {
            return false;
        }
    }
    return true;
}

bool encodeUTF8Step(const char16_t*& source, const char16_t* stop, const char16_t* end,
                    Octet*& target) {
    return convertInTurns(source, stop, target, encodeUTF8Windows,
                          [end](const char16_t*& in, const char16_t* pause, Octet*& out) {
                              return encodePlainly(in, pause, end, out);
                          });
}

bool isNativeOrder(bool littleEndian) {
    return littleEndian == (std::endian::native == std::endian::little);
}

template<size_t units>
void copySwappedBlock(const std::byte*& in, std::byte*& out) {
    std::array<uint16_t, units> block;
    std::memcpy(block.data(), in, sizeof block);
    for (auto& unit : block)
        unit = static_cast<uint16_t>(unit << 8 | unit >> 8);
    std::memcpy(out, block.data(), sizeof block);
    in += sizeof block;
    out += sizeof block;
}

/// Copies `count` 16-bit units, exchanging the two bytes of each unless `littleEndian` is this
/// machine's order. Neither buffer needs alignment.
void copyUnits(const void* from, void* to, size_t count, bool littleEndian) {
    if (isNativeOrder(littleEndian)) {
        if (count > 0)
            std::memcpy(to, from, count * sizeof(char16_t));
        return;
    }
    const auto* in = static_cast<const std::byte*>(from);
    auto* out = static_cast<std::byte*>(to);
    constexpr size_t kBlock = 16; // a fixed number, for vector code
    for (; count >= kBlock; count -= kBlock)
        copySwappedBlock<kBlock>(in, out);
    for (; count > 0; --count)
        copySwappedBlock<1>(in, out);
}

uint32_t swapped32(uint32_t value) {
    return value << 24 | (value & 0xFF00) << 8 | (value >> 8 & 0xFF00) | value >> 24;
}

uint32_t inOrder32(uint32_t value, bool littleEndian) {
    return isNativeOrder(littleEndian) ? value : swapped32(value);
}

template<bool littleEndian>
bool decodeUTF16Step(const Octet*& in, const Octet* stop, const Octet* end, char16_t*& out) {
    size_t count = static_cast<size_t>(stop - in + 1) / 2;
    if (static_cast<size_t>(end - in) < 2 * count)
        return false;
    copyUnits(in, out, count, littleEndian);
    in += 2 * count;
    if (isHighSurrogate(out[count - 1]) && end - in >= 2) {
        copyUnits(in, out + count, 1, littleEndian);
        in += 2;
        ++count;
    }
    const char16_t* const units = out;
    out += count;
    return findLoneSurrogate({units, count}) == count;
}

template<bool littleEndian>
bool decodeUTF32Step(const Octet*& in, const Octet* stop, const Octet* end, char16_t*& out) {
    for (; in < stop; in += sizeof(char32_t)) {
        if (static_cast<size_t>(end - in) < sizeof(char32_t))
            return false;
        const uint32_t value = loadLittleEndian32(in);
        const char32_t codePoint = littleEndian ? value : swapped32(value);
        if (codePoint > kLastCodePoint || (codePoint & 0x1FF800) == 0xD800)
            return false;
        writeUnits(codePoint, out);
    }
    return true;
}

template<bool littleEndian>
bool encodeUTF16Step(const char16_t*& in, const char16_t* stop, const char16_t* end, Octet*& out) {
    if (stop != end && isHighSurrogate(stop[-1]))
        ++stop;
    const std::u16string_view text(in, static_cast<size_t>(stop - in));
    const size_t count = findLoneSurrogate(text);
    copyUnits(in, out, count, littleEndian);
    in += count;
    out += count * sizeof(char16_t);
    return in == stop;
}

template<bool littleEndian>
bool encodeUTF32Step(const char16_t*& in, const char16_t* stop, const char16_t* end, Octet*& out) {
    while (in < stop) {
        const bool isPair = end - in >= 2 && isSurrogatePair(in[0], in[1]);
        if (!isPair && isSurrogate(*in))
            return false;
        const uint32_t value =
            inOrder32(isPair ? codePointOfPair(in[0], in[1]) : *in, littleEndian);
        std::memcpy(out, &value, sizeof value);
        out += sizeof value;
        in += isPair ? 2 : 1;
    }
    return true;
}

template<size_t bytesPerUnit, auto step>
class UnicodeEncoder final : public TextEncoder {
  public:
    const char16_t* encode(const char16_t* in, const char16_t* end, Bytes& out) override {
        return encodeInChunks<bytesPerUnit>(in, end, out, step);
    }
    bool holds(char16_t unit) const override { return !isSurrogate(unit); }
};

} // namespace

size_t utf8SequenceLength(ByteView bytes) {
    const Octet* const in = octetsOf(bytes);
    return bytes.empty() ? 0 : readSequence(in, in + bytes.size()).length;
}

size_t findLoneSurrogate(std::u16string_view text, size_t from) {
    const auto findSurrogate = [&](size_t offset) {
        return findFirstUnit(
            text.data(), text.size(), [](char16_t u) { return isSurrogate(u); }, offset);
    };
    size_t offset = findSurrogate(from);
    while (offset + 1 < text.size() && isSurrogatePair(text[offset], text[offset + 1]))
        offset = findSurrogate(offset + 2);
    return offset;
}

std::unique_ptr<TextDecoder> makeUTF8Decoder() {
    return makeChunkDecoder<1>(decodeUTF8Step);
}

std::unique_ptr<TextDecoder> makeUTF16Decoder(bool littleEndian) {
    return makeChunkDecoder<1>(littleEndian ? decodeUTF16Step<true> : decodeUTF16Step<false>);
}

std::unique_ptr<TextDecoder> makeUTF32Decoder(bool littleEndian) {
    return makeChunkDecoder<1>(littleEndian ? decodeUTF32Step<true> : decodeUTF32Step<false>);
}

std::unique_ptr<TextEncoder> makeUTF8Encoder() {
    return std::make_unique<UnicodeEncoder<3, encodeUTF8Step>>();
}

std::unique_ptr<TextEncoder> makeUTF16Encoder(bool littleEndian) {
    if (littleEndian)
        return std::make_unique<UnicodeEncoder<2, encodeUTF16Step<true>>>();
    return std::make_unique<UnicodeEncoder<2, encodeUTF16Step<false>>>();
}

std::unique_ptr<TextEncoder> makeUTF32Encoder(bool littleEndian) {
    if (littleEndian)
        return std::make_unique<UnicodeEncoder<4, encodeUTF32Step<true>>>();
    return std::make_unique<UnicodeEncoder<4, encodeUTF32Step<false>>>();
}

} // namespace zelmora::platform
