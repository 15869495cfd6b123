#include "foundation/orv_data_impl.h"
#include "foundation/orv_values.h"

#include <cstring>

namespace zelmora {

OrvPlatformObject OrvDataImpl::CopyCocoaObject() const noexcept {
    return platformObject([this] {
        const auto* first = static_cast<const std::byte*>(GetBytes());
        return platform::Bytes(first, first + GetSize());
    });
}

OrvHeapBaseDataImpl::OrvHeapBaseDataImpl(const void* bytes, uint64_t size) : _bytes(size) {
    if (bytes && size > 0)
        std::memcpy(_bytes.data(), bytes, size);
}

OrvIBase* OrvDataCreate(const void* bytes, uint64_t size) noexcept {
    auto data = makeObject<OrvHeapBaseDataImpl>(bytes, size);
    if (!data)
        OrvLog(L"Can't allocate the object for the OrvDataRef. (size=%d)", static_cast<int>(size));
    return data.release();
}

const void* OrvDataGetBytes(const OrvIBase* data) noexcept {
    const auto* self = objectCast<OrvDataImpl>(data);
    return self ? self->GetBytes() : nullptr;
}

uint64_t OrvDataGetSize(const OrvIBase* data) noexcept {
    const auto* self = objectCast<OrvDataImpl>(data);
    return self ? self->GetSize() : 0;
}

} // namespace zelmora
