// The root of the library's classes, for those who implement one.
#pragma once

#include "foundation/orv_ptr.h"

#include <exception>
#include <utility>

namespace zelmora {

/// Counts references, from one, and compares by identity. Derived classes name their number
/// (GetTypeID) and, where they have a platform form, convert themselves.
class OrvCBase : public OrvIBase {
  public:
    OrvCBase(const OrvCBase&) = delete;
    OrvCBase& operator=(const OrvCBase&) = delete;

    OrvIBase* Retain() noexcept override;
    void Release() noexcept override;
    [[nodiscard]] uint32_t GetRetainCount() const noexcept override { return _retainCount; }
    [[nodiscard]] int32_t Compare(const OrvIBase* other) const noexcept override;
    [[nodiscard]] OrvPlatformObject CopyCocoaObject() const noexcept override { return {}; }
    [[nodiscard]] OrvPlatformObject CopyCFType() const noexcept override {
        return CopyCocoaObject();
    }

  protected:
    OrvCBase() noexcept;
    ~OrvCBase() override;

  private:
    uint32_t _retainCount = 1;
};

/// The library's null value. The one instance is in the registry of shared objects.
class OrvNullImpl final : public OrvCBase {
  public:
    static constexpr uint32_t typeID = 18;
    [[nodiscard]] uint32_t GetTypeID() const noexcept override { return typeID; }
};

/// `object` as a T; null when it is null or of another class. Not by GetTypeID, which does not
/// tell all classes apart.
template<typename T>
[[nodiscard]] T* objectCast(OrvIBase* object) noexcept {
    return dynamic_cast<T*>(object);
}
template<typename T>
[[nodiscard]] const T* objectCast(const OrvIBase* object) noexcept {
    return dynamic_cast<const T*>(object);
}

/// Runs `work` and answers whether it got the memory it needed. A length that no container can
/// have counts as memory that is not there.
template<typename Work>
[[nodiscard]] bool allocating(Work&& work) noexcept {
    try {
        std::forward<Work>(work)();
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

/// A new T, or null when there is no memory for it or for what its constructor allocates.
template<typename T, typename... Arguments>
[[nodiscard]] OrvPtr<T> makeObject(Arguments&&... arguments) noexcept {
    OrvPtr<T> object;
    (void)allocating([&] { object = OrvPtr<T>(new T(std::forward<Arguments>(arguments)...)); });
    return object;
}

/// The platform form that `convert` answers; nullopt when memory runs out on the way.
template<typename Convert>
[[nodiscard]] OrvPlatformObject platformObject(Convert&& convert) noexcept {
    OrvPlatformObject result;
    if (!allocating([&] { result.emplace(std::forward<Convert>(convert)()); }))
        result.reset();
    return result;
}

} // namespace zelmora
