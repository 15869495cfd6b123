// Property lists: the values that settings hold and their XML form.
#pragma once

#include "platform/files/status.h"
#include "platform/text/bytes.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace zelmora::platform {

class PropertyListValue;
using PropertyListArray = std::vector<PropertyListValue>;
using PropertyListDictionary = std::map<std::string, PropertyListValue, std::less<>>;

/// One value of a property list. Strings are UTF-8. Dates and UIDs, which no part of the system
/// uses, are not held: a list with one is refused by the parser.
class PropertyListValue {
  public:
    using Content = std::variant<bool, int64_t, double, std::string, Bytes, PropertyListArray,
                                 PropertyListDictionary>;

    PropertyListValue() : _content(false) {}
    // Out of line: a recursive variant is much code to inline, and GCC 12 takes what it then sees
    // for a read of an unset member.
    PropertyListValue(const PropertyListValue&);
    PropertyListValue(PropertyListValue&&) noexcept;
    PropertyListValue& operator=(const PropertyListValue&);
    PropertyListValue& operator=(PropertyListValue&&) noexcept;
    ~PropertyListValue();

    template<typename T>
    requires std::is_constructible_v<Content, T&&> PropertyListValue(T&& value)
        : _content(std::forward<T>(value)) {} // NOLINT: implicit by intent

    /// The value as a T of Content, null when it is of another type.
    template<typename T>
    [[nodiscard]] const T* as() const {
        return std::get_if<T>(&_content);
    }
    template<typename T>
    [[nodiscard]] T* as() {
        return std::get_if<T>(&_content);
    }

    [[nodiscard]] const Content& content() const { return _content; }
    bool operator==(const PropertyListValue&) const;

  private:
    Content _content;
};

/// Reads an XML property list. EINVAL when it is not one, with a message that begins with `name`.
Result<PropertyListValue> propertyListFromXML(std::string_view xml, std::string_view name);

/// Whether a string of a property list can hold `text`: it is UTF-8, of characters that XML has.
[[nodiscard]] bool isPropertyListText(std::string_view text);

/// Writes `value` as an XML property list, line feeds and all. EILSEQ when a string in it is no
/// such text.
Result<std::string> xmlFromPropertyList(const PropertyListValue& value);

/// The 64-bit integer that all of `text` writes in decimal, with or without a sign; nullopt when it
/// does not.
[[nodiscard]] std::optional<int64_t> integerFromDecimal(std::string_view text);

} // namespace zelmora::platform
