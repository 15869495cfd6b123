#include "foundation/orv_base_impl.h"
#include "foundation/orv_test_counters.h"

#include <functional>

#ifdef ORV_TEST_COUNTERS
#include <atomic>
#endif

namespace zelmora {

#ifdef ORV_TEST_COUNTERS
namespace {
std::atomic<int64_t> liveObjects = 0;
} // namespace

int64_t OrvLiveObjectCount() noexcept {
    return liveObjects;
}
#endif

OrvCBase::OrvCBase() noexcept {
#ifdef ORV_TEST_COUNTERS
    ++liveObjects;
#endif
}

OrvCBase::~OrvCBase() {
#ifdef ORV_TEST_COUNTERS
    --liveObjects;
#endif
}

OrvIBase* OrvCBase::Retain() noexcept {
    ++_retainCount;
    return this;
}

void OrvCBase::Release() noexcept {
    if (--_retainCount == 0)
        delete this;
}

int32_t OrvCBase::Compare(const OrvIBase* other) const noexcept {
    const OrvIBase* self = this;
    // std::less orders unrelated addresses, which "<" need not.
    if (self == other)
        return 0;
    return std::less<>()(self, other) ? -1 : 1;
}

OrvIBase* OrvRetain(OrvIBase* object) noexcept {
    return object ? object->Retain() : nullptr;
}

void OrvRelease(OrvIBase* object) noexcept {
    if (object)
        object->Release();
}

uint32_t OrvGetRetainCount(const OrvIBase* object) noexcept {
    return object ? object->GetRetainCount() : 0;
}

uint32_t OrvGetTypeID(const OrvIBase* object) noexcept {
    return object ? object->GetTypeID() : 0;
}

int32_t OrvCompare(const OrvIBase* object, const OrvIBase* other) noexcept {
    if (object)
        return object->Compare(other);
    return other ? -1 : 0;
}

OrvPlatformObject OrvCopyCocoaObject(const OrvIBase* object) noexcept {
    return object ? object->CopyCocoaObject() : std::nullopt;
}

OrvPlatformObject OrvCopyCFType(const OrvIBase* object) noexcept {
    return object ? object->CopyCFType() : std::nullopt;
}

} // namespace zelmora
