#include "platform/text/block_scan.h"
#include "textutil/text_utility_private.h"

#include <algorithm>

namespace zelmora {
namespace {

/// Overwrites each CRLF by `to` and moves what follows it forward.
void shrinkPairs(std::u16string& text, char16_t to) {
    const char16_t* in = text.data();
    const char16_t* const end = in + text.size();
    char16_t* out = text.data();
    for (;;) {
        const char16_t* const next = platform::findUnit(in, end, u'\r');
        const auto count = static_cast<size_t>(next - in);
        std::char_traits<char16_t>::move(out, in, count);
        out += count;
        if (next == end)
            break;
        const bool isPair = next[1] == u'\n'; // behind the last unit stands the string's zero
        *out++ = isPair ? to : u'\r';
        in = next + (isPair ? 2 : 1);
    }
    text.resize(static_cast<size_t>(out - text.data()));
}

/// Makes each `from` a CRLF, from the end backwards, so that nothing is overwritten unread.
void growToPairs(std::u16string& text, char16_t from) {
    const size_t length = text.size();
    const auto count = std::count(text.begin(), text.end(), from);
    text.resize(length + static_cast<size_t>(count));
    const char16_t* in = text.data() + length;
    char16_t* out = text.data() + text.size();
    while (in != out) { // they meet before the first break
        const char16_t unit = *--in;
        *--out = unit == from ? u'\n' : unit;
        if (unit == from)
            *--out = u'\r';
    }
}

} // namespace

OrvLineBreak OrvTextUtilityPrivate::lineBreakTypeOfString(std::u16string_view text) const {
    const size_t offset = platform::findFirstUnit(text.data(), text.size(), [](char16_t unit) {
        return (unit == u'\n') | (unit == u'\r') | (unit == u'\u2028');
    });
    if (offset == text.size())
        return OrvLineBreak::none;
    if (text[offset] == u'\n')
        return OrvLineBreak::lf;
    if (text[offset] == u'\u2028')
        return OrvLineBreak::ls;
    return text.substr(offset).starts_with(u"\r\n") ? OrvLineBreak::crlf : OrvLineBreak::cr;
}

std::optional<std::u16string> OrvTextUtilityPrivate::lineBreakString(OrvLineBreak kind) const {
    switch (kind) {
    case OrvLineBreak::lf:
        return u"\n";
    case OrvLineBreak::cr:
        return u"\r";
    case OrvLineBreak::crlf:
        return u"\r\n";
    case OrvLineBreak::ls:
        return u"\u2028";
    default:
        return std::nullopt;
    }
}

void OrvTextUtilityPrivate::convertLineBreakOfString(std::u16string& text, OrvLineBreak from,
                                                     OrvLineBreak to) const {
    const auto fromString = lineBreakString(from);
    const auto toString = lineBreakString(to);
    if (from == to || !fromString || !toString)
        return;
    if (from == OrvLineBreak::crlf)
        shrinkPairs(text, toString->front());
    else if (to == OrvLineBreak::crlf)
        growToPairs(text, fromString->front());
    else
        std::replace(text.begin(), text.end(), fromString->front(), toString->front());
}

} // namespace zelmora
