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
char16_t characterAt(const char16_t* plane, const Octet* in, const Octet* end) {
    if (end - in < 2)
        return 0;
    const size_t row = static_cast<size_t>(in[0] - 0xA1);
    const size_t cell = static_cast<size_t>(in[1] - 0xA1);
    return row < JISTable::kCells && cell < JISTable::kCells ? plane[row * JISTable::kCells + cell]
                                                             : u'\0';
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
        if (*in < 0x80) {
            copyASCIIRun(in, stop, out, IsNotASCII());
            continue;
        }
        char16_t character;
        std::ptrdiff_t length = 2;
        if (*in == kSingleShift2) {
            character = katakanaAt(in + 1, end);
        } else if (*in == kSingleShift3) {
            character = characterAt(kJISTable._planes[1], in + 1, end);
            length = 3;
        } else {
            character = characterAt(kJISTable._planes[0], in, end);
        }
        if (character == 0)
            return false;
        in += length;
        *out++ = character;
    }
    source = in;
    target = out;
    return true;
}

bool encodeStep(const char16_t*& in, const char16_t* stop, const char16_t*, Octet*& target) {
    Octet* out = target;
    uint16_t code = 1;
    while (in < stop) {
        if (*in < 0x80) {
            copyASCIIRun(in, stop, out, IsNotASCII());
            continue;
        }
        code = kJISTable._encode[*in];
        if (code == 0)
            break;
        if (code <= 0xFF)
            *out++ = kSingleShift2;
        else if ((code & 0x80) == 0)
            *out++ = kSingleShift3;
        if (code > 0xFF)
            *out++ = static_cast<Octet>(code >> 8);
        *out++ = static_cast<Octet>(code | 0x80);
        ++in;
    }
    target = out;
    return code != 0;
}

class EUCJPEncoder : public LegacyEncoder {
  public:
    const char16_t* encode(const char16_t* in, const char16_t* end, Bytes& out) override {
        return encodeInChunks<3>(in, end, out, encodeStep);
    }
    bool holds(char16_t unit) const override { return unit < 0x80 || kJISTable._encode[unit] != 0; }
};

} // namespace

std::optional<std::u16string> decodeEUCJP(ByteView bytes) {
    return decodeInChunks<1>(bytes, decodeStep);
}

std::unique_ptr<LegacyEncoder> makeEUCJPEncoder() {
    return std::make_unique<EUCJPEncoder>();
}

} // namespace zelmora::platform
