// Any text: found tags lie in it, the searches agree with each other, edits change their range
// only.
#include "fuzz_input.h"
#include "markup/html_parser.h"

#include <cstddef>
#include <cstdint>
#include <variant>

namespace {

using namespace zelmora;
using fuzz::require;

struct Place {
    std::size_t offset;
    std::u16string source;
};

Place placeOf(const OrvMarkupTag& tag, const std::u16string& text) {
    const OrvMarkupNotes& notes = *tag.parserAdditional();
    const Place place{
        std::get<std::size_t>(notes.find(OrvHTMLParserAdditionalKeyOffset)->second),
        std::get<std::u16string>(notes.find(OrvHTMLParserAdditionalKeyString)->second)};
    require(place.offset < text.size() && place.source.size() >= 2);
    require(text.compare(place.offset, place.source.size(), place.source) == 0);
    require(place.source.front() == u'<' && place.source.back() == u'>');
    require(place.source.find(u'<', 1) == std::u16string::npos);
    return place;
}

// Every tag in turn must be what the search by its own name finds there.
void walk(const OrvHTMLParser& parser) {
    const std::u16string& text = parser.htmlString();
    std::size_t from = 0;
    while (const auto tag = parser.findNextMarkupTagFromOffset(from)) {
        const Place place = placeOf(*tag, text);
        require(place.offset >= from);
        require(parser.markupTagStringFromOffset(place.offset) == place.source);
        if (tag->name())
            require(placeOf(*parser.findMarkupTagName(*tag->name(), from), text).offset ==
                    place.offset);
        from = place.offset + 1;
    }
}

void edit(std::u16string text, const OrvMarkupTag& found) {
    const std::u16string before = text;
    const Place place = placeOf(found, before);
    const auto tag = OrvHTMLParser::newXMLProcInstTagWithEncodingInfo(
        {OrvEncoding::utf8, OrvByteOrder::none, false, OrvCharacterMapping::mac});
    OrvHTMLParser parser;
    parser.setMutableHTMLString(text);
    require(parser.replaceMarkupTag(found, *tag));
    require(text == before.substr(0, place.offset) + *tag->tagString() +
                        before.substr(place.offset + place.source.size()));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Whole units, so that the fuzzer can write any; bytes as units, so that it soon writes tags.
    for (const std::u16string& text :
         {fuzz::Input(data, size).restAsUnits(), std::u16string(data, data + size)}) {
        OrvHTMLParser parser;
        parser.setHTMLString(text);
        walk(parser);
        for (const auto& found : {parser.findEncodingSpecifier(), parser.findXMLProcInstTag(),
                                  parser.findNextMarkupTagFromOffset(0)}) {
            if (found)
                edit(text, *found);
        }
    }
    return 0;
}
