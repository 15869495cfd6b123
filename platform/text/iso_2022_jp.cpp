// ISO-2022-JP: seven-bit bytes whose meaning escape sequences switch.
//
// Read: ASCII, JIS X 0201 Roman (5C is U+00A5, 7E is U+203E) and katakana, JIS X 0208 under either
// of its first two designations (the 1978 edition is read as the later ones, as is common), JIS X
// 0212; extensions as data/jis_extensions.txt says. Control characters and the space stand for
// themselves in every state and change none: line ends inside a two-byte run are common. ESC is
// valid only as the start of a known designation; SO, SI and bytes with the high bit never are.
//
// Written: ASCII and control characters in ASCII, everything else in the first set above that has
// it; the text ends in ASCII.
#include "platform/text/ascii_run.h"
#include "platform/text/chunks.h"
#include "platform/text/legacy_codecs.h"
#include "platform/text/text_tables.h"
#include "platform/text/wide_kernels.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace zelmora::platform {
namespace {

enum class Set { ascii, roman, katakana, jisX0208, jisX0212 };

struct Designation {
    std::string_view _escape;
    Set _set;
};

/// The first one of a set is the one that is written.
constexpr std::array<Designation, 6> kDesignations = {{
    {"\x1B(B", Set::ascii},
    {"\x1B(J", Set::roman},
    {"\x1B(I", Set::katakana},
    {"\x1B$B", Set::jisX0208},
    {"\x1B$@", Set::jisX0208},
    {"\x1B$(D", Set::jisX0212},
}};

constexpr Octet kEscape = 0x1B;
constexpr Octet kSpace = 0x20;
constexpr Octet kFirstGraphic = 0x21;
constexpr char16_t kFirstHalfWidth = 0xFF61;
constexpr size_t kKatakana = 63;
constexpr char16_t kYenSign = 0x00A5;
constexpr char16_t kOverline = 0x203E;

/// Whether a unit, a byte or one of UTF-16, is no ASCII character, or SO, SI or ESC.
struct IsSpecial {
    template<typename Unit>
    bool operator()(Unit unit) const {
        return (unit >= 0x80) | ((unit & 0xFE) == 0x0E) | (unit == kEscape);
    }
};

/// The designation that the bytes begin with, if it is a known one.
const Designation* designationAt(const Octet* in, const Octet* end) {
    const std::string_view rest(reinterpret_cast<const char*>(in), static_cast<size_t>(end - in));
    for (const Designation& designation : kDesignations) {
        if (rest.starts_with(designation._escape))
            return &designation;
    }
    return nullptr;
}

char16_t romanCharacter(Octet byte) {
    switch (byte) {
    case '\\':
        return kYenSign;
    case '~':
        return kOverline;
    default:
        return byte;
    }
}

/// Decodes two-byte characters as long as one follows another.
void decodePlane(size_t plane, const Octet*& in, const Octet* stop, const Octet* end,
                 char16_t*& out) {
    while (in < stop && end - in >= 2 && *in >= kFirstGraphic && ((in[0] | in[1]) & 0x80) == 0) {
        const char16_t character = kJISTable.cell(plane, in[0], in[1]);
        if (character == kUnassigned)
            return;
        *out++ = character;
        in += 2;
    }
}

/// Decodes graphic characters in the set that is switched to, as far as they are valid.
void decodeGraphics(Set set, const Octet*& in, const Octet* stop, const Octet* end,
                    char16_t*& out) {
    switch (set) {
    case Set::ascii:
        return;
    case Set::roman:
        for (; in < stop && *in >= kFirstGraphic && *in < 0x80; ++in)
            *out++ = romanCharacter(*in);
        return;
    case Set::katakana:
        for (; in < stop && static_cast<size_t>(*in - kFirstGraphic) < kKatakana; ++in)
            *out++ = static_cast<char16_t>(kFirstHalfWidth + *in - kFirstGraphic);
        return;
    case Set::jisX0208:
        return decodePlane(0, in, stop, end, out);
    case Set::jisX0212:
        return decodePlane(1, in, stop, end, out);
    }
}

/// Decodes from `in` to `stop` or past it; false at an invalid code.
bool decodePlainly(Set& set, const Octet*& in, const Octet* stop, const Octet* end,
                   char16_t*& out) {
    while (in < stop) {
        if (*in == kEscape) {
            const Designation* designation = designationAt(in, end);
            if (designation == nullptr)
                return false;
            set = designation->_set;
            in += designation->_escape.size();
            continue;
        }
        const Octet* const before = in;
        if (set == Set::ascii)
            copyASCIIRun(in, stop, out, IsSpecial());
        else if (*in <= kSpace && !IsSpecial()(*in))
            *out++ = *in++;
        else
            decodeGraphics(set, in, stop, end, out);
        if (in == before)
            return false;
    }
    return true;
}

bool decodeStep(Set& set, const Octet*& source, const Octet* stop, const Octet* end,
                char16_t*& target) {
    return convertInTurns(
        source, stop, target,
        [&set](const Octet*& in, const Octet* pause, char16_t*& out) {
            if (set != Set::ascii && set != Set::jisX0208)
                return;
            bool isDouble = set == Set::jisX0208;
            decodeISO2022JPWindows(isDouble, in, pause, out);
            set = isDouble ? Set::jisX0208 : Set::ascii;
        },
        [&set, end](const Octet*& in, const Octet* pause, char16_t*& out) {
            return decodePlainly(set, in, pause, end, out);
        });
}

class DecodingStep {
  public:
    bool operator()(const Octet*& in, const Octet* stop, const Octet* end, char16_t*& out) {
        return decodeStep(_set, in, stop, end, out);
    }
    [[nodiscard]] bool hasSwitched() const { return _set != Set::ascii; }

