// Macintosh Japanese and code page 932: one structure, two tables. The Macintosh one differs in two
// ways that the loops must know: 5C is the yen sign, and some codes stand for several units.
#include "platform/text/ascii_run.h"
#include "platform/text/chunks.h"
#include "platform/text/legacy_codecs.h"
#include "platform/text/text_tables.h"
#include "platform/text/wide_kernels.h"

#include <algorithm>

namespace zelmora::platform {
namespace {

enum class Vendor { macintosh, microsoft };

template<Vendor vendor>
const ShiftJISTable& tableOf() {
    return vendor == Vendor::macintosh ? kMacJapaneseTable : kCodePage932Table;
}

/// Whether a unit, a byte or one of UTF-16, is not the same ASCII character in both worlds.
template<Vendor vendor>
struct IsSpecial {
    template<typename Unit>
    bool operator()(Unit unit) const {
        if constexpr (vendor == Vendor::macintosh)
            return (unit >= 0x80) | (unit == '\\');
        else
            return unit >= 0x80;
    }
};

/// Appends the sequence of `cell`; false when the cell is unassigned.
bool appendSequence(const ShiftJISTable& table, char16_t cell, char16_t*& out) {
    const size_t index = static_cast<size_t>(cell - kFirstSequence);
    if (index >= table._sequences.size())
        return false;
    const Sequence& sequence = table._sequences[index];
    out = std::copy_n(sequence._units.data(), sequence._length, out);
    return true;
}

/// Decodes characters of two bytes as long as one follows another.
void decodePairs(const ShiftJISTable& table, const Octet*& in, const Octet* stop, const Octet* end,
                 char16_t*& out) {
    for (; in < stop && end - in >= 2; in += 2) {
        const uint8_t row = ShiftJISTable::rowOf(*in);
        const char16_t cell = table._cells[size_t{row} << 8 | in[1]];
        if (row == ShiftJISTable::kSingles || isNoCharacter(cell))
            return;
        *out++ = cell;
    }
}

/// Decodes from `in` to `stop` or past it; false at an invalid code.
template<Vendor vendor>
bool decodePlainly(const Octet*& in, const Octet* stop, const Octet* end, char16_t*& out) {
    const ShiftJISTable& table = tableOf<vendor>();
    while (in < stop) {
        decodePairs(table, in, stop, end, out);
        if (in >= stop)
            break;
        if (!IsSpecial<vendor>()(*in)) {
            copyASCIIRun(in, stop, out, IsSpecial<vendor>());
            continue;
        }
        const uint8_t row = ShiftJISTable::rowOf(*in);
        const ptrdiff_t length = row == ShiftJISTable::kSingles ? 1 : 2;
        if (end - in < length)
            return false;
        const char16_t cell = table._cells[size_t{row} << 8 | in[length - 1]];
        if (!isNoCharacter(cell))
            *out++ = cell;
        else if (!appendSequence(table, cell, out))
            return false;
        in += length;
    }
    return true;
}

template<Vendor vendor>
bool decodeStep(const Octet*& source, const Octet* stop, const Octet* end, char16_t*& target) {
    return convertInTurns(
        source, stop, target,
        [](const Octet*& in, const Octet* pause, char16_t*& out) {
            decodeShiftJISWindows(tableOf<vendor>()._cells, vendor == Vendor::microsoft, in, pause,
                                  out);
        },
        [end](const Octet*& in, const Octet* pause, char16_t*& out) {
            return decodePlainly<vendor>(in, pause, end, out);
        });
}

/// Whether `unit` may change the meaning of the one before it.
bool isSequenceMark(char16_t unit) {
    return (unit >= 0xF87A && unit <= 0xF87F) || unit == 0x20DD;
}

/// The longest sequence that the units from `in` to `end` begin with, if any. Those without a mark
/// in the second place begin with a unit that has no code.
const Sequence* findSequence(const ShiftJISTable& table, const char16_t* in, const char16_t* end) {
    if (end - in < 2 || (table._encode[*in] != 0 && !isSequenceMark(in[1])))
        return nullptr;
    const auto found = std::ranges::find_if(table._sequences, [&](const Sequence& sequence) {
        return sequence._length <= end - in &&
               std::equal(in, in + sequence._length, sequence._units.begin());
    });
    return found != table._sequences.end() ? &*found : nullptr;
}

/// Encodes characters of two bytes as long as one follows another.
template<Vendor vendor>
void encodePairs(EncodeTable table, const char16_t*& in, const char16_t* stop, Octet*& out) {
    for (; in < stop; ++in) {
        const uint16_t code = table[*in];
        if (code <= 0xFF)
            return;
        if (vendor == Vendor::macintosh && (stop - in < 2 || isSequenceMark(in[1])))
            return;
        *out++ = static_cast<Octet>(code >> 8);
        *out++ = static_cast<Octet>(code);
    }
}

/// Encodes from `in` to `stop` or past it; false at the first unit that has no code.
template<Vendor vendor>
bool encodePlainly(const char16_t*& in, const char16_t* stop, const char16_t* end, Octet*& out) {
    const ShiftJISTable& table = tableOf<vendor>();
    while (in < stop) {
        encodePairs<vendor>(table._encode, in, stop, out);
        if (in == stop)
            break;
        if (!IsSpecial<vendor>()(*in)) {
            copyASCIIRun(in, stop, out, IsSpecial<vendor>());
            continue;
        }
        const Sequence* const sequence = findSequence(table, in, end);
        const uint16_t code = sequence != nullptr ? sequence->_code : table._encode[*in];
        if (code == 0)
            return false;
        if (code > 0xFF)
            *out++ = static_cast<Octet>(code >> 8);
        *out++ = static_cast<Octet>(code);
        in += sequence != nullptr ? sequence->_length : 1;
    }
    return true;
}

template<Vendor vendor>
bool encodeStep(const char16_t*& source, const char16_t* stop, const char16_t* end,
                Octet*& target) {
    return convertInTurns(
        source, stop, target,
        [](const char16_t*& in, const char16_t* pause, Octet*& out) {
            encodeShiftJISWindows(tableOf<vendor>()._encode, vendor == Vendor::macintosh, in, pause,
                                  out);
        },
        [end](const char16_t*& in, const char16_t* pause, Octet*& out) {
            return encodePlainly<vendor>(in, pause, end, out);
        });
}

template<Vendor vendor>
class ShiftJISEncoder : public TextEncoder {
  public:
    const char16_t* encode(const char16_t* in, const char16_t* end, Bytes& out) override {
        return encodeInChunks<2>(in, end, out, encodeStep<vendor>);
    }
    bool holds(char16_t unit) const override {
        return !IsSpecial<vendor>()(unit) || tableOf<vendor>()._encode[unit] != 0;
    }
};

} // namespace

// The most units for the bytes: five for two, two for one.
std::unique_ptr<TextDecoder> makeMacJapaneseDecoder() {
    return makeChunkDecoder<3>(decodeStep<Vendor::macintosh>);
}

std::unique_ptr<TextDecoder> makeCodePage932Decoder() {
    return makeChunkDecoder<1>(decodeStep<Vendor::microsoft>);
}

std::unique_ptr<TextEncoder> makeMacJapaneseEncoder() {
    return std::make_unique<ShiftJISEncoder<Vendor::macintosh>>();
}

std::unique_ptr<TextEncoder> makeCodePage932Encoder() {
    return std::make_unique<ShiftJISEncoder<Vendor::microsoft>>();
}

} // namespace zelmora::platform
