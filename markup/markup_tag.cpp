#include "markup/markup_tag.h"

namespace zelmora {

namespace {

void appendAttributes(std::u16string& text, const OrvMarkupAttributes& attributes,
                      const OrvMarkupAttributesOrder& order) {
    // A name written twice stands twice in the order and once in the map: what the tag said cannot
    // be told any more, so that nothing is written.
    if (attributes.size() != order.size())
        return;
    for (const std::u16string& name : order) {
        const auto found = attributes.find(name);
        if (found != attributes.end())
            text.append(u" ").append(name).append(u"=\"").append(found->second).append(u"\"");
    }
}

} // namespace

std::optional<std::u16string> OrvMarkupTag::tagString() const {
    if (!_name || _name->empty())
        return std::nullopt;
    std::u16string text = u"<" + *_name;
    if (_attributes && _attributesOrder)
        appendAttributes(text, *_attributes, *_attributesOrder);
    if (_isCloseFormat)
        text += u" /";
    if (_suffix)
        text += *_suffix;
    text += u'>';
    return text;
}

} // namespace zelmora
