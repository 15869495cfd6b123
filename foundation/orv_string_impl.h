// The string.
#pragma once

#include "foundation/orv_base_impl.h"

#include <string>
#include <string_view>

namespace zelmora {

/// A buffer of characters that it shares with nobody. A NUL, which does not count, follows them.
class OrvStringImpl final : public OrvCBase {
  public:
    static constexpr uint32_t typeID = 3;

    /// Copies; throws std::bad_alloc. See makeString().
    explicit OrvStringImpl(std::wstring_view characters) : _characters(characters) {}
    explicit OrvStringImpl(std::wstring&& characters) noexcept
        : _characters(std::move(characters)) {}

    [[nodiscard]] uint32_t GetTypeID() const noexcept override { return typeID; }
    [[nodiscard]] OrvPlatformObject CopyCocoaObject() const noexcept override;

    /// The text itself. Who changes it catches what a std::wstring throws.
    [[nodiscard]] const std::wstring& characters() const noexcept { return _characters; }
    [[nodiscard]] std::wstring& characters() noexcept { return _characters; }

  private:
    std::wstring _characters;
};

/// A new string, or null and a diagnostic line.
[[nodiscard]] OrvPtr<OrvStringImpl> makeString(std::wstring_view characters) noexcept;

/// The characters of a string; none when `string` is null or no string.
[[nodiscard]] std::wstring_view textOf(const OrvIBase* string) noexcept;

} // namespace zelmora
