#include "foundation/orv_number_impl.h"
#include "foundation/orv_values.h"

#include <cmath>
#include <limits>
#include <new>
#include <type_traits>

namespace zelmora {

namespace {

/// C's conversions, made total: where a floating-point value does not fit C leaves the result
/// undefined, here it is the nearest value that does.
template<typename To, typename From>
To converted(From value) {
    if constexpr (std::is_same_v<To, bool>) {
        return value != From{};
    } else if constexpr (std::is_floating_point_v<From> && std::is_integral_v<To>) {
        using Limits = std::numeric_limits<To>;
        if (std::isnan(value))
            return 0;
        // The limits as doubles: the upper one may round up, to a value that does not fit.
        if (value >= static_cast<double>(Limits::max()))
            return Limits::max();
        if (value <= static_cast<double>(Limits::min()))
            return Limits::min();
        return static_cast<To>(value);
    } else {
        return static_cast<To>(value);
    }
}

/// Property lists know signed 64-bit integers; what is beyond them is better near than negative.
template<typename T>
platform::PropertyListValue platformNumber(T value) {
    if constexpr (std::is_same_v<T, bool>)
        return value;
    else if constexpr (std::is_floating_point_v<T>)
        return static_cast<double>(value);
    else if (std::is_unsigned_v<T> && value > T(std::numeric_limits<int64_t>::max()))
        return static_cast<double>(value);
    else
        return static_cast<int64_t>(value);
}

/// The place of T among the fields, which is the code of its kind.
template<typename T, size_t kind = 0>
constexpr size_t kindOf() {
    if constexpr (std::is_same_v<T, std::tuple_element_t<kind, OrvNumberImpl::Fields>>)
        return kind;
    else
        return kindOf<T, kind + 1>();
}

} // namespace

template<typename T>
OrvIBase* OrvNumberImpl::create(T value) noexcept {
    auto* number = new (std::nothrow) OrvNumberImpl;
    if (number) {
        number->_kind = kindOf<T>();
        std::get<T>(number->_fields) = value;
    }
    return number;
}

template<typename Read>
auto OrvNumberImpl::withValue(Read read) const {
    using Result = decltype(read(0));
    Result result = {};
    const auto readKind = [&]<size_t... kind>(std::index_sequence<kind...>) {
        ((kind == _kind ? void(result = read(std::get<kind>(_fields))) : void()), ...);
    };
    readKind(std::make_index_sequence<std::tuple_size_v<Fields>>());
    return result;
}

template<typename T>
T OrvNumberImpl::valueOf(const OrvIBase* object) noexcept {
    if (!object || object->GetTypeID() != typeID)
        return T{};
    const auto* self = static_cast<const OrvNumberImpl*>(object);
    return self->withValue([](auto value) { return converted<T>(value); });
}

OrvPlatformObject OrvNumberImpl::CopyCocoaObject() const noexcept {
    return withValue([](auto value) -> OrvPlatformObject { return platformNumber(value); });
}

OrvIBase* OrvNumberCreateWithBool(bool value) noexcept {
    return OrvNumberImpl::create(value);
}
OrvIBase* OrvNumberCreateWithUnsignedChar(unsigned char value) noexcept {
    return OrvNumberImpl::create(value);
}
OrvIBase* OrvNumberCreateWithUnsignedShort(unsigned short value) noexcept {
    return OrvNumberImpl::create(value);
}
OrvIBase* OrvNumberCreateWithUnsignedInt(unsigned int value) noexcept {
    return OrvNumberImpl::create(value);
}
OrvIBase* OrvNumberCreateWithUnsignedLongLong(unsigned long long value) noexcept {
    return OrvNumberImpl::create(value);
}
OrvIBase* OrvNumberCreateWithChar(char value) noexcept {
    return OrvNumberImpl::create(value);
}
OrvIBase* OrvNumberCreateWithShort(short value) noexcept {
    return OrvNumberImpl::create(value);
}
OrvIBase* OrvNumberCreateWithInt(int value) noexcept {
    return OrvNumberImpl::create(value);
}
OrvIBase* OrvNumberCreateWithLongLong(long long value) noexcept {
    return OrvNumberImpl::create(value);
}
OrvIBase* OrvNumberCreateWithFloat(float value) noexcept {
    return OrvNumberImpl::create(value);
}
OrvIBase* OrvNumberCreateWithDouble(double value) noexcept {
    return OrvNumberImpl::create(value);
}

bool OrvNumberGetBool(const OrvIBase* number) noexcept {
    return OrvNumberImpl::valueOf<bool>(number);
}
unsigned char OrvNumberGetUnsignedChar(const OrvIBase* number) noexcept {
    return OrvNumberImpl::valueOf<unsigned char>(number);
}
unsigned short OrvNumberGetUnsignedShort(const OrvIBase* number) noexcept {
    return OrvNumberImpl::valueOf<unsigned short>(number);
}
unsigned int OrvNumberGetUnsignedInt(const OrvIBase* number) noexcept {
    return OrvNumberImpl::valueOf<unsigned int>(number);
}
unsigned long long OrvNumberGetUnsignedLongLong(const OrvIBase* number) noexcept {
    return OrvNumberImpl::valueOf<unsigned long long>(number);
}
char OrvNumberGetChar(const OrvIBase* number) noexcept {
    return OrvNumberImpl::valueOf<char>(number);
}
short OrvNumberGetShort(const OrvIBase* number) noexcept {
    return OrvNumberImpl::valueOf<short>(number);
}
int OrvNumberGetInt(const OrvIBase* number) noexcept {
    return OrvNumberImpl::valueOf<int>(number);
}
long long OrvNumberGetLongLong(const OrvIBase* number) noexcept {
    return OrvNumberImpl::valueOf<long long>(number);
}
float OrvNumberGetFloat(const OrvIBase* number) noexcept {
    return OrvNumberImpl::valueOf<float>(number);
}
double OrvNumberGetDouble(const OrvIBase* number) noexcept {
    return OrvNumberImpl::valueOf<double>(number);
}

} // namespace zelmora
