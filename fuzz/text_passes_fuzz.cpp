// Any text: the line breaks and the katakana come out as in their plain re-telling.
#include "fuzz_input.h"
#include "plain_passes.h"
#include "textutil/text_utility_private.h"

using namespace zelmora;
using fuzz::require;

namespace {

/// Each byte a unit that matters, or one that does not; so the fuzzer soon writes the first.
std::u16string denseText(platform::ByteView bytes) {
    constexpr std::u16string_view kPlain = u"\r\n\u2028aア\U00020000";
    std::u16string text;
    for (const std::byte byte : bytes) {
        const auto value = static_cast<uint8_t>(byte);
        text +=
            value < 0x60 ? static_cast<char16_t>(0xFF60 + value) : kPlain[value % kPlain.size()];
    }
    return text;
}

void tryText(const std::u16string& text) {
    const OrvTextUtilityPrivate utility;
    const OrvLineBreak kind = utility.lineBreakTypeOfString(text);
    require(kind == fuzz::plainLineBreakType(text));
    std::u16string katakana = text;
    utility.convertHalfToFullKatakanaOfString(katakana);
    require(katakana == fuzz::plainFullWidthKatakana(text));
    for (const auto from : {1, 2, 3, 4}) {
        for (const auto to : {1, 2, 3, 4}) {
            std::u16string converted = text;
            utility.convertLineBreakOfString(converted, OrvLineBreak{from}, OrvLineBreak{to});
            require(converted == fuzz::plainLineBreaks(text, OrvLineBreak{from}, OrvLineBreak{to}));
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const fuzz::Input input(data, size);
    tryText(input.restAsUnits());
    tryText(denseText(input.rest()));
    return 0;
}
