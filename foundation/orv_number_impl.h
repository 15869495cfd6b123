// The number.
#pragma once

#include "foundation/orv_base_impl.h"

#include <tuple>

namespace zelmora {

/// Holds one number in the field of its kind.
class OrvNumberImpl final : OrvCBase {
  public:
    static constexpr uint32_t typeID = 1;

    /// A kind's code is the place of its field.
    using Fields = std::tuple<bool, unsigned char, unsigned short, unsigned int, unsigned long long,
                              char, short, int, long long, float, double>;

    /// A new number of T's kind; null when memory runs out.
    template<typename T>
    static OrvIBase* create(T value) noexcept;
    /// `object`'s value as a T; zero when it is no number.
    template<typename T>
    static T valueOf(const OrvIBase* object) noexcept;

    [[nodiscard]] uint32_t GetTypeID() const noexcept override { return typeID; }
    /// A boolean, an integer or a real; an unsigned number beyond 2^63 - 1 as the nearest real.
    [[nodiscard]] OrvPlatformObject CopyCocoaObject() const noexcept override;

  private:
    OrvNumberImpl() = default;

    /// Calls `read` with the stored value, in its own type, and answers what that answers.
    template<typename Read>
    auto withValue(Read read) const;

    size_t _kind = 0;
    Fields _fields = {};
};

} // namespace zelmora
