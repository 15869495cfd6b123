#include "foundation/orv_css.h"
#include "foundation/orv_scanner_impl.h"
#include "foundation/orv_string.h"

#include <algorithm>
#include <limits>

namespace zelmora {

void OrvCScanner::SetString(OrvStringImpl* string) noexcept {
    _string = OrvPtr<OrvStringImpl>::retaining(string);
    _position = 0;
}

std::wstring_view OrvCScanner::text() const noexcept {
    return textOf(_string.get()).substr(0, std::numeric_limits<int32_t>::max());
}

int32_t OrvCScanner::Seek(int32_t origin, int32_t offset) noexcept {
    const auto length = static_cast<int64_t>(text().size());
    int64_t position = _position;
    if (origin == fromStart)
        position = offset;
    else if (origin == fromEnd)
        position = length - offset;
    else if (origin == fromPosition)
        position += offset;
    _position = static_cast<int32_t>(std::clamp<int64_t>(position, 0, length));
    return _position;
}

bool OrvCScanner::take(size_t end, OrvIBase** token) noexcept {
    const auto start = static_cast<size_t>(_position);
    *token = nullptr;
    if (end <= start)
        return false;
    _position = static_cast<int32_t>(end);
    *token =
        OrvTemporaryObjectsPoolAddObject(makeString(text().substr(start, end - start)).release());
    return true;
}

bool OrvCScanner::ScanThroughCharacters(const wchar_t* set, OrvIBase** token) noexcept {
    const std::wstring_view characters = text();
    const size_t found = characters.find_first_of(set, static_cast<size_t>(_position));
    return take(found == characters.npos ? characters.size() : found + 1, token);
}

bool OrvCScanner::ScanCharacters(const wchar_t* set, OrvIBase** token) noexcept {
    const std::wstring_view characters = text();
    const size_t found = characters.find_first_not_of(set, static_cast<size_t>(_position));
    return take(std::min(found, characters.size()), token);
}

bool OrvCScanner::ScanHexInt(uint32_t* value) noexcept {
    OrvIBase* digits = nullptr;
    const bool found = ScanCharacters(L"0123456789ABCDEFabcdef", &digits);
    *value = OrvStringGetHexValue(digits);
    return found;
}

OrvIBase* OrvScannerCreate(OrvIBase* string) noexcept {
    return makeObject<OrvCScanner>(objectCast<OrvStringImpl>(string)).release();
}

bool OrvScannerScanThroughCharacters(OrvIBase* scanner, const wchar_t* set,
                                     OrvIBase** token) noexcept {
    *token = nullptr;
    auto* self = objectCast<OrvCScanner>(scanner);
    return self && self->ScanThroughCharacters(set, token);
}

} // namespace zelmora
