// Any style sheet, read from any offset: every rule lies in the text, every pass moves forward,
// the search agrees with reading rule by rule, and what is rendered is there to be read again.
#include "foundation/orv_css.h"
#include "foundation/orv_css_impl.h"
#include "foundation/orv_string.h"
#include "foundation/orv_test_counters.h"
#include "foundation/wide_text.h"
#include "fuzz_input.h"

#include <cstring>

namespace {

using namespace zelmora;
using fuzz::require;

/// Most bytes as they are; the rest, with the byte that follows, spread over all code points.
std::wstring sheetFrom(const uint8_t* data, size_t size) {
    std::wstring sheet;
    for (size_t i = 0; i < size; ++i) {
        if (data[i] < 0x80 || i + 1 == size) {
            sheet += static_cast<wchar_t>(data[i]);
        } else {
            sheet += static_cast<wchar_t>((data[i] & 0x7F) << 14 | data[i + 1] << 6);
            ++i;
        }
    }
    return sheet;
}

struct Place {
    int32_t start = 0;
    int32_t length = 0;
};

/// Reads every rule from `offset` on; answers the place of the first that has the keyword.
Place readAll(OrvIBase* parser, int32_t offset, int32_t size) {
    Place found;
    int32_t end = offset;
    for (;;) {
        const OrvPtr<> pool(OrvTemporaryObjectsPoolCreate());
        Place place;
        int32_t error = -1;
        OrvIBase* rule = OrvCSSParserParseElement(parser, end, &place.start, &place.length, &error);
        require(error == 0);
        if (!rule) {
            require(place.start == 0 && place.length == 0);
            return found;
        }
        require(place.start >= std::max(end, 0) && place.length > 0);
        require(place.start <= size - place.length);
        end = place.start + place.length;
        const auto* element = objectCast<OrvCCSSElement>(rule);
        require((element->Text() != nullptr) == (element->Selectors()->count() > 0));
        if (found.length == 0 && element->Selectors()->count() > 0 &&
            compareCaseInsensitive(element->firstSelector(), L"@c") == 0)
            found = place;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    int32_t offset = 0;
    if (size < sizeof offset)
        return 0;
    std::memcpy(&offset, data, sizeof offset);
    const std::wstring sheet = sheetFrom(data + sizeof offset, size - sizeof offset);
    const auto length = static_cast<int32_t>(sheet.size());
    {
        const OrvPtr<> pool(OrvTemporaryObjectsPoolCreate());
        const OrvPtr<> text(OrvStringCreateWithCharacters(sheet.data(), sheet.size()));
        const OrvPtr<> parser(OrvCSSParserCreate(text.get()));
        for (const int32_t from : {0, offset, offset % (length + 1)}) {
            const Place expected = readAll(parser.get(), from, length);
            Place found;
            const OrvIBase* rule = OrvCSSParserFindElement(parser.get(), OrvTemporaryString(L"@C"),
                                                           from, &found.start, &found.length);
            require((rule != nullptr) == (expected.length > 0));
            require(found.start == expected.start && found.length == expected.length);
        }
    }
#ifdef ORV_TEST_COUNTERS
    require(OrvLiveObjectCount() == 0);
#endif
    return 0;
}
