// Creation, comparison and conversion of strings; orv_string_change.cpp changes them in place.
#include "foundation/orv_string.h"
#include "foundation/orv_pool_impl.h"
#include "foundation/orv_string_impl.h"
#include "foundation/wide_text.h"

#include <algorithm>
#include <cstdarg>
#include <cwchar>

namespace zelmora {

namespace {

constexpr size_t smallestFormatCapacity = 1024;

/// A new string of the characters that `make` answers, or null and a diagnostic line.
template<typename Make>
OrvPtr<OrvStringImpl> makeStringOf(Make&& make) noexcept {
    OrvPtr<OrvStringImpl> string;
    if (!allocating([&] { string = OrvPtr<OrvStringImpl>(new OrvStringImpl(make())); }))
        OrvLog(L"Couldn't allocate the instance of the OrvString.");
    return string;
}

} // namespace

OrvPlatformObject OrvStringImpl::CopyCocoaObject() const noexcept {
    return platformObject([this] { return utf8FromWide(_characters); });
}

OrvPtr<OrvStringImpl> makeString(std::wstring_view characters) noexcept {
    return makeStringOf([characters] { return characters; });
}

std::wstring_view textOf(const OrvIBase* string) noexcept {
    const auto* self = objectCast<OrvStringImpl>(string);
    return self ? std::wstring_view(self->characters()) : std::wstring_view(L"");
}

OrvIBase* OrvStringCreateWithWideCString(const wchar_t* characters) noexcept {
    return makeString(characters ? characters : L"").release();
}

OrvIBase* OrvStringCreateWithCharacters(const wchar_t* characters, uint64_t count) noexcept {
    return makeStringOf(
               [=] { return characters ? std::wstring(characters, count) : std::wstring(); })
        .release();
}

OrvIBase* OrvStringCreateEmpty() noexcept {
    return makeString({}).release();
}

OrvIBase* OrvStringCreateWithFormat(const OrvIBase* format, ...) noexcept {
    const std::wstring_view formatText = textOf(format);
    std::wstring buffer;
    const size_t capacity = std::max(2 * formatText.size(), smallestFormatCapacity);
    if (!allocating([&] { buffer.resize(capacity); }))
        return nullptr;
    std::va_list arguments;
    va_start(arguments, format);
    formatWide(buffer, formatText.data(), arguments);
    va_end(arguments);
    return makeString(upToNUL(buffer)).release();
}

OrvIBase* OrvStringCreateWithNSString(std::u16string_view text) noexcept {
    return makeStringOf([text] { return wideFromUTF16(text); }).release();
}

OrvIBase* OrvTemporaryStringWithNSString(std::u16string_view text) noexcept {
    return OrvTemporaryObjectsPoolAddObject(OrvStringCreateWithNSString(text));
}

std::optional<std::u16string> OrvStringCopyNSString(const OrvIBase* string) noexcept {
    std::optional<std::u16string> text;
    (void)allocating([&] { text = utf16FromWide(textOf(string)); });
    return text;
}

OrvIBase* OrvTemporaryString(const wchar_t* literal) noexcept {
    if (!literal)
        literal = L"";
    auto* pool = OrvCTemporaryObjectsPool::currentOrComplain();
    return pool ? pool->constantString(literal) : OrvStringCreateWithWideCString(literal);
}

const wchar_t* OrvStringGetCharacters(const OrvIBase* string) noexcept {
    return textOf(string).data();
}

uint64_t OrvStringGetLength(const OrvIBase* string) noexcept {
    return textOf(string).size();
}

OrvIBase* OrvStringCreateSubstring(const OrvIBase* string, OrvRange range) noexcept {
    const std::wstring_view text = textOf(string);
    const bool isEmpty = range.location < 0 || range.length <= 0 ||
                         static_cast<size_t>(range.location) >= text.size();
    if (isEmpty)
        return OrvStringCreateEmpty();
    auto substring = makeObject<OrvStringImpl>(
        text.substr(static_cast<size_t>(range.location), static_cast<size_t>(range.length)));
    if (!substring)
        OrvLog(L"Couldn't allocate the buffer for the string.");
    return substring.release();
}

int32_t OrvStringCompare(const OrvIBase* left, const OrvIBase* right) noexcept {
    return std::wcscmp(OrvStringGetCharacters(left), OrvStringGetCharacters(right));
}

int32_t OrvStringCompareCaseInsensitive(const OrvIBase* left, const OrvIBase* right) noexcept {
    return compareCaseInsensitive(textOf(left), textOf(right));
}

OrvIBase* OrvStringCreateUppercase(const OrvIBase* string) noexcept {
    auto copy = makeString(upToNUL(textOf(string)));
    if (copy)
        std::ranges::transform(copy->characters(), copy->characters().begin(), uppercase);
    return copy.release();
}

uint32_t OrvStringGetHexValue(const OrvIBase* string) noexcept {
    uint32_t value = 0;
    for (const wchar_t character : textOf(string)) {
        const wchar_t upper = uppercase(character);
        if (upper >= L'0' && upper <= L'9')
            value = value * 16 + static_cast<uint32_t>(upper - L'0');
        else if (upper >= L'A' && upper <= L'F')
            value = value * 16 + static_cast<uint32_t>(upper - L'A' + 10);
        else
            break;
    }
    return value;
}

} // namespace zelmora
