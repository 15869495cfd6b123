#include "platform/defaults/property_list.h"

namespace zelmora::platform {

PropertyListValue::PropertyListValue(const PropertyListValue&) = default;
PropertyListValue::PropertyListValue(PropertyListValue&&) noexcept = default;
PropertyListValue& PropertyListValue::operator=(const PropertyListValue&) = default;
PropertyListValue& PropertyListValue::operator=(PropertyListValue&&) noexcept = default;
PropertyListValue::~PropertyListValue() = default;

bool PropertyListValue::operator==(const PropertyListValue& other) const {
    return _content == other._content;
}

} // namespace zelmora::platform