  private:
    Set _set = Set::ascii;
};

/// The set in which the character of `code` (see JISTable) is written.
Set setOfCode(uint16_t code) {
    if (code <= 0xFF)
        return Set::katakana;
    return JISTable::isInPlane0(code) ? Set::jisX0208 : Set::jisX0212;
}

void switchTo(Set wanted, Set& set, Octet*& out) {
    if (wanted == set)
        return;
    set = wanted;
    for (const Designation& designation : kDesignations) {
        if (designation._set == wanted) {
            out = std::copy(designation._escape.begin(), designation._escape.end(), out);
            return;
        }
    }
}

bool isRomanOnly(char16_t unit) {
    return unit == kYenSign || unit == kOverline;
}

/// Encodes characters of JIS X 0208, which is switched to, as long as one follows another.
void encodePairs(const char16_t*& in, const char16_t* stop, Octet*& out) {
    for (; in < stop; ++in) {
        const uint16_t code = kJISTable._encode[*in];
        if (!JISTable::isInPlane0(code))
            return;
        *out++ = static_cast<Octet>((code >> 8) & 0x7F);
        *out++ = static_cast<Octet>(code & 0x7F);
    }
}

/// Encodes the character at `in` with what it has to switch to; false when it has no code.
bool encodeCharacter(Set& set, char16_t unit, Octet*& out) {
    if (isRomanOnly(unit)) {
        switchTo(Set::roman, set, out);
        *out++ = unit == kYenSign ? '\\' : '~';
        return true;
    }
    const uint16_t code = kJISTable._encode[unit];
    if (code == 0)
        return false;
    switchTo(setOfCode(code), set, out);
    if (code > 0xFF)
        *out++ = static_cast<Octet>((code >> 8) & 0x7F);
    *out++ = static_cast<Octet>(code & 0x7F);
    return true;
}

bool encodeStep(Set& current, const char16_t*& source, const char16_t* stop, Octet*& target) {
    Set set = current;
    const char16_t* in = source;
    Octet* out = target;
    bool encodes = true;
    while (encodes && in < stop) {
        if (set == Set::jisX0208)
            encodePairs(in, stop, out);
        if (in == stop)
            break;
        if (!IsSpecial()(*in)) {
            switchTo(Set::ascii, set, out);
            copyASCIIRun(in, stop, out, IsSpecial());
            continue;
        }
        encodes = encodeCharacter(set, *in, out);
        in += encodes ? 1 : 0;
    }
    current = set;
    source = in;
    target = out;
    return encodes;
}

class ISO2022JPEncoder : public TextEncoder {
  public:
    const char16_t* encode(const char16_t* in, const char16_t* end, Bytes& out) override {
        constexpr size_t kLongest = 6; // four bytes of escape sequence and two of character
        return encodeInChunks<kLongest>(
            in, end, out,
            [this](const char16_t*& unit, const char16_t* stop, const char16_t*, Octet*& target) {
                return encodeStep(_set, unit, stop, target);
            });
    }
    bool holds(char16_t unit) const override {
        return !IsSpecial()(unit) || isRomanOnly(unit) || kJISTable._encode[unit] != 0;
    }
    void finish(Bytes& out) override {
        std::array<Octet, 4> escape;
        Octet* end = escape.data();
        switchTo(Set::ascii, _set, end);
        for (const Octet* octet = escape.data(); octet != end; ++octet)
            out.push_back(std::byte{*octet});
    }

  private:
    Set _set = Set::ascii;
};

} // namespace

std::unique_ptr<TextDecoder> makeISO2022JPDecoder() {
    return makeChunkDecoder<1>(DecodingStep());
}

std::unique_ptr<TextEncoder> makeISO2022JPEncoder() {
    return std::make_unique<ISO2022JPEncoder>();
}

} // namespace zelmora::platform
