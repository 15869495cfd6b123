// A thread's pool of temporary objects.
#pragma once

#include "foundation/orv_base_impl.h"

#include <vector>

namespace zelmora {

class OrvStringImpl;

/// Owns one reference to each object handed to it, and the strings made for literals. Made and
/// found through the thread's stack of pools only; used by its own thread.
class OrvCTemporaryObjectsPool final : OrvCBase {
  public:
    static constexpr uint32_t typeID = 28;

    /// A new pool on top of the calling thread's stack; null when there is no memory.
    static OrvCTemporaryObjectsPool* open() noexcept;
    /// The calling thread's innermost open pool, or null. Takes the pools' mutex.
    static OrvCTemporaryObjectsPool* current() noexcept;
    /// The same for those who need it to go on: without a pool it writes the line that tells of
    /// the leak.
    static OrvCTemporaryObjectsPool* currentOrComplain() noexcept;

    ~OrvCTemporaryObjectsPool() override;
    [[nodiscard]] uint32_t GetTypeID() const noexcept override { return typeID; }

    /// This pool for the interface of free functions. Not a conversion: the base is private.
    [[nodiscard]] OrvIBase* object() noexcept { return this; }

    /// Takes over the reference; answers false, and has released `object`, when it cannot grow.
    bool add(OrvIBase* object) noexcept;
    /// The string of `literal` that this pool made before, or a new one; null without memory.
    OrvStringImpl* constantString(const wchar_t* literal) noexcept;
    /// Releases everything the pool holds, first to last, the objects before the strings. What a
    /// destructor hands to the pool meanwhile is released too.
    void drain() noexcept;

  private:
    OrvCTemporaryObjectsPool() = default;

    bool _isOpen = false; // on its thread's stack; false only when there was no memory for that
    std::vector<OrvIBase*> _objects;
    std::vector<OrvStringImpl*> _constantStrings;
};

} // namespace zelmora
