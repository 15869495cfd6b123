// OrvFoundation's object model: reference counts, the library's start and end, pools of temporary
// objects, the registry of shared objects and the diagnostic line.
//
// Ownership shows in a function's name. "Create" answers a new reference that the caller gives up
// with OrvRelease; "Get" answers a reference that the caller does not own; "OrvTemporary" answers
// an object that the calling thread's current pool owns, valid until that pool is drained or
// destroyed. OrvPtr (orv_ptr.h) holds an owned reference for the length of a scope.
//
// Threads: an object is used by one thread at a time; its count is neither atomic nor locked.
//
// Failures: a null object, or one of another class, counts as no object: it reads as empty and is
// not changed. When memory runs out a function answers null or leaves its object as it was, and
// most write a diagnostic line; no exception leaves the library.
#pragma once

#include "platform/defaults/property_list.h"

#include <cstdint>
#include <optional>

namespace zelmora {

/// What an object is to the rest of the desktop; nullopt for classes that have no such form.
using OrvPlatformObject = std::optional<platform::PropertyListValue>;

/// The operations that every object has. The order of the declarations is the order of the slots.
class OrvIBase {
  public:
    /// Adds one owner; answers the object itself.
    virtual OrvIBase* Retain() noexcept = 0;
    /// Drops one owner; the last one destroys the object.
    virtual void Release() noexcept = 0;
    /// The number of owners; 1 for a new object.
    [[nodiscard]] virtual uint32_t GetRetainCount() const noexcept = 0;
    /// The number of the object's class. OrvCCSSElement and OrvCCSSParser share theirs.
    [[nodiscard]] virtual uint32_t GetTypeID() const noexcept = 0;
    /// 0 when `other` is this object, -1 when this object's address is the lower, else 1.
    [[nodiscard]] virtual int32_t Compare(const OrvIBase* other) const noexcept = 0;
    /// The equivalent value of the platform; nullopt also when memory runs out.
    [[nodiscard]] virtual OrvPlatformObject CopyCocoaObject() const noexcept = 0;
    /// The same for interfaces in C, which take the same values on this desktop.
    [[nodiscard]] virtual OrvPlatformObject CopyCFType() const noexcept = 0;

  protected:
    virtual ~OrvIBase() = default;
};

/// Builds the library's shared state, on the main thread, before anything else of the library is
/// used; answers 0. Calls nest: only the first one builds.
int32_t OrvFoundationInitialize() noexcept;
/// The counterpart; the call that balances the first one tears the shared state down. Answers 0.
int32_t OrvFoundationTerminate() noexcept;

/// Adds one owner to `object`, which may be null; answers it.
OrvIBase* OrvRetain(OrvIBase* object) noexcept;
/// Drops one owner of `object`, which may be null.
void OrvRelease(OrvIBase* object) noexcept;
/// 0 for null.
[[nodiscard]] uint32_t OrvGetRetainCount(const OrvIBase* object) noexcept;
/// 0, which is no class's number, for null.
[[nodiscard]] uint32_t OrvGetTypeID(const OrvIBase* object) noexcept;
/// The first object's Compare; null comes before every object.
[[nodiscard]] int32_t OrvCompare(const OrvIBase* object, const OrvIBase* other) noexcept;
[[nodiscard]] OrvPlatformObject OrvCopyCocoaObject(const OrvIBase* object) noexcept;
[[nodiscard]] OrvPlatformObject OrvCopyCFType(const OrvIBase* object) noexcept;

/// Opens a pool, which becomes the calling thread's current one. It is closed, on that thread and
/// before the pool around it, by its last OrvRelease. Null when it cannot be allocated.
[[nodiscard]] OrvIBase* OrvTemporaryObjectsPoolCreate() noexcept;
/// The calling thread's innermost open pool, or null.
[[nodiscard]] OrvIBase* OrvGetCurrentTemporaryObjectsPool() noexcept;
/// Hands the caller's reference to the current pool and answers `object`. Without a pool nobody
/// owns it from here on, which a diagnostic line tells. Null when the pool cannot grow: then
/// `object` has been released.
OrvIBase* OrvTemporaryObjectsPoolAddObject(OrvIBase* object) noexcept;

/// Stores `object`, retained, under a NUL-terminated key, in place of one stored there before.
/// Not locked: while one thread registers, no other may use the registry.
void OrvRegisterSharedObject(OrvIBase* object, const wchar_t* key) noexcept;
/// The object registered under `key`, or null.
[[nodiscard]] OrvIBase* OrvGetSharedObject(const wchar_t* key) noexcept;

/// Writes one diagnostic line to the standard output, as UTF-8: date, time, a running number from
/// 0, and the message, cut to 511 characters. `format` and its arguments are those of wprintf.
/// Any thread; the line is written whole and allocates nothing.
void OrvLog(const wchar_t* format, ...) noexcept;

/// The host's byte order in the numbering of the encoding record: 1 little-endian, 2 big-endian.
[[nodiscard]] int32_t OrvHostByteOrder() noexcept;

} // namespace zelmora
