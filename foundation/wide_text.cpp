#include "foundation/wide_text.h"

#include "platform/text/unicode_codecs.h"

#include <algorithm>
#include <cstdint>
#include <cwchar>

namespace zelmora {

namespace {

constexpr uint32_t lastCodePoint = 0x10FFFF;
constexpr uint32_t replacement = 0xFFFD;

} // namespace

std::wstring wideFromUTF16(std::u16string_view text) {
    // As long as if there were no pairs, and cut afterwards: cheaper than counting them.
    std::wstring wide(text.size(), L'\0');
    wchar_t* out = wide.data();
    for (size_t i = 0; i < text.size(); ++i) {
        const bool isPair = platform::isHighSurrogate(text[i]) && i + 1 < text.size() &&
                            platform::isLowSurrogate(text[i + 1]);
        *out++ = static_cast<wchar_t>(isPair ? platform::codePointOfPair(text[i], text[i + 1])
                                             : text[i]);
        i += isPair ? 1 : 0;
    }
    wide.resize(static_cast<size_t>(out - wide.data()));
    return wide;
}

std::u16string utf16FromWide(std::wstring_view text) {
    const auto isPair = [](wchar_t character) {
        return character > 0xFFFF && static_cast<uint32_t>(character) <= lastCodePoint;
    };
    // Counted beforehand: pairs are rare, and the buffer is then right at once.
    const auto pairs = std::count_if(text.begin(), text.end(), isPair);
    std::u16string units(text.size() + static_cast<size_t>(pairs), u'\0');
    char16_t* out = units.data();
    for (const wchar_t wide : text) {
        const auto character = static_cast<char32_t>(wide);
        platform::writeUnits(character > lastCodePoint ? replacement : character, out);
    }
    return units;
}

char* putUTF8(wchar_t wide, char* out) noexcept {
    auto character = static_cast<uint32_t>(wide);
    if (character > lastCodePoint || (character & 0xFFFF'F800) == 0xD800)
        character = replacement;
    const auto put = [&out](uint32_t byte) { *out++ = static_cast<char>(byte); };
    if (character < 0x80) {
        put(character);
        return out;
    }
    if (character < 0x800) {
        put(0xC0 | character >> 6);
    } else {
        if (character < 0x10000) {
            put(0xE0 | character >> 12);
        } else {
            put(0xF0 | character >> 18);
            put(0x80 | (character >> 12 & 0x3F));
        }
        put(0x80 | (character >> 6 & 0x3F));
    }
    put(0x80 | (character & 0x3F));
    return out;
}

std::string utf8FromWide(std::wstring_view text) {
    std::string utf8;
    utf8.reserve(text.size());
    for (const wchar_t character : text) {
        char bytes[longestUTF8];
        utf8.append(bytes, putUTF8(character, bytes));
    }
    return utf8;
}

void formatWide(std::span<wchar_t> buffer, const wchar_t* format, va_list arguments) noexcept {
    // Where the result does not fit, or an argument cannot be converted, vswprintf leaves what it
    // wrote so far without a NUL, short of the last character.
    std::fill(buffer.begin(), buffer.end(), L'\0');
    std::vswprintf(buffer.data(), buffer.size(), format, arguments);
}

std::wstring_view trimmed(std::wstring_view text) noexcept {
    const auto first = std::find_if_not(text.begin(), text.end(), isSpace);
    const auto last = std::find_if_not(text.rbegin(), std::reverse_iterator(first), isSpace).base();
    return {first, last};
}

std::wstring_view upToNUL(std::wstring_view text) noexcept {
    return text.substr(0, text.find(L'\0'));
}

int compareCaseInsensitive(std::wstring_view left, std::wstring_view right) noexcept {
    left = upToNUL(left);
    right = upToNUL(right);
    const size_t common = std::min(left.size(), right.size());
    for (size_t i = 0; i < common; ++i) {
        const wchar_t a = uppercase(left[i]);
        const wchar_t b = uppercase(right[i]);
        if (a != b)
            return a < b ? -1 : 1;
    }
    return (left.size() > right.size()) - (left.size() < right.size());
}

} // namespace zelmora
