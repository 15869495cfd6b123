// Byte buffers.
#pragma once

#include "foundation/orv_base_impl.h"

#include "platform/text/bytes.h"

namespace zelmora {

/// A run of bytes; the kinds differ in where they keep it.
class OrvDataImpl : public OrvCBase {
  public:
    /// Valid as long as the object; may be null for no bytes.
    [[nodiscard]] virtual const void* GetBytes() const noexcept = 0;
    [[nodiscard]] virtual uint64_t GetSize() const noexcept = 0;
    [[nodiscard]] OrvPlatformObject CopyCocoaObject() const noexcept override;
};

/// Keeps its bytes on the heap.
class OrvHeapBaseDataImpl final : public OrvDataImpl {
  public:
    static constexpr uint32_t typeID = 4;

    /// A copy of `size` bytes; zeros when `bytes` is null. Throws without memory for it.
    OrvHeapBaseDataImpl(const void* bytes, uint64_t size);

    [[nodiscard]] uint32_t GetTypeID() const noexcept override { return typeID; }
    [[nodiscard]] const void* GetBytes() const noexcept override { return _bytes.data(); }
    [[nodiscard]] uint64_t GetSize() const noexcept override { return _bytes.size(); }

  private:
    platform::Bytes _bytes;
};

} // namespace zelmora
