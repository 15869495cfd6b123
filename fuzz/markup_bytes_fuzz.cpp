// Any bytes: a found tag's offset and length lie in them and name the tag that was parsed.
#include "fuzz_input.h"
#include "markup/markup_parser.h"

#include <cstddef>
#include <cstdint>
#include <variant>

namespace {

using namespace zelmora;
using fuzz::require;

std::size_t note(const OrvMarkupTag& tag, std::u16string_view key) {
    return std::get<std::size_t>(tag.parserAdditional()->find(key)->second);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const platform::ByteView bytes = std::as_bytes(std::span(data, size));
    OrvMarkupParser parser;
    parser.setRawData(bytes);
    for (std::size_t at = 0; at < size; ++at) {
        if (data[at] != '<')
            continue;
        const auto source = OrvMarkupParser::markupTagDataFromBytes(bytes.subspan(at));
        if (!source)
            continue;
        const auto name = OrvMarkupParser::parseMarkupTagData(*source).name();
        if (!name)
            continue;
        const auto found = parser.findMarkupTagName(*name, at);
        require(found && found->name() == name);
        require(note(*found, OrvMarkupParserAdditionalKeyByteOffset) == at);
        require(note(*found, OrvMarkupParserAdditionalKeyByteLength) == source->size());
        require(source->size() <= size - at && source->back() == std::byte('>'));
    }
    for (const char16_t* name : {u"meta", u"?xml", u"p"}) {
        if (const auto found = parser.findMarkupTagName(name, 0)) {
            const std::size_t offset = note(*found, OrvMarkupParserAdditionalKeyByteOffset);
            const std::size_t length = note(*found, OrvMarkupParserAdditionalKeyByteLength);
            require(offset < size && length <= size - offset && data[offset] == '<');
        }
    }
    return 0;
}
