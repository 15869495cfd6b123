// The library's shared state: the registry, the main thread's pool and the hook that drains it.
#include "foundation/eternal.h"
#include "foundation/orv_collections.h"
#include "foundation/orv_dictionary_impl.h"
#include "foundation/orv_library_impl.h"
#include "foundation/orv_pool_impl.h"

#include "platform/events/run_loop.h"

#include <bit>

namespace zelmora {

namespace {

using platform::RunLoop;

constexpr const wchar_t* nullKey = L"org.zelmora.OrvFoundation.Null";

/// Drains the main thread's pool whenever its event loop is about to wait or exits.
class DrainHook {
  public:
    void install() noexcept {
        _runLoop = RunLoop::mainRunLoop();
        if (!_runLoop)
            return;
        const auto drain = [](RunLoop::Activity) {
            if (auto* pool = OrvCTemporaryObjectsPool::current())
                pool->drain();
        };
        // Without memory for it the pool is only drained at the end.
        if (!allocating([&] {
                _observer = _runLoop->addObserver(RunLoop::beforeWaiting | RunLoop::exit, drain);
            }))
            _runLoop = nullptr;
    }

    void remove() noexcept {
        // A loop that is gone took its observers with it.
        if (_runLoop && _runLoop == RunLoop::mainRunLoop())
            _runLoop->removeObserver(_observer);
        _runLoop = nullptr;
    }

  private:
    RunLoop* _runLoop = nullptr;
    RunLoop::ObserverID _observer = 0;
};

struct Library {
    int32_t initialisationCount = 0;
    OrvPtr<OrvDictionaryImpl> sharedObjects;
    OrvPtr<> mainPool;
    DrainHook drainHook;
};

constinit Eternal<Library> state;

void registerNull() noexcept {
    // The registry reports it when there was no memory for the object.
    auto null = makeObject<OrvNullImpl>();
    OrvRegisterSharedObject(null.get(), nullKey);
    // Without a pool the registry is its only owner.
    if (OrvCTemporaryObjectsPool::current())
        OrvTemporaryObjectsPoolAddObject(null.release());
}

} // namespace

OrvDictionaryImpl* sharedObjectRegistry() noexcept {
    OrvDictionaryImpl* registry = state.value.sharedObjects.get();
    if (!registry)
        OrvLog(L"OrvFoundation is not initialized.");
    return registry;
}

int32_t OrvFoundationInitialize() noexcept {
    Library& library = state.value;
    if (library.initialisationCount++ != 0)
        return 0;
    library.sharedObjects = OrvDictionaryImpl::create();
    library.mainPool = OrvPtr<>(OrvTemporaryObjectsPoolCreate());
    library.drainHook.install();
    if (library.sharedObjects)
        registerNull();
    return 0;
}

int32_t OrvFoundationTerminate() noexcept {
    Library& library = state.value;
    if (--library.initialisationCount != 0)
        return 0;
    // From what was built last to what was built first.
    library.drainHook.remove();
    library.mainPool = {};
    library.sharedObjects = {};
    return 0;
}

void OrvRegisterSharedObject(OrvIBase* object, const wchar_t* key) noexcept {
    if (OrvDictionaryImpl* registry = sharedObjectRegistry())
        registry->setValue(object, key);
}

OrvIBase* OrvGetSharedObject(const wchar_t* key) noexcept {
    const OrvDictionaryImpl* registry = sharedObjectRegistry();
    return registry && key ? registry->value(key) : nullptr;
}

int32_t OrvHostByteOrder() noexcept {
    return std::endian::native == std::endian::little ? 1 : 2;
}

} // namespace zelmora
