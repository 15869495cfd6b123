// Speed of what every file goes through beside its codecs: detection, line breaks, katakana.
#include "novel.h"
#include "platform/text/text_encoding.h"
#include "textutil/encoding_detector.h"
#include "textutil/text_utility_private.h"

#include <benchmark/benchmark.h>

#include <string>
#include <string_view>

namespace {

using namespace zelmora;
using platform::TextEncoding;

constexpr size_t kSize = 64u << 20; // bytes
constexpr std::u16string_view kHalfWidth = u"ｶﾞﾊﾟｱｲｳｴｵ漢字とかな交じり文をここに書く\n";

const std::u16string& novel() {
    static const std::u16string text = makeNovel(kSize / sizeof(char16_t), u"\n");
    return text;
}

template<typename Text>
Text filled(const Text& piece, size_t size) {
    Text text;
    while (text.size() < size)
        text.insert(text.end(), piece.begin(), piece.end());
    return text;
}

void setBytes(benchmark::State& state, size_t bytes) {
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(bytes));
}

void detect(benchmark::State& state, const platform::Bytes& data) {
    for (auto _ : state)
        benchmark::DoNotOptimize(detectEncodingInfo(data));
    setBytes(state, data.size());
}

void detectEncoded(benchmark::State& state, TextEncoding encoding) {
    detect(state, platform::encodeText(novel(), encoding).value());
}

// Bytes that decide nothing but each need a look.
void detectBytes(benchmark::State& state, std::string_view piece) {
    const platform::ByteView bytes = platform::bytesOf(piece);
    detect(state, filled(platform::Bytes(bytes.begin(), bytes.end()), kSize));
}

/// Runs `convert` on a fresh copy of `text` each time; the copying is not counted.
template<typename Convert>
void convertCopies(benchmark::State& state, const std::u16string& text, Convert convert) {
    for (auto _ : state) {
        state.PauseTiming();
        std::u16string copy = text;
        state.ResumeTiming();
        convert(copy);
        benchmark::DoNotOptimize(copy.data());
    }
    setBytes(state, text.size() * sizeof(char16_t));
}

void convertLineBreaks(benchmark::State& state, OrvLineBreak from, OrvLineBreak to) {
    const OrvTextUtilityPrivate utility;
    std::u16string text = novel();
    utility.convertLineBreakOfString(text, OrvLineBreak::lf, from);
    convertCopies(state, text,
                  [&](std::u16string& copy) { utility.convertLineBreakOfString(copy, from, to); });
}

/// A text with none of the breaks that are looked for.
void keepLineBreaks(benchmark::State& state) {
    const OrvTextUtilityPrivate utility;
    convertCopies(state, novel(), [&](std::u16string& copy) {
        utility.convertLineBreakOfString(copy, OrvLineBreak::crlf, OrvLineBreak::lf);
    });
}

void convertKatakana(benchmark::State& state, const std::u16string& text) {
    const OrvTextUtilityPrivate utility;
    convertCopies(state, text,
                  [&](std::u16string& copy) { utility.convertHalfToFullKatakanaOfString(copy); });
}

void katakanaNone(benchmark::State& state) {
    convertKatakana(state, novel());
}

void katakanaMixed(benchmark::State& state) {
    convertKatakana(state, filled(std::u16string(kHalfWidth), kSize / sizeof(char16_t)));
}

BENCHMARK_CAPTURE(detectEncoded, ShiftJIS, TextEncoding::codePage932);
BENCHMARK_CAPTURE(detectEncoded, EUCJP, TextEncoding::eucJP);
BENCHMARK_CAPTURE(detectEncoded, UTF8, TextEncoding::utf8);
BENCHMARK_CAPTURE(detectBytes, ASCII, "The quick brown fox jumps over the lazy dog.\n");
BENCHMARK_CAPTURE(detectBytes, Latin1, "caf\xE9 na\xEFve \xE0 la carte\n");
BENCHMARK_CAPTURE(detectBytes, TwoByteUTF8, "\xC3\xA9");
BENCHMARK_CAPTURE(detectBytes, Escapes, "\x1B");
BENCHMARK_CAPTURE(convertLineBreaks, LFToCR, OrvLineBreak::lf, OrvLineBreak::cr);
BENCHMARK_CAPTURE(convertLineBreaks, LFToCRLF, OrvLineBreak::lf, OrvLineBreak::crlf);
BENCHMARK_CAPTURE(convertLineBreaks, CRLFToLF, OrvLineBreak::crlf, OrvLineBreak::lf);
BENCHMARK(keepLineBreaks);
BENCHMARK(katakanaNone);
BENCHMARK(katakanaMixed);

} // namespace
