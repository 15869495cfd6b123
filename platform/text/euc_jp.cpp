// EUC-JP: ASCII, two bytes of A1 to FE for JIS X 0208, 8E and one byte for half-width katakana, 8F
// and two bytes for JIS X 0212; extensions as data/jis_extensions.txt says.
#include "platform/text/ascii_run.h"
#include "platform/text/chunks.h"
#include "platform/text/legacy_codecs.h"
#include "platform/text/text_tables.h"

namespace zelmora::platform {
namespace {

constexpr Octet kSingleShift2 = 0x8E;
constexpr Octet kSingleShift3 = 0x8F;
constexpr char16_t kFirstHalfWidth = 0xFF61; ///< A1
constexpr Octet kFirstKatakana = 0xA1;
constexpr Octet kLastKatakana = 0xDF;

/// The character of the two bytes at `in` in `plane`, 0 when there is none.
char16_t characterAt(size_t plane, const Octet* in, const Octet* end) {
    const bool isPair = end - in >= 2 && (in[0] & in[1] & 0x80) != 0;
    return isPair ? kJISTable.cell(plane, in[0], in[1]) : u'\0';
}

/// The katakana of the byte at `in`, 0 when it is none.
char16_t katakanaAt(const Octet* in, const Octet* end) {
    const bool isKatakana = in != end && *in >= kFirstKatakana && *in <= kLastKatakana;
    return isKatakana ? static_cast<char16_t>(kFirstHalfWidth + *in - kFirstKatakana) : u'\0';
}

bool decodeStep(const Octet*& source, const Octet* stop, const Octet* end, char16_t*& target) {
    const Octet* in = source;
    char16_t* out = target;
    while (in < stop) {
        for (; in < stop; in += 2) {
            const char16_t character = characterAt(0, in, end);
            if (character == 0)
                break;
            *out++ = character;
        }
        if (in >= stop)
            break;
        if (*in < 0x80) {
            copyASCIIRun(in, stop, out, IsNotASCII());
            continue;
        }
        char16_t character = 0;
        if (*in == kSingleShift2)
            character = katakanaAt(in + 1, end);
        else if (*in == kSingleShift3)
            character = characterAt(1, in + 1, end);
        if (character == 0)
            return false;
        *out++ = character;
        in += *in == kSingleShift2 ? 2 : 3;
    }
    source = in;
    target = out;
    return true;
}

/// Encodes characters of JIS X 0208 as long as one follows another.
void encodePairs(const char16_t*& in, const char16_t* stop, Octet*& out) {
    for (; in < stop; ++in) {
        const uint16_t code = kJISTable._encode[*in];
        if (!JISTable::isInPlane0(code))
            return;
        *out++ = static_cast<Octet>(code >> 8);
        *out++ = static_cast<Octet>(code);
    }
}

bool encodeStep(const char16_t*& source, const char16_t* stop, const char16_t*, Octet*& target) {
    const char16_t* in = source;
    Octet* out = target;
    bool encodes = true;
    while (in < stop) {
        encodePairs(in, stop, out);
        if (in == stop)
            break;
        if (*in < 0x80) {
            copyASCIIRun(in, stop, out, IsNotASCII());
            continue;
        }
        const uint16_t code = kJISTable._encode[*in];
        encodes = code != 0;
        if (!encodes)
            break;
        *out++ = code <= 0xFF ? kSingleShift2 : kSingleShift3;
        if (code > 0xFF)
            *out++ = static_cast<Octet>(code >> 8);
        *out++ = static_cast<Octet>(code | 0x80);
        ++in;
    }
    source = in;
    target = out;
    return encodes;
}

class EUCJPEncoder : public TextEncoder {
  public:
    const char16_t* encode(const char16_t* in, const char16_t* end, Bytes& out) override {
        return encodeInChunks<3>(in, end, out, encodeStep);
    }
    bool holds(char16_t unit) const override { return unit < 0x80 || kJISTable._encode[unit] != 0; }
};

} // namespace

std::unique_ptr<TextDecoder> makeEUCJPDecoder() {
    return makeChunkDecoder<1>(decodeStep);
}

std::unique_ptr<TextEncoder> makeEUCJPEncoder() {
    return std::make_unique<EUCJPEncoder>();
}

} // namespace zelmora::platform
