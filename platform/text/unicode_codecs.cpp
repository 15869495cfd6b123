// Each direction runs twice over its input: once to learn the exact size of the result, once to
// write it through a plain pointer. The first pass is far cheaper than the zeroes and the copies
// that a guessed size costs. Fixed-length inner loops are what the compilers turn into vector code.
#include "platform/text/unicode_codecs.h"

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

namespace zelmora::platform {
namespace {

using Octet = unsigned char;

constexpr size_t kBlock = 16; // bytes or units handled at once
constexpr uint64_t kHighBits = 0x8080808080808080;
constexpr char32_t kLastCodePoint = 0x10FFFF;

const Octet* octetsOf(ByteView bytes) {
    return reinterpret_cast<const Octet*>(bytes.data());
}

uint32_t loadLittleEndian32(const Octet* in) {
    return static_cast<uint32_t>(in[0]) | static_cast<uint32_t>(in[1]) << 8 |
           static_cast<uint32_t>(in[2]) << 16 | static_cast<uint32_t>(in[3]) << 24;
}

uint64_t load64(const Octet* in) {
    uint64_t word;
    std::memcpy(&word, in, sizeof word);
    return word;
}

bool isContinuation(Octet byte) {
    return (byte & 0xC0) == 0x80;
}

/// Adds up the eight bytes of `word`.
size_t sumOfBytes(uint64_t word) {
    const uint64_t pairs = (word & 0x00FF00FF00FF00FF) + ((word >> 8) & 0x00FF00FF00FF00FF);
    return (pairs * 0x0001000100010001) >> 48;
}

/// The units that valid UTF-8 decodes to: one for each byte that is no continuation, one more for
/// each lead of four. For invalid bytes at least what is written before the fault is found.
size_t utf16LengthOfUTF8(const Octet* in, const Octet* end) {
    size_t length = static_cast<size_t>(end - in);
    while (end - in >= 8) {
        uint64_t continuations = 0; // eight counters of a byte each, so 255 rounds at most
        uint64_t longLeads = 0;
        for (int round = 0; round < 255 && end - in >= 8; ++round, in += 8) {
            const uint64_t word = load64(in);
            continuations += (word & ~(word << 1) & kHighBits) >> 7;
            longLeads += (word & (word << 1) & (word << 2) & (word << 3) & kHighBits) >> 7;
        }
        length = length - sumOfBytes(continuations) + sumOfBytes(longLeads);
    }
    for (; in != end; ++in)
        length = length - (isContinuation(*in) ? 1 : 0) + (*in >= 0xF0 ? 1 : 0);
    return length;
}

void widenASCII(const Octet*& in, const Octet* end, char16_t*& out) {
    while (end - in >= static_cast<ptrdiff_t>(kBlock) &&
           ((load64(in) | load64(in + 8)) & kHighBits) == 0) {
        std::array<Octet, kBlock> narrow;
        std::array<char16_t, kBlock> wide;
        std::memcpy(narrow.data(), in, sizeof narrow);
        for (size_t i = 0; i < kBlock; ++i)
            wide[i] = narrow[i];
        std::memcpy(out, wide.data(), sizeof wide);
        in += kBlock;
        out += kBlock;
    }
    while (in != end && *in < 0x80)
        *out++ = *in++;
}

/// Takes three-byte sequences, which Japanese text is made of, as long as one follows another and
/// a byte is left after it.
void widenThreeByteRun(const Octet*& in, const Octet* end, char16_t*& out) {
    while (end - in >= 4) {
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

void writeUnits(char32_t codePoint, char16_t*& out) {
    if (codePoint >= 0x10000) {
        *out++ = static_cast<char16_t>(0xD7C0 + (codePoint >> 10));
        codePoint = 0xDC00 | (codePoint & 0x3FF);
    }
    *out++ = static_cast<char16_t>(codePoint);
}

char32_t codePointOfPair(char16_t high, char16_t low) {
    return 0x10000 + ((high & 0x3FFu) << 10) + (low & 0x3FFu);
}

/// REQUIRES: no lone surrogate in `text`.
size_t utf8LengthOfText(std::u16string_view text) {
    const auto extraBytes = [](char16_t unit) {
        // Each half of a pair stands for two of the four bytes.
        return (unit > 0x7F) + (unit > 0x7FF) - isSurrogate(unit);
    };
    size_t length = text.size();
    const char16_t* in = text.data();
    const char16_t* const end = in + text.size();
    for (; end - in >= static_cast<ptrdiff_t>(kBlock); in += kBlock) {
        uint16_t extra = 0;
        for (size_t i = 0; i < kBlock; ++i)
            extra = static_cast<uint16_t>(extra + extraBytes(in[i]));
        length += extra;
    }
    for (; in != end; ++in)
        length += static_cast<size_t>(extraBytes(*in));
    return length;
}

void narrowASCII(const char16_t*& in, const char16_t* end, Octet*& out) {
    while (end - in >= static_cast<ptrdiff_t>(kBlock)) {
        std::array<char16_t, kBlock> wide;
        std::array<Octet, kBlock> narrow;
        std::memcpy(wide.data(), in, sizeof wide);
        char16_t all = 0;
        for (size_t i = 0; i < kBlock; ++i)
            all = static_cast<char16_t>(all | wide[i]);
        if (all >= 0x80)
            break;
        for (size_t i = 0; i < kBlock; ++i)
            narrow[i] = static_cast<Octet>(wide[i]);
        std::memcpy(out, narrow.data(), sizeof narrow);
        in += kBlock;
        out += kBlock;
    }
    while (in != end && *in < 0x80)
        *out++ = static_cast<Octet>(*in++);
}

Octet continuation(char32_t codePoint, int shift) {
    return static_cast<Octet>(0x80 | (codePoint >> shift & 0x3F));
}

/// Writes units up to the next ASCII one. REQUIRES: no lone surrogate.
void narrowOthers(const char16_t*& in, const char16_t* end, Octet*& out) {
    for (; in != end && *in >= 0x80; ++in) {
        char32_t codePoint = *in;
        if (codePoint < 0x800) {
            *out++ = static_cast<Octet>(0xC0 | codePoint >> 6);
        } else if (!isSurrogate(*in)) {
            *out++ = static_cast<Octet>(0xE0 | codePoint >> 12);
            *out++ = continuation(codePoint, 6);
        } else {
            codePoint = codePointOfPair(in[0], in[1]);
            ++in;
            *out++ = static_cast<Octet>(0xF0 | codePoint >> 18);
            *out++ = continuation(codePoint, 12);
            *out++ = continuation(codePoint, 6);
        }
        *out++ = continuation(codePoint, 0);
    }
}

/// Whether any of the kBlock units at `in` is a surrogate.
bool holdsSurrogate(const char16_t* in) {
    uint16_t surrogates = 0;
    for (size_t i = 0; i < kBlock; ++i)
        surrogates = static_cast<uint16_t>(surrogates | isSurrogate(in[i]));
    return surrogates != 0;
}

bool isSurrogatePair(char16_t first, char16_t second) {
    return isHighSurrogate(first) && isLowSurrogate(second);
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
    for (; count >= kBlock; count -= kBlock)
        copySwappedBlock<kBlock>(in, out);
    for (; count > 0; --count)
        copySwappedBlock<1>(in, out);
}

uint32_t swapped32(uint32_t value) {
    return value << 24 | (value & 0xFF00) << 8 | (value >> 8 & 0xFF00) | value >> 24;
}

uint32_t load32(const Octet* in, bool littleEndian) {
    const uint32_t value = loadLittleEndian32(in);
    return littleEndian ? value : swapped32(value);
}

} // namespace

size_t utf8SequenceLength(ByteView bytes) {
    const Octet* const in = octetsOf(bytes);
    return bytes.empty() ? 0 : readSequence(in, in + bytes.size()).length;
}

size_t findLoneSurrogate(std::u16string_view text, size_t from) {
    size_t offset = from;
    while (offset < text.size()) {
        const std::u16string_view block = text.substr(offset, kBlock);
        if (block.size() == kBlock && !holdsSurrogate(block.data())) {
            offset += kBlock;
            continue;
        }
        for (const size_t blockEnd = offset + block.size(); offset < blockEnd; ++offset) {
            if (!isSurrogate(text[offset]))
                continue;
            if (offset + 1 == text.size() || !isSurrogatePair(text[offset], text[offset + 1]))
                return offset;
            ++offset;
        }
    }
    return text.size();
}

std::optional<std::u16string> decodeUTF8(ByteView bytes) {
    const Octet* in = octetsOf(bytes);
    const Octet* const end = in + bytes.size();
    std::u16string text(utf16LengthOfUTF8(in, end), u'\0');
    char16_t* out = text.data();
    while (in != end) {
        if (*in < 0x80) {
            widenASCII(in, end, out);
            continue;
        }
        const Octet* const start = in;
        widenThreeByteRun(in, end, out);
        if (in != start)
            continue;
        const Sequence sequence = readSequence(in, end);
        if (sequence.length == 0)
            return std::nullopt;
        writeUnits(sequence.codePoint, out);
        in += sequence.length;
    }
    return text;
}

std::optional<std::u16string> decodeUTF16(ByteView bytes, bool littleEndian) {
    if (bytes.size() % sizeof(char16_t) != 0)
        return std::nullopt;
    std::u16string text(bytes.size() / sizeof(char16_t), u'\0');
    copyUnits(bytes.data(), text.data(), text.size(), littleEndian);
    if (findLoneSurrogate(text) != text.size())
        return std::nullopt;
    return text;
}

std::optional<std::u16string> decodeUTF32(ByteView bytes, bool littleEndian) {
    if (bytes.size() % sizeof(char32_t) != 0)
        return std::nullopt;
    const Octet* const begin = octetsOf(bytes);
    const Octet* const end = begin + bytes.size();
    size_t length = bytes.size() / sizeof(char32_t);
    for (const Octet* in = begin; in != end; in += sizeof(char32_t)) {
        const char32_t codePoint = load32(in, littleEndian);
        if (codePoint > kLastCodePoint || (codePoint & 0x1FF800) == 0xD800)
            return std::nullopt;
        length += codePoint > 0xFFFF ? 1 : 0;
    }
    std::u16string text(length, u'\0');
    char16_t* out = text.data();
    for (const Octet* in = begin; in != end; in += sizeof(char32_t))
        writeUnits(load32(in, littleEndian), out);
    return text;
}

std::optional<Bytes> encodeUTF8(std::u16string_view text) {
    if (findLoneSurrogate(text) != text.size())
        return std::nullopt;
    Bytes bytes(utf8LengthOfText(text));
    auto* out = reinterpret_cast<Octet*>(bytes.data());
    const char16_t* in = text.data();
    const char16_t* const end = in + text.size();
    while (in != end) {
        narrowASCII(in, end, out);
        narrowOthers(in, end, out);
    }
    return bytes;
}

std::optional<Bytes> encodeUTF16(std::u16string_view text, bool littleEndian) {
    if (findLoneSurrogate(text) != text.size())
        return std::nullopt;
    Bytes bytes(text.size() * sizeof(char16_t));
    copyUnits(text.data(), bytes.data(), text.size(), littleEndian);
    return bytes;
}

std::optional<Bytes> encodeUTF32(std::u16string_view text, bool littleEndian) {
    if (findLoneSurrogate(text) != text.size())
        return std::nullopt;
    size_t pairs = 0;
    for (const char16_t unit : text)
        pairs += isHighSurrogate(unit) ? 1 : 0;
    Bytes bytes((text.size() - pairs) * sizeof(char32_t));
    std::byte* out = bytes.data();
    for (const char16_t* in = text.data(), * const end = in + text.size(); in != end; ++in) {
        uint32_t value = *in;
        if (isSurrogate(*in)) {
            value = codePointOfPair(in[0], in[1]);
            ++in;
        }
        if (!isNativeOrder(littleEndian))
            value = swapped32(value);
        std::memcpy(out, &value, sizeof value);
        out += sizeof value;
    }
    return bytes;
}

} // namespace zelmora::platform
