// Arrays with their enumerators, and dictionaries.
//
// A container owns one reference to each object it holds; what it answers is borrowed and valid
// while the container holds it. Ownership, threads and failures otherwise: orv_base.h.
#pragma once

#include "foundation/orv_base.h"

namespace zelmora {

/// A new, empty array with room for `capacity` elements (0: none).
[[nodiscard]] OrvIBase* OrvArrayCreate(uint64_t capacity) noexcept;
/// A new array of the `count` objects at `objects`, without those that are null. Null without
/// memory for all of them.
[[nodiscard]] OrvIBase* OrvArrayCreateWithObjects(OrvIBase* const* objects,
                                                  uint64_t count) noexcept;
/// The number of elements.
[[nodiscard]] uint64_t OrvArrayGetCount(const OrvIBase* array) noexcept;
/// Null when `index` is not below the count.
[[nodiscard]] OrvIBase* OrvArrayGetObjectAtIndex(const OrvIBase* array, uint64_t index) noexcept;
/// Adds at the end. A null object and want of memory each write a line and change nothing.
void OrvArrayAddObject(OrvIBase* array, OrvIBase* object) noexcept;
/// Inserts ahead of the element at `index`, or at the end when that is the count.
void OrvArrayInsertObjectAtIndex(OrvIBase* array, OrvIBase* object, uint64_t index) noexcept;
/// Does nothing when there is no such element.
void OrvArrayRemoveObjectAtIndex(OrvIBase* array, uint64_t index) noexcept;
/// Removes the first element whose Compare with `object` gives 0.
void OrvArrayRemoveObject(OrvIBase* array, const OrvIBase* object) noexcept;
/// Releases all elements, first to last.
void OrvArrayRemoveAllObjects(OrvIBase* array) noexcept;
/// Does nothing when there is no such element or no object.
void OrvArrayReplaceObjectAtIndex(OrvIBase* array, OrvIBase* object, uint64_t index) noexcept;

/// A new enumerator before the first element; it keeps the array alive. The array must not change
/// while it is in use.
[[nodiscard]] OrvIBase* OrvArrayCreateEnumerator(OrvIBase* array) noexcept;
/// The next element, borrowed; null after the last.
[[nodiscard]] OrvIBase* OrvEnumeratorGetNextObject(OrvIBase* enumerator) noexcept;

/// A new, empty dictionary. Keys are copied; they compare by code points, prefixes first.
[[nodiscard]] OrvIBase* OrvDictionaryCreate() noexcept;
/// Stores `value` under the NUL-terminated `key`, in place of one stored there before. When there
/// is no memory for it, nothing is stored under the key afterwards.
void OrvDictionarySetValue(OrvIBase* dictionary, OrvIBase* value, const wchar_t* key) noexcept;
/// The value stored under `key`, borrowed, or null.
[[nodiscard]] OrvIBase* OrvDictionaryGetValue(const OrvIBase* dictionary,
                                              const wchar_t* key) noexcept;
/// Does nothing when there is no such key.
void OrvDictionaryRemoveValue(OrvIBase* dictionary, const wchar_t* key) noexcept;
/// Sets every entry of `other` in `dictionary`.
void OrvDictionaryAddEntries(OrvIBase* dictionary, const OrvIBase* other) noexcept;
/// A new array of the keys, as strings, in key order; null without memory for all of them.
[[nodiscard]] OrvIBase* OrvDictionaryCreateKeys(const OrvIBase* dictionary) noexcept;
/// A new array of the values in key order; null without memory for all of them.
[[nodiscard]] OrvIBase* OrvDictionaryCreateValues(const OrvIBase* dictionary) noexcept;

} // namespace zelmora
