// EUC-JP: ASCII, two bytes of A1 to FE for JIS X 0208, 8E and one byte for half-width katakana, 8F
// and two bytes for JIS X 0212; extensions as data/jis_extensions.txt says.
#include "platform/text/ascii_run.h"
#include "platform/text/chunks.h"
#include "platform/text/legacy_codecs.h"
#include "platform/text/text_tables.h"
#include "platform/text/wide_kernels.h"

namespace zelmora::platform {
namespace {

constexpr Octet kSingleShift2 = 0x8E;
constexpr Octet kSingleShift3 = 0x8F;

/// The character of the two bytes at `in` in `plane`, if there is one.
char16_t characterAt(size_t plane, const Octet* in, const Octet* end) {
    const bool isPair = end - in >= 2 && (in[0] & in[1] & 0x80) != 0;
    return isPair ? kJISTable.cell(plane, in[0], in[1]) : kUnassigned;
}

/// Decodes characters of two bytes as long as one follows another.
void decodePairs(const Octet*& in, const Octet* stop, const Octet* end, char16_t*& out) {
    for (; in < stop; in += 2) {
        const char16_t character = characterAt(0, in, end);
        if (character == kUnassigned)
            return;
        *out++ = character;
    }
}

/// Decodes from `in` to `stop` or past it; false at an invalid code.
bool decodePlainly(const Octet*& in, const Octet* stop, const Octet* end, char16_t*& out) {
    while (in < stop) {
        decodePairs(in, stop, end, out);
        if (in >= stop)
            break;
        if (*in < 0x80) {
            copyASCIIRun(in, stop, out, IsNotASCII());
            continue;
        }
        const char16_t character = *in == kSingleShift3 ? characterAt(1, in + 1, end) : kUnassigned;
        if (character == kUnassigned)
            return false;
        *out++ = character;
        in += 3;
    }
    return true;
}

bool decodeStep(const Octet*& source, const Octet* stop, const Octet* end, char16_t*& target) {
    return convertInTurns(source, stop, target, decodeEUCJPWindows,
                          [end](const Octet*& in, const Octet* pause, char16_t*& out) {
                              return decodePlainly(in, pause, end, out);
                          });
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
