// Changes of strings in place, and line breaks.
#include "foundation/orv_string.h"
#include "foundation/orv_string_impl.h"
#include "foundation/wide_text.h"

#include <algorithm>
#include <array>

namespace zelmora {

namespace {

/// Empty for what is no kind of line break.
std::wstring_view lineBreakText(int32_t kind) {
    static constexpr std::array<std::wstring_view, 5> texts = {L"", L"\n", L"\r", L"\r\n",
                                                               L"\u2028"};
    return kind > 0 && kind < 5 ? texts[static_cast<size_t>(kind)] : texts[0];
}

/// One pass into a new buffer: replacing in place would move the rest of the text each time.
std::wstring replacingAll(std::wstring_view text, std::wstring_view searched,
                          std::wstring_view replacement) {
    std::wstring result;
    result.reserve(text.size());
    size_t rest = 0;
    for (size_t found; (found = text.find(searched, rest)) != text.npos;
         rest = found + searched.size()) {
        result.append(text.substr(rest, found - rest));
        result.append(replacement);
    }
    result.append(text.substr(rest));
    return result;
}

} // namespace

void OrvStringAppend(OrvIBase* string, const OrvIBase* appended) noexcept {
    if (auto* self = objectCast<OrvStringImpl>(string))
        (void)allocating([&] { self->characters().append(textOf(appended)); });
}

void OrvStringTrimWhitespace(OrvIBase* string) noexcept {
    auto* self = objectCast<OrvStringImpl>(string);
    if (!self)
        return;
    std::wstring& characters = self->characters();
    const std::wstring_view kept = trimmed(characters);
    const auto start = static_cast<size_t>(kept.data() - characters.data());
    characters.resize(start + kept.size());
    characters.erase(0, start);
}

void OrvStringReplaceCharacters(OrvIBase* string, const OrvIBase* replacement, uint64_t location,
                                uint64_t count) noexcept {
    auto* self = objectCast<OrvStringImpl>(string);
    if (!self)
        return;
    std::wstring& characters = self->characters();
    const uint64_t start = std::min<uint64_t>(location, characters.size());
    (void)allocating([&] { characters.replace(start, count, textOf(replacement)); });
}

void OrvStringConvertLineBreaks(OrvIBase* string, int32_t from, int32_t to) noexcept {
    auto* self = objectCast<OrvStringImpl>(string);
    const std::wstring_view searched = lineBreakText(from);
    const std::wstring_view replacement = lineBreakText(to);
    if (!self || from == to || searched.empty() || replacement.empty())
        return;
    (void)allocating(
        [&] { self->characters() = replacingAll(self->characters(), searched, replacement); });
}

OrvIBase* OrvLineBreakString(int32_t kind) noexcept {
    const std::wstring_view text = lineBreakText(kind);
    return text.empty() ? nullptr : OrvTemporaryObjectsPoolAddObject(makeString(text).release());
}

} // namespace zelmora
