#include "markup/markup_parser.h"

#include "markup/tag_scanner.h"
#include "platform/text/text_encoding.h"

#include <memory>
#include <string>
#include <utility>

namespace zelmora {

namespace {

using platform::TextEncoding;

// Bytes picked one by one: all but quotes and zero bytes.
class CollectedToken {
  public:
    using Unit = char;

    void clear() { _bytes.clear(); }
    bool empty() const { return _bytes.empty(); }
    void add(const char* at) {
        if (*at != '\0')
            _bytes += *at;
    }
    void addQuotedSpace(const char* at) { _bytes += *at; }
    void end(const char*) {}
    std::string_view view() const { return _bytes; }
    std::u16string text() const {
        // Macintosh Roman has a character for every byte.
        return *platform::decodeText(platform::bytesOf(_bytes), TextEncoding::macOSRoman);
    }

  private:
    std::string _bytes;
};

} // namespace

std::optional<OrvMarkupTag> OrvMarkupParser::findMarkupTagName(std::u16string_view name,
                                                               std::size_t startOffset) const {
    const auto wanted = platform::encodeText(name, TextEncoding::macOSRoman);
    if (!wanted)
        return std::nullopt;
    const auto range = findTagNamed<CollectedToken>(platform::charsOf(_rawData),
                                                    platform::charsOf(*wanted), startOffset);
    if (!range)
        return std::nullopt;
    OrvMarkupTag tag = parseMarkupTagData(_rawData.subspan(range->offset, range->length));
    auto notes = std::make_shared<OrvMarkupNotes>();
    notes->emplace(OrvMarkupParserAdditionalKeyByteOffset, range->offset);
    notes->emplace(OrvMarkupParserAdditionalKeyByteLength, range->length);
    tag.setParserAdditional(std::move(notes));
    return tag;
}

std::optional<platform::Bytes> OrvMarkupParser::markupTagDataFromBytes(platform::ByteView bytes) {
    const std::size_t length = tagLengthAtFront(platform::charsOf(bytes));
    if (length == 0)
        return std::nullopt;
    const auto tag = bytes.first(length);
    return platform::Bytes(tag.begin(), tag.end());
}

OrvMarkupTag OrvMarkupParser::parseMarkupTagData(platform::ByteView data) {
    OrvMarkupTag tag;
    parseTag<CollectedToken>(platform::charsOf(data), tag);
    return tag;
}

} // namespace zelmora
