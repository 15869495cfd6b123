// The localized string table.
#pragma once

#include "platform/files/status.h"

#include <initializer_list>
#include <map>
#include <string>
#include <string_view>

namespace zelmora::platform {

/// Keys and their texts in one language, read from a Localizable.strings file:
/// "key" = "text"; with C comments and the escapes \" \\ \n \t \UXXXX. All UTF-8. Immutable after
/// construction, so safe on any thread.
class LocalizedStrings {
  public:
    LocalizedStrings() = default;

    /// Reads a table. EINVAL with `name` and the line number when `text` is not one.
    static Result<LocalizedStrings> parse(std::string_view text, std::string_view name);

    /// The text under `key`; the key itself when there is none.
    [[nodiscard]] std::string stringForKey(std::string_view key) const;

    /// The text under `key` with its placeholders, "%@", "%u" and "%d" alike (also numbered, as
    /// "%1$@"), replaced by `arguments` in order, and "%%" by "%". A placeholder without an
    /// argument is left as it stands; nothing in an argument is read as a placeholder.
    [[nodiscard]] std::string format(std::string_view key,
                                     std::initializer_list<std::string_view> arguments) const;

    [[nodiscard]] const std::map<std::string, std::string, std::less<>>& table() const {
        return _table;
    }

  private:
    std::map<std::string, std::string, std::less<>> _table;
};

} // namespace zelmora::platform
