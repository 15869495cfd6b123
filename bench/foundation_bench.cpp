// What a style sheet costs to search, and what temporary objects cost.
#include "foundation/orv_css.h"
#include "foundation/orv_ptr.h"
#include "foundation/orv_string.h"

#include <benchmark/benchmark.h>

#include <string>

namespace {

using namespace zelmora;
using Owned = OrvPtr<>;

constexpr size_t sheetSize = 10'000'000;

/// A sheet of `sheetSize` characters of ordinary rules.
std::u16string makeSheet() {
    const std::u16string rule = u"/* 見出し */\n.menu li a:hover, .menu li.active a {\n"
                                u"    color: #336699;\n    margin: 0 0 1em 0;\n"
                                u"    font-family: \"ＭＳ ゴシック\", sans-serif;\n}\n\n";
    std::u16string sheet;
    while (sheet.size() < sheetSize)
        sheet += rule;
    return sheet;
}

void setBytes(benchmark::State& state, size_t bytesEach) {
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(bytesEach));
}

/// A search that reads the whole sheet; a byte stands for a character.
void searchSheet(benchmark::State& state) {
    const Owned pool(OrvTemporaryObjectsPoolCreate());
    OrvIBase* text = OrvTemporaryStringWithNSString(makeSheet());
    const Owned parser(OrvCSSParserCreate(text));
    const OrvIBase* keyword = OrvTemporaryString(L"@charset");
    for (auto _ : state)
        benchmark::DoNotOptimize(
            OrvCSSParserFindElement(parser.get(), keyword, 0, nullptr, nullptr));
    setBytes(state, OrvStringGetLength(text));
}
BENCHMARK(searchSheet)->Unit(benchmark::kMillisecond);

/// Platform text to a string and back; a byte stands for a character.
void convertText(benchmark::State& state) {
    const std::u16string sheet = makeSheet();
    for (auto _ : state) {
        const Owned string(OrvStringCreateWithNSString(sheet));
        benchmark::DoNotOptimize(OrvStringCopyNSString(string.get()));
    }
    setBytes(state, sheet.size());
}
BENCHMARK(convertText)->Unit(benchmark::kMillisecond);

void convertLineBreaks(benchmark::State& state) {
    const std::u16string sheet = makeSheet();
    const Owned string(OrvStringCreateWithNSString(sheet));
    int32_t kind = 1;
    for (auto _ : state) {
        OrvStringConvertLineBreaks(string.get(), kind, 4 - kind);
        kind = 4 - kind;
    }
    setBytes(state, sheet.size());
}
BENCHMARK(convertLineBreaks)->Unit(benchmark::kMillisecond);

/// A pool with so many temporaries, opened and closed.
void poolWithTemporaries(benchmark::State& state) {
    const Owned outer(OrvTemporaryObjectsPoolCreate());
    const Owned object(OrvStringCreateEmpty());
    for (auto _ : state) {
        const Owned pool(OrvTemporaryObjectsPoolCreate());
        for (int64_t i = 0; i < state.range(0); ++i)
            OrvTemporaryObjectsPoolAddObject(OrvRetain(object.get()));
    }
    state.SetItemsProcessed(state.iterations() * std::max<int64_t>(state.range(0), 1));
}
BENCHMARK(poolWithTemporaries)->Arg(0)->Arg(16)->Arg(1024);

} // namespace
