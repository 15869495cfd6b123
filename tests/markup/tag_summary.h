// Tags on one line, for tables.
#pragma once

#include "markup/markup_tag.h"
#include "platform/text/utf8.h"

namespace zelmora {

/// `name a=[1] b=[2] / ~suffix`: the order with its values, then what is set of close format and
/// suffix; "-" for no name, "none" for no tag. Names that only the map knows are counted: "+N".
inline std::string summary(const std::optional<OrvMarkupTag>& tag) {
    using platform::utf8FromUTF16;
    if (!tag)
        return "none";
    std::string line = utf8FromUTF16(tag->name().value_or(u"-"));
    OrvMarkupAttributes unwritten = *tag->attributes();
    for (const std::u16string& name : *tag->attributesOrder()) {
        line += " " + utf8FromUTF16(name + u"=[" + (*tag->attributes())[name] + u"]");
        unwritten.erase(name);
    }
    if (!unwritten.empty())
        line += " +" + std::to_string(unwritten.size());
    return line + (tag->isCloseFormat() ? " /" : "") +
           (tag->suffix() ? " ~" + utf8FromUTF16(*tag->suffix()) : "");
}

} // namespace zelmora
