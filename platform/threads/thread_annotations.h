// Says which lock guards what, in a form that clang checks when it compiles (-Wthread-safety): an
// access without the lock is an error. Other compilers read nothing here. The macros have the names
// and the meaning that clang's documentation gives them.
#pragma once

#if defined(__clang__)
#define ZELMORA_THREAD_ANNOTATION(x) __attribute__((x))
#else
#define ZELMORA_THREAD_ANNOTATION(x)
#endif

/// A class whose objects are locks; `x` is what the compiler's messages call one.
#define CAPABILITY(x) ZELMORA_THREAD_ANNOTATION(capability(x))
/// A class whose objects hold a lock as long as they live.
#define SCOPED_CAPABILITY ZELMORA_THREAD_ANNOTATION(scoped_lockable)

/// A field that is read and written only under lock `x`.
#define GUARDED_BY(x) ZELMORA_THREAD_ANNOTATION(guarded_by(x))

/// A function that is called only under these locks; in the second form, shared ones are enough.
#define REQUIRES(...) ZELMORA_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
#define REQUIRES_SHARED(...) ZELMORA_THREAD_ANNOTATION(requires_shared_capability(__VA_ARGS__))
/// A function that takes these locks itself and so is called without them.
#define EXCLUDES(...) ZELMORA_THREAD_ANNOTATION(locks_excluded(__VA_ARGS__))

// What a lock's own functions do; without a name, to the lock itself.
#define ACQUIRE(...) ZELMORA_THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))
#define ACQUIRE_SHARED(...) ZELMORA_THREAD_ANNOTATION(acquire_shared_capability(__VA_ARGS__))
#define RELEASE(...) ZELMORA_THREAD_ANNOTATION(release_capability(__VA_ARGS__))
#define RELEASE_SHARED(...) ZELMORA_THREAD_ANNOTATION(release_shared_capability(__VA_ARGS__))
#define RELEASE_GENERIC(...) ZELMORA_THREAD_ANNOTATION(release_generic_capability(__VA_ARGS__))
