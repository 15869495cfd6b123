#include "markup/html_parser.h"

#include "markup/tag_scanner.h"

#include <initializer_list>
#include <memory>
#include <utility>
#include <variant>

namespace zelmora {

namespace {

constexpr std::u16string_view kMetaName = u"meta";
constexpr std::u16string_view kHTTPEquiv = u"http-equiv";
constexpr std::u16string_view kContentType = u"Content-Type";
constexpr std::u16string_view kXMLName = u"?xml";

// A stretch of the text: from its first unit to its end, with any quote that stands inside it.
// White space after an opening quote does not begin it.
class StretchToken {
  public:
    using Unit = char16_t;

    void clear() { _begin = nullptr; }
    bool empty() const { return _begin == nullptr; }
    void add(const char16_t* at) {
        if (_begin == nullptr)
            _begin = at;
    }
    void addQuotedSpace(const char16_t*) {}
    void end(const char16_t* at) { _end = at; }
    std::u16string_view view() const { return {_begin, static_cast<std::size_t>(_end - _begin)}; }
    std::u16string text() const { return std::u16string(view()); }

  private:
    const char16_t* _begin = nullptr; // null: not begun
    const char16_t* _end = nullptr;
};

// Names that differ only in case are different keys: any of them may be the declaration's.
bool namesContentType(const OrvMarkupAttributes& attributes) {
    for (const auto& [name, value] : attributes) {
        if (equalsIgnoringASCIICase<char16_t>(name, kHTTPEquiv) &&
            equalsIgnoringASCIICase<char16_t>(value, kContentType))
            return true;
    }
    return false;
}

std::optional<std::u16string_view> charsetName(OrvEncodingInfo info) {
    const auto byMark = [info](std::u16string_view marked, std::u16string_view littleEndian,
                               std::u16string_view bigEndian) {
        std::optional<std::u16string_view> name;
        if (info.hasBOM)
            name = marked;
        else if (info.byteOrder == OrvByteOrder::littleEndian)
            name = littleEndian;
        else if (info.byteOrder == OrvByteOrder::bigEndian)
            name = bigEndian;
        return name;
    };
    switch (info.encoding) {
    case OrvEncoding::shiftjis:
        return u"Shift_JIS";
    case OrvEncoding::jis:
        return u"iso-2022-jp";
    case OrvEncoding::eucjp:
        return u"euc-jp";
    case OrvEncoding::utf8:
        return u"UTF-8";
    case OrvEncoding::utf16:
        return byMark(u"UTF-16", u"UTF-16LE", u"UTF-16BE");
    case OrvEncoding::utf32:
        return byMark(u"UTF-32", u"UTF-32LE", u"UTF-32BE");
    case OrvEncoding::none:
        break;
    }
    return std::nullopt;
}

OrvMarkupTag newTag(std::u16string_view name,
                    std::initializer_list<std::pair<std::u16string, std::u16string>> attributes) {
    auto map = std::make_shared<OrvMarkupAttributes>();
    auto order = std::make_shared<OrvMarkupAttributesOrder>();
    for (const auto& [attributeName, value] : attributes) {
        map->emplace(attributeName, value);
        order->push_back(attributeName);
    }
    OrvMarkupTag tag;
    tag.setName(std::u16string(name));
    tag.setAttributes(std::move(map));
    tag.setAttributesOrder(std::move(order));
    return tag;
}

} // namespace

void OrvHTMLParser::setHTMLString(std::u16string text) {
    _ownString = std::move(text);
    _htmlString = &_ownString;
}

std::optional<std::u16string> OrvHTMLParser::markupTagStringFromOffset(std::size_t offset) const {
    if (offset >= _htmlString->size() || (*_htmlString)[offset] != u'<')
        return std::nullopt;
    const auto rest = std::u16string_view(*_htmlString).substr(offset);
    const std::size_t length = tagLengthAtFront(rest);
    if (length == 0)
        return std::nullopt;
    return std::u16string(rest.substr(0, length));
}

OrvMarkupTag OrvHTMLParser::parseTagString(std::u16string_view text) {
    OrvMarkupTag tag;
    if (parseTag<StretchToken>(text, tag) == TagPart::attributeValue) {
        OrvMarkupAttributesOrder& order = *tag.attributesOrder();
        const std::u16string last = order.back();
        std::erase(order, last);
        tag.attributes()->erase(last);
        tag.setSuffix(last);
    }
    return tag;
}

OrvMarkupTag OrvHTMLParser::tagAt(const TagRange& range) const {
    std::u16string source = _htmlString->substr(range.offset, range.length);
    OrvMarkupTag tag = parseTagString(source);
    auto notes = std::make_shared<OrvMarkupNotes>();
    notes->emplace(OrvHTMLParserAdditionalKeyOffset, range.offset);
    notes->emplace(OrvHTMLParserAdditionalKeyString, std::move(source));
    tag.setParserAdditional(std::move(notes));
    return tag;
}

std::optional<OrvMarkupTag> OrvHTMLParser::findNextMarkupTagFromOffset(std::size_t offset) const {
    const auto range = findTag<char16_t>(*_htmlString, offset);
    if (!range)
        return std::nullopt;
    return tagAt(*range);
}

std::optional<OrvMarkupTag> OrvHTMLParser::findMarkupTagName(std::u16string_view name,
                                                             std::size_t startOffset) const {
    const auto range = findTagNamed<StretchToken>(*_htmlString, name, startOffset);
    if (!range)
        return std::nullopt;
    return tagAt(*range);
}

std::optional<OrvMarkupTag> OrvHTMLParser::findEncodingSpecifier() const {
    std::size_t offset = 0;
    while (const auto range = findTagNamed<StretchToken>(*_htmlString, kMetaName, offset)) {
        OrvMarkupTag tag = tagAt(*range);
        if (namesContentType(*tag.attributes()))
            return tag;
        offset = range->end();
    }
    return std::nullopt;
}

std::optional<OrvMarkupTag> OrvHTMLParser::findXMLProcInstTag() const {
    return findMarkupTagName(kXMLName, 0);
}

bool OrvHTMLParser::replaceFromOffset(std::size_t offset, std::size_t length,
                                      std::u16string_view withString) {
    if (offset > _htmlString->size() || length > _htmlString->size() - offset)
        return false;
    _htmlString->replace(offset, length, withString);
    return true;
}

bool OrvHTMLParser::replaceFromOffset(std::size_t offset, std::size_t length,
                                      const OrvMarkupTag& withMarkupTag) {
    const auto text = withMarkupTag.tagString();
    return text && replaceFromOffset(offset, length, *text);
}

bool OrvHTMLParser::replaceMarkupTag(const OrvMarkupTag& foundTag,
                                     const OrvMarkupTag& withMarkupTag) {
    if (!foundTag.parserAdditional())
        return false;
    const OrvMarkupNotes& notes = *foundTag.parserAdditional();
    const auto offset = notes.find(OrvHTMLParserAdditionalKeyOffset);
    const auto source = notes.find(OrvHTMLParserAdditionalKeyString);
    if (offset == notes.end() || source == notes.end())
        return false;
    const auto* position = std::get_if<std::size_t>(&offset->second);
    const auto* string = std::get_if<std::u16string>(&source->second);
    return position && string && replaceFromOffset(*position, string->size(), withMarkupTag);
}

void OrvHTMLParser::insertString(std::u16string_view text, std::size_t atOffset) {
    replaceFromOffset(atOffset, 0, text);
}

void OrvHTMLParser::insertMarkupTag(const OrvMarkupTag& tag, std::size_t atOffset) {
    replaceFromOffset(atOffset, 0, tag);
}

std::optional<std::u16string>
OrvHTMLParser::encodingAttributeValueForEncodingInfo(OrvEncodingInfo info) {
    const auto name = charsetName(info);
    if (!name)
        return std::nullopt;
    return std::u16string(*name);
}

std::optional<OrvMarkupTag>
OrvHTMLParser::newEncodingSpecifierTagWithEncodingInfo(OrvEncodingInfo info) {
    const auto charset = encodingAttributeValueForEncodingInfo(info);
    if (!charset)
        return std::nullopt;
    return newTag(kMetaName, {{std::u16string(kHTTPEquiv), std::u16string(kContentType)},
                              {u"content", u"text/html; charset=" + *charset}});
}

std::optional<OrvMarkupTag> OrvHTMLParser::newXMLProcInstTagWithEncodingInfo(OrvEncodingInfo info) {
    const auto charset = encodingAttributeValueForEncodingInfo(info);
    if (!charset)
        return std::nullopt;
    OrvMarkupTag tag = newTag(kXMLName, {{u"version", u"1.0"}, {u"encoding", *charset}});
    tag.setSuffix(u"?");
    return tag;
}

} // namespace zelmora
