#include "foundation/eternal.h"
#include "foundation/orv_pool_impl.h"
#include "foundation/orv_string_impl.h"
#include "foundation/orv_test_counters.h"
#include "platform/threads/mutex.h"

#include <algorithm>
#include <cwchar>
#include <new>
#include <pthread.h>

namespace zelmora {

namespace {

using Pool = OrvCTemporaryObjectsPool;

/// The stacks of open pools of all threads, innermost last. A thread has an entry only while its
/// stack is not empty. Every access to a stack happens under the mutex, so that entries may move;
/// what is on the stack belongs to its thread and is used without it.
class ThreadPools {
  public:
    bool push(Pool* pool) {
        const platform::MutexLock lock(_mutex);
        countLock();
        Entry* const entry = find();
        std::vector<Entry>* const entries = &_entries;
        return allocating([&] {
            if (entry) {
                entry->pools.push_back(pool);
                return;
            }
            // The stack first: a failure must not leave an entry with an empty one.
            std::vector<Pool*> pools(1, pool);
            entries->push_back({pthread_self(), std::move(pools)});
        });
    }

    Pool* top() {
        const platform::MutexLock lock(_mutex);
        countLock();
        const Entry* entry = find();
        return entry ? entry->pools.back() : nullptr;
    }

    /// Takes `pool` off the stack it is on, from whatever place: an unbalanced pool must not be
    /// found again.
    void remove(Pool* pool) {
        const platform::MutexLock lock(_mutex);
        countLock();
        for (Entry& entry : _entries)
            std::erase(entry.pools, pool);
        std::erase_if(_entries, [](const Entry& entry) { return entry.pools.empty(); });
    }

#ifdef ORV_TEST_COUNTERS
    uint64_t lockCount() {
        const platform::MutexLock lock(_mutex);
        return _lockCount;
    }
#endif

  private:
    struct Entry {
        pthread_t thread;
        std::vector<Pool*> pools;
    };

    /// Every use of the stacks begins with it.
    void countLock() REQUIRES(_mutex) {
#ifdef ORV_TEST_COUNTERS
        ++_lockCount;
#endif
    }

    Entry* find() REQUIRES(_mutex) {
        const auto isMine = [self = pthread_self()](const Entry& entry) {
            return pthread_equal(entry.thread, self) != 0;
        };
        const auto entry = std::ranges::find_if(_entries, isMine);
        return entry == _entries.end() ? nullptr : &*entry;
    }

    platform::Mutex _mutex;
    std::vector<Entry> _entries GUARDED_BY(_mutex);
#ifdef ORV_TEST_COUNTERS
    uint64_t _lockCount GUARDED_BY(_mutex) = 0;
#endif
};

constinit Eternal<ThreadPools> threadPools;

} // namespace

#ifdef ORV_TEST_COUNTERS
uint64_t OrvPoolLockCount() noexcept {
    return threadPools.value.lockCount();
}
#endif

Pool* Pool::open() noexcept {
    auto* pool = new (std::nothrow) Pool;
    if (!pool)
        return nullptr;
    pool->_isOpen = threadPools.value.push(pool);
    if (pool->_isOpen)
        return pool;
    delete pool;
    return nullptr;
}

Pool* Pool::current() noexcept {
    return threadPools.value.top();
}

Pool* Pool::currentOrComplain() noexcept {
    Pool* pool = current();
    if (!pool)
        OrvLog(L"The temporary objects pool is not created for this thread. The object will leak");
    return pool;
}

Pool::~OrvCTemporaryObjectsPool() {
    // What an unbalanced pool holds may still be in use by whoever opened a pool above it, or by
    // its own thread: it is rather leaked than released.
    if (!_isOpen)
        return;
    if (current() == this)
        drain();
    else
        OrvLog(L"The temporary objects pool is not balanced (OrvTemporaryObjectsPoolCreate and "
               L"OrvRelease).");
    threadPools.value.remove(this);
}

bool Pool::add(OrvIBase* object) noexcept {
    if (allocating([&] { _objects.push_back(object); }))
        return true;
    object->Release();
    return false;
}

OrvStringImpl* Pool::constantString(const wchar_t* literal) noexcept {
    const auto isEqual = [literal](const OrvStringImpl* string) {
        return std::wcscmp(string->characters().c_str(), literal) == 0;
    };
    // From the newest: a caller's literals are the last that were asked for.
    const auto newest = std::find_if(_constantStrings.rbegin(), _constantStrings.rend(), isEqual);
    if (newest != _constantStrings.rend())
        return *newest;
    OrvPtr<OrvStringImpl> string = makeString(literal);
    if (!string || !allocating([&] { _constantStrings.push_back(string.get()); }))
        return nullptr;
    return string.release();
}

void Pool::drain() noexcept {
    // By index, and emptied one by one: a destructor may add objects or drain again.
    for (size_t i = 0; i < _objects.size(); ++i)
        OrvRelease(std::exchange(_objects[i], nullptr));
    for (OrvStringImpl* string : _constantStrings)
        string->Release();
    _objects.clear();
    _constantStrings.clear();
}

OrvIBase* OrvTemporaryObjectsPoolCreate() noexcept {
    Pool* pool = Pool::open();
    return pool ? pool->object() : nullptr;
}

OrvIBase* OrvGetCurrentTemporaryObjectsPool() noexcept {
    Pool* pool = Pool::current();
    return pool ? pool->object() : nullptr;
}

OrvIBase* OrvTemporaryObjectsPoolAddObject(OrvIBase* object) noexcept {
    if (!object)
        return nullptr;
    Pool* pool = Pool::currentOrComplain();
    return pool && !pool->add(object) ? nullptr : object;
}

} // namespace zelmora
