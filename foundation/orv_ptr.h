// The one owner of a reference in C++ code: no call of Release is scattered around.
#pragma once

#include "foundation/orv_base.h"

#include <utility>

namespace zelmora {

/// Owns one reference to a T, or none. `OrvPtr<> pool(OrvTemporaryObjectsPoolCreate())` keeps a
/// pool open to the end of the scope.
template<typename T = OrvIBase>
class OrvPtr {
  public:
    OrvPtr() = default;
    /// Takes over the caller's reference, for example one that a "Create" function answered.
    explicit OrvPtr(T* owned) noexcept : _object(owned) {}
    OrvPtr(const OrvPtr& other) noexcept : OrvPtr(retaining(other._object)) {}
    OrvPtr(OrvPtr&& other) noexcept : _object(other.release()) {}
    OrvPtr& operator=(OrvPtr other) noexcept {
        std::swap(_object, other._object);
        return *this;
    }
    ~OrvPtr() {
        if (_object)
            _object->Release();
    }

    /// Adds an owner of its own to `borrowed`, which may be null.
    [[nodiscard]] static OrvPtr retaining(T* borrowed) noexcept {
        if (borrowed)
            borrowed->Retain();
        return OrvPtr(borrowed);
    }

    [[nodiscard]] T* get() const noexcept { return _object; }
    T* operator->() const noexcept { return _object; }
    explicit operator bool() const noexcept { return _object != nullptr; }

    /// Hands the reference to the caller and holds nothing afterwards.
    [[nodiscard]] T* release() noexcept { return std::exchange(_object, nullptr); }

  private:
    T* _object = nullptr;
};

} // namespace zelmora
