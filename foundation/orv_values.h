// Numbers and byte buffers as library objects. They do not change once made.
// Ownership, threads and failures: orv_base.h.
#pragma once

#include "foundation/orv_base.h"

namespace zelmora {

// A number keeps the type it was made of. A new one; null when memory runs out.

[[nodiscard]] OrvIBase* OrvNumberCreateWithBool(bool value) noexcept;
[[nodiscard]] OrvIBase* OrvNumberCreateWithUnsignedChar(unsigned char value) noexcept;
[[nodiscard]] OrvIBase* OrvNumberCreateWithUnsignedShort(unsigned short value) noexcept;
[[nodiscard]] OrvIBase* OrvNumberCreateWithUnsignedInt(unsigned int value) noexcept;
[[nodiscard]] OrvIBase* OrvNumberCreateWithUnsignedLongLong(unsigned long long value) noexcept;
[[nodiscard]] OrvIBase* OrvNumberCreateWithChar(char value) noexcept;
[[nodiscard]] OrvIBase* OrvNumberCreateWithShort(short value) noexcept;
[[nodiscard]] OrvIBase* OrvNumberCreateWithInt(int value) noexcept;
[[nodiscard]] OrvIBase* OrvNumberCreateWithLongLong(long long value) noexcept;
[[nodiscard]] OrvIBase* OrvNumberCreateWithFloat(float value) noexcept;
[[nodiscard]] OrvIBase* OrvNumberCreateWithDouble(double value) noexcept;

// The value, converted as C does. A floating-point value that the type cannot hold becomes the
// type's nearest value, and one that is no number 0, where C leaves it open.

[[nodiscard]] bool OrvNumberGetBool(const OrvIBase* number) noexcept;
[[nodiscard]] unsigned char OrvNumberGetUnsignedChar(const OrvIBase* number) noexcept;
[[nodiscard]] unsigned short OrvNumberGetUnsignedShort(const OrvIBase* number) noexcept;
[[nodiscard]] unsigned int OrvNumberGetUnsignedInt(const OrvIBase* number) noexcept;
[[nodiscard]] unsigned long long OrvNumberGetUnsignedLongLong(const OrvIBase* number) noexcept;
[[nodiscard]] char OrvNumberGetChar(const OrvIBase* number) noexcept;
[[nodiscard]] short OrvNumberGetShort(const OrvIBase* number) noexcept;
[[nodiscard]] int OrvNumberGetInt(const OrvIBase* number) noexcept;
[[nodiscard]] long long OrvNumberGetLongLong(const OrvIBase* number) noexcept;
[[nodiscard]] float OrvNumberGetFloat(const OrvIBase* number) noexcept;
[[nodiscard]] double OrvNumberGetDouble(const OrvIBase* number) noexcept;

/// A new buffer with a copy of `size` bytes; zeros when `bytes` is null.
[[nodiscard]] OrvIBase* OrvDataCreate(const void* bytes, uint64_t size) noexcept;
/// The bytes, valid as long as the buffer.
[[nodiscard]] const void* OrvDataGetBytes(const OrvIBase* data) noexcept;
[[nodiscard]] uint64_t OrvDataGetSize(const OrvIBase* data) noexcept;

} // namespace zelmora
