// How tags are found and read, over the UTF-16 units of a text and over undecoded bytes alike.
//
// Only start tags and attributes are known: no comments, no scripts, no character references. A tag
// runs from a "<" to the next ">", quoted or not; a "<" in between means that the first one begins
// no tag. No unit is therefore looked at for more than one "<", and a search is linear in its text
// whatever the text holds.
//
// The two parsers differ only in what a token is made of, which their Token classes decide:
//   Unit               the type of a unit
//   clear()            a new token begins
//   empty()            whether nothing has been added yet
//   add(at)            the unit at `at` is the token's
//   addQuotedSpace(at) white space between quotes: the token's too, or only once it has begun
//   end(at)            the token ends before `at`
//   view()             what it holds, valid until the next clear()
//   text()             the same as UTF-16
#pragma once

#include "markup/markup_tag.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace zelmora {

/// Where a tag stands, in units: from its "<" to its ">" inclusive.
struct TagRange {
    std::size_t offset;
    std::size_t length;

    [[nodiscard]] std::size_t end() const { return offset + length; }
};

/// What a token becomes; after a name, attribute names and values take turns.
enum class TagPart { name, attributeName, attributeValue };

template<class Unit>
[[nodiscard]] bool isASCIISpace(Unit unit) {
    return unit == Unit(' ') || (unit >= Unit('\t') && unit <= Unit('\r'));
}

template<class Unit>
[[nodiscard]] Unit asciiLowercase(Unit unit) {
    return unit >= Unit('A') && unit <= Unit('Z') ? Unit(unit + ('a' - 'A')) : unit;
}

/// Whether both are equal, ASCII letters without regard to case, every other unit as it is.
template<class Unit>
[[nodiscard]] bool equalsIgnoringASCIICase(std::basic_string_view<Unit> left,
                                           std::basic_string_view<Unit> right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](Unit a, Unit b) { return asciiLowercase(a) == asciiLowercase(b); });
}

/// Length of the tag that begins with the first unit of `text`, whatever that unit is; 0 when a
/// "<" or the end comes before a ">".
template<class Unit>
[[nodiscard]] std::size_t tagLengthAtFront(std::basic_string_view<Unit> text) {
    for (std::size_t at = 1; at < text.size(); ++at) {
        if (text[at] == Unit('>'))
            return at + 1;
        if (text[at] == Unit('<'))
            return 0;
    }
    return 0;
}

/// The first tag whose "<" lies at or after `offset`, which may be beyond the text.
template<class Unit>
[[nodiscard]] std::optional<TagRange> findTag(std::basic_string_view<Unit> text,
                                              std::size_t offset) {
    for (;; ++offset) {
        offset = text.find(Unit('<'), offset);
        if (offset == text.npos)
            return std::nullopt;
        if (const std::size_t length = tagLengthAtFront(text.substr(offset)))
            return TagRange{offset, length};
    }
}

/// Reads the tokens of one tag in turn. Borrows the tag's text.
template<class Token>
class TagScanner {
  public:
    using Unit = typename Token::Unit;

    /// `source` begins with the tag's "<".
    explicit TagScanner(std::basic_string_view<Unit> source)
        : _at(source.data() + std::min<std::size_t>(source.size(), 1)),
          _end(source.data() + source.size()) {}

    /// Reads the next token that holds something, by the rules for `part`; false without one.
    bool read(TagPart part) {
        while (_at != _end) {
            _token.clear();
            _token.end(readOne(part));
            if (!_token.empty())
                return true;
        }
        return false;
    }

    [[nodiscard]] const Token& token() const { return _token; }

    /// Whether a "/" outside quotes came after the name.
    [[nodiscard]] bool isCloseFormat() const { return _isCloseFormat; }

  private:
    // Answers where the token ends. Every unit is consumed, the one that ends it too.
    const Unit* readOne(TagPart part) {
        bool quoted = false;
        while (_at != _end) {
            const Unit* at = _at++;
            if (*at == Unit('"')) {
                if (quoted)
                    return at;
                quoted = true;
            } else if (isASCIISpace(*at)) {
                if (quoted)
                    _token.addQuotedSpace(at);
                else if (!_token.empty())
                    return at;
            } else if (*at == Unit('/') && part != TagPart::name && !quoted) {
                _isCloseFormat = true;
                return at;
            } else if (*at == Unit('>') || (*at == Unit('=') && part == TagPart::attributeName)) {
                return at;
            } else {
                _token.add(at);
            }
        }
        return _end;
    }

    const Unit* _at;
    const Unit* _end;
    Token _token;
    bool _isCloseFormat = false;
};

/// findTag for the tags named `name`, ASCII letters without regard to case. Reads no tag further
/// than its name.
template<class Token>
[[nodiscard]] std::optional<TagRange>
findTagNamed(std::basic_string_view<typename Token::Unit> text,
             std::basic_string_view<typename Token::Unit> name, std::size_t offset) {
    while (const std::optional<TagRange> range = findTag(text, offset)) {
        TagScanner<Token> scanner(text.substr(range->offset, range->length));
        if (scanner.read(TagPart::name) && equalsIgnoringASCIICase(scanner.token().view(), name))
            return range;
        offset = range->end();
    }
    return std::nullopt;
}

/// Reads all of a tag into `tag`, which is new: its name, attributes, order and close format. Map
/// and order are set even when they are empty. Answers the part that a further token would have
/// been: attributeValue when the last attribute name was left without a value.
template<class Token>
TagPart parseTag(std::basic_string_view<typename Token::Unit> source, OrvMarkupTag& tag) {
    auto attributes = std::make_shared<OrvMarkupAttributes>();
    auto order = std::make_shared<OrvMarkupAttributesOrder>();
    TagScanner<Token> scanner(source);
    TagPart part = TagPart::name;
    while (scanner.read(part)) {
        std::u16string text = scanner.token().text();
        switch (part) {
        case TagPart::name:
            tag.setName(std::move(text));
            part = TagPart::attributeName;
            break;
        case TagPart::attributeName:
            (*attributes)[text].clear();
            order->push_back(std::move(text));
            part = TagPart::attributeValue;
            break;
        case TagPart::attributeValue:
            (*attributes)[order->back()] = std::move(text);
            part = TagPart::attributeName;
            break;
        }
    }
    tag.setCloseFormat(scanner.isCloseFormat());
    tag.setAttributes(std::move(attributes));
    tag.setAttributesOrder(std::move(order));
    return part;
}

} // namespace zelmora
