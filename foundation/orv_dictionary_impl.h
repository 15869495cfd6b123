// The dictionary.
#pragma once

#include "foundation/orv_base_impl.h"

#include <map>
#include <string>
#include <string_view>

namespace zelmora {

/// An ordered map from wide-character keys, which it copies, to objects, each of which it owns
/// once.
class OrvDictionaryImpl final : public OrvCBase {
  public:
    static constexpr uint32_t typeID = 14;
    using Entries = std::map<std::wstring, OrvPtr<>, std::less<>>;

    ~OrvDictionaryImpl() override;

    /// A new, empty dictionary, or null and a diagnostic line.
    static OrvPtr<OrvDictionaryImpl> create() noexcept;

    [[nodiscard]] uint32_t GetTypeID() const noexcept override { return typeID; }
    /// Values without a platform form stand as an empty string, as in an array.
    [[nodiscard]] OrvPlatformObject CopyCocoaObject() const noexcept override;

    /// Valid, and in key order, until the dictionary changes.
    [[nodiscard]] const Entries& entries() const noexcept { return _entries; }
    /// Borrowed; null when there is none.
    [[nodiscard]] OrvIBase* value(std::wstring_view key) const noexcept;
    /// Answers false, and wrote a line, when an argument is null or memory runs out.
    bool setValue(OrvIBase* value, const wchar_t* key) noexcept;
    /// A key that is not there is no error.
    void removeValue(std::wstring_view key) noexcept;

  private:
    Entries _entries;
};

} // namespace zelmora
