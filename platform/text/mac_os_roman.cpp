// Mac OS Roman: one byte for a character, and no byte without one.
#include "platform/text/ascii_run.h"
#include "platform/text/chunks.h"
#include "platform/text/legacy_codecs.h"
#include "platform/text/text_tables.h"

namespace zelmora::platform {
namespace {

bool decodeStep(const Octet*& in, const Octet* stop, const Octet*, char16_t*& out) {
    while (in < stop) {
        copyASCIIRun(in, stop, out, IsNotASCII());
        for (; in < stop && *in >= 0x80; ++in)
            *out++ = kMacOSRomanTable._singles[*in];
    }
    return true;
}

bool encodeStep(const char16_t*& in, const char16_t* stop, const char16_t*, Octet*& out) {
    while (in < stop) {
        copyASCIIRun(in, stop, out, IsNotASCII());
        for (; in < stop && *in >= 0x80; ++in) {
            const uint16_t code = kMacOSRomanTable._encode[*in];
            if (code == 0)
                return false;
            *out++ = static_cast<Octet>(code);
        }
    }
    return true;
}

class MacOSRomanEncoder : public TextEncoder {
  public:
    const char16_t* encode(const char16_t* in, const char16_t* end, Bytes& out) override {
        return encodeInChunks<1>(in, end, out, encodeStep);
    }
    bool holds(char16_t unit) const override {
        return unit < 0x80 || kMacOSRomanTable._encode[unit] != 0;
    }
};

} // namespace

std::unique_ptr<TextDecoder> makeMacOSRomanDecoder() {
    return makeChunkDecoder<1>(decodeStep);
}

std::unique_ptr<TextEncoder> makeMacOSRomanEncoder() {
    return std::make_unique<MacOSRomanEncoder>();
}

} // namespace zelmora::platform
