// The codecs against the C library's iconv, on the same text in memory. A byte is one of the
// encoded form, whichever side that is.
#include "novel.h"
#include "platform/text/text_encoding.h"

#include <benchmark/benchmark.h>

#include <iconv.h>

#include <string>

namespace {

using namespace zelmora;
using platform::Bytes;
using platform::TextEncoding;

constexpr size_t kUnits = 8u << 20;

const std::u16string& novel() {
    static const std::u16string text = makeNovel(kUnits, u"\r\n");
    return text;
}

void setBytes(benchmark::State& state, const Bytes& encoded) {
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(encoded.size()));
}

void decode(benchmark::State& state, TextEncoding encoding) {
    const Bytes encoded = platform::encodeText(novel(), encoding).value();
    for (auto _ : state)
        benchmark::DoNotOptimize(platform::decodeText(encoded, encoding));
    setBytes(state, encoded);
}

void encode(benchmark::State& state, TextEncoding encoding) {
    const Bytes encoded = platform::encodeText(novel(), encoding).value();
    for (auto _ : state)
        benchmark::DoNotOptimize(platform::encodeText(novel(), encoding));
    setBytes(state, encoded);
}

/// Converts `length` bytes at `data` over and over, into a buffer with room for all of the result.
void runIconv(benchmark::State& state, const char* to, const char* from, const void* data,
              size_t length) {
    const iconv_t converter = iconv_open(to, from);
    std::string result(4 * kUnits, '\0');
    for (auto _ : state) {
        char* in = const_cast<char*>(static_cast<const char*>(data)); // iconv only reads it
        char* out = result.data();
        size_t inLeft = length;
        size_t outLeft = result.size();
        if (iconv(converter, &in, &inLeft, &out, &outLeft) == static_cast<size_t>(-1)) {
            state.SkipWithError("iconv failed");
            break;
        }
        benchmark::DoNotOptimize(result.data());
        iconv(converter, nullptr, nullptr, nullptr, nullptr);
    }
    iconv_close(converter);
}

void iconvDecode(benchmark::State& state, TextEncoding encoding, const char* name) {
    const Bytes encoded = platform::encodeText(novel(), encoding).value();
    runIconv(state, "UTF-16LE", name, encoded.data(), encoded.size());
    setBytes(state, encoded);
}

void iconvEncode(benchmark::State& state, TextEncoding encoding, const char* name) {
    const Bytes encoded = platform::encodeText(novel(), encoding).value();
    runIconv(state, name, "UTF-16LE", novel().data(), novel().size() * sizeof(char16_t));
    setBytes(state, encoded);
}

#define CODEC(LABEL, ENCODING, ICONV_NAME)                                                         \
    BENCHMARK_CAPTURE(decode, LABEL, TextEncoding::ENCODING)->Unit(benchmark::kMillisecond);       \
    BENCHMARK_CAPTURE(encode, LABEL, TextEncoding::ENCODING)->Unit(benchmark::kMillisecond);       \
    BENCHMARK_CAPTURE(iconvDecode, LABEL, TextEncoding::ENCODING, ICONV_NAME)                      \
        ->Unit(benchmark::kMillisecond);                                                           \
    BENCHMARK_CAPTURE(iconvEncode, LABEL, TextEncoding::ENCODING, ICONV_NAME)                      \
        ->Unit(benchmark::kMillisecond)

CODEC(ShiftJIS, codePage932, "CP932");
CODEC(EUCJP, eucJP, "EUC-JP");
CODEC(ISO2022JP, iso2022JP, "ISO-2022-JP");
CODEC(UTF8, utf8, "UTF-8");

} // namespace
