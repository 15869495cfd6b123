// The scanner.
#pragma once

#include "foundation/orv_base_impl.h"
#include "foundation/orv_string_impl.h"

namespace zelmora {

/// A cursor over a string. The position counts characters and stays within the string, as long as
/// that does not shrink. Tokens are temporary strings; null when memory runs out.
class OrvCScanner final : public OrvCBase {
  public:
    static constexpr uint32_t typeID = 26;

    /// Where Seek counts from. Any other origin keeps the position.
    enum Origin : int32_t { fromStart = 0, fromEnd = 1, fromPosition = 2 };

    explicit OrvCScanner(OrvStringImpl* string) noexcept
        : _string(OrvPtr<OrvStringImpl>::retaining(string)) {}

    [[nodiscard]] uint32_t GetTypeID() const noexcept override { return typeID; }

    /// Scans `string`, which may be null, from its start.
    void SetString(OrvStringImpl* string) noexcept;
    /// Moves to `offset` characters after the start, before the end or after the position, cut to
    /// what the string has; answers the new position.
    int32_t Seek(int32_t origin, int32_t offset) noexcept;
    /// Takes the characters up to and including the first one in `set`, or the rest; answers
    /// whether there were any. `set` is NUL-terminated, here and below.
    bool ScanThroughCharacters(const wchar_t* set, OrvIBase** token) noexcept;
    /// Takes the longest run of characters in `set`; answers whether there were any.
    bool ScanCharacters(const wchar_t* set, OrvIBase** token) noexcept;
    /// Takes a run of hexadecimal digits and answers whether there was one; `value` is 0 without.
    bool ScanHexInt(uint32_t* value) noexcept;

  private:
    [[nodiscard]] std::wstring_view text() const noexcept;
    /// Takes the characters up to `end` as the token.
    bool take(size_t end, OrvIBase** token) noexcept;

    OrvPtr<OrvStringImpl> _string;
    int32_t _position = 0;
};

} // namespace zelmora
