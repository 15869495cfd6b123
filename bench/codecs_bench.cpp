// The codecs against the C library's iconv, on the same text in memory, both in pieces as a file's
// conversion takes them: what comes out stays in the cache. A byte is one of the encoded form,
// whichever side that is.
#include "novel.h"
#include "platform/text/text_coders.h"
#include "platform/text/text_encoding.h"

#include <benchmark/benchmark.h>

#include <cerrno>
#include <iconv.h>

#include <string>

namespace {

using namespace zelmora;
using platform::Bytes;
using platform::TextEncoding;

constexpr size_t kUnits = 8u << 20;
constexpr size_t kPiece = 64u << 10; // bytes or units of input

const std::u16string& novel() {
    static const std::u16string text = makeNovel(kUnits, u"\r\n");
    return text;
}

void setBytes(benchmark::State& state, const Bytes& encoded) {
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(encoded.size()));
}

void decode(benchmark::State& state, TextEncoding encoding) {
    const Bytes encoded = platform::encodeText(novel(), encoding).value();
    std::u16string piece;
    for (auto _ : state) {
        const auto decoder = platform::makeTextDecoder(encoding);
        for (platform::ByteView left = encoded; !left.empty();) {
            piece.clear();
            if (!decoder->decode(left, kPiece, piece))
                return state.SkipWithError("not decoded");
            benchmark::DoNotOptimize(piece.data());
        }
    }
    setBytes(state, encoded);
}

void encode(benchmark::State& state, TextEncoding encoding) {
    const Bytes encoded = platform::encodeText(novel(), encoding).value();
    Bytes bytes;
    for (auto _ : state) {
        const auto encoder = platform::makeTextEncoder(encoding);
        for (std::u16string_view left = novel(); !left.empty();) {
            const std::u16string_view piece = left.substr(0, kPiece);
            bytes.clear();
            if (encoder->encode(piece.data(), piece.data() + piece.size(), bytes) !=
                piece.data() + piece.size())
                return state.SkipWithError("not encoded");
            benchmark::DoNotOptimize(bytes.data());
            left.remove_prefix(piece.size());
        }
    }
    setBytes(state, encoded);
}

/// Converts `length` bytes at `data` over and over, each piece into the same buffer.
void runIconv(benchmark::State& state, const char* to, const char* from, const void* data,
              size_t length) {
    const iconv_t converter = iconv_open(to, from);
    std::string piece(2 * kPiece, '\0');
    for (auto _ : state) {
        char* in = const_cast<char*>(static_cast<const char*>(data)); // iconv only reads it
        size_t inLeft = length;
        while (inLeft > 0) {
            char* out = piece.data();
            size_t outLeft = piece.size();
            if (iconv(converter, &in, &inLeft, &out, &outLeft) == static_cast<size_t>(-1) &&
                errno != E2BIG)
                return state.SkipWithError("iconv failed");
            benchmark::DoNotOptimize(piece.data());
        }
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
