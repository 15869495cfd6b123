// How the search for declarations grows with the text: every shape must stay linear. The argument
// is the text's length in units.
#include "markup/html_parser.h"
#include "markup/markup_parser.h"

#include <benchmark/benchmark.h>

#include <string>
#include <string_view>

namespace {

using namespace zelmora;

// 100 units: 50 MB hold 500,000 of them.
constexpr std::string_view kPlainTag =
    "<td class=\"cell\" align='left' title=\"another cell of the table\">text of a table's cell,"
    "and more</td\n";
static_assert(kPlainTag.size() == 100);

/// `front`, then `piece` over and over, a ">" last; `length` units in all.
template<class Unit>
std::basic_string<Unit> filled(std::string_view front, std::string_view piece, std::size_t length) {
    std::basic_string<Unit> text(front.begin(), front.end());
    while (text.size() < length)
        text.append(piece.begin(), piece.end());
    text.resize(length);
    text.back() = Unit('>');
    return text;
}

void findInText(benchmark::State& state, std::string_view front, std::string_view piece) {
    const auto length = static_cast<std::size_t>(state.range(0));
    OrvHTMLParser parser;
    parser.setHTMLString(filled<char16_t>(front, piece, length));
    for (auto _ : state) {
        benchmark::DoNotOptimize(parser.findEncodingSpecifier());
        benchmark::DoNotOptimize(parser.findMarkupTagName(u"head", 0));
        benchmark::DoNotOptimize(parser.findXMLProcInstTag());
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

void findInBytes(benchmark::State& state, std::string_view front, std::string_view piece) {
    const auto length = static_cast<std::size_t>(state.range(0));
    const auto data = filled<char>(front, piece, length);
    OrvMarkupParser parser;
    parser.setRawData(platform::bytesOf(data));
    for (auto _ : state)
        benchmark::DoNotOptimize(parser.findMarkupTagName(u"head", 0));
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

void sizes(benchmark::internal::Benchmark* benchmark) {
    for (const int length : {12'500'000, 25'000'000, 50'000'000})
        benchmark->Arg(length)->Unit(benchmark::kMillisecond);
}

#define SHAPE(NAME, FRONT, PIECE)                                                                  \
    BENCHMARK_CAPTURE(findInText, NAME, FRONT, PIECE)->Apply(sizes);                               \
    BENCHMARK_CAPTURE(findInBytes, NAME, FRONT, PIECE)->Apply(sizes)

SHAPE(PlainTags, "", kPlainTag);
SHAPE(OnlyLessThan, "", "<");
SHAPE(UnclosedQuote, "<p title=\"", kPlainTag);
SHAPE(QuoteInEveryTag, "", "<p title=\"a ");
SHAPE(OtherMetaTags, "",
      "<meta name=\"description\" content=\"one of very many, all of them alike\">");
SHAPE(OneEndlessTag, "<meta ", "a=\"b\" c ");

} // namespace
