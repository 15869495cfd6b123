// The array and its enumerator.
#pragma once

#include "foundation/orv_base_impl.h"

#include <vector>

namespace zelmora {

/// An ordered list of objects, each of which it owns once.
class OrvArrayImpl final : public OrvCBase {
  public:
    static constexpr uint32_t typeID = 6;

    /// REQUIRES: `capacity` fits the address space; throws otherwise. See create().
    explicit OrvArrayImpl(size_t capacity) { _elements.reserve(capacity); }
    ~OrvArrayImpl() override { removeAll(); }

    /// A new array, or null and a diagnostic line.
    static OrvPtr<OrvArrayImpl> create(uint64_t capacity) noexcept;

    [[nodiscard]] uint32_t GetTypeID() const noexcept override { return typeID; }
    /// Elements without a platform form stand as an empty string, so that the others keep their
    /// places: a property list has no null.
    [[nodiscard]] OrvPlatformObject CopyCocoaObject() const noexcept override;

    [[nodiscard]] size_t count() const noexcept { return _elements.size(); }
    /// Borrowed; null when `index` is not below the count.
    [[nodiscard]] OrvIBase* at(size_t index) const noexcept;
    /// Retains `object`; answers false, and wrote a line, when it is null or memory runs out.
    bool add(OrvIBase* object) noexcept;
    /// Writes a line when `object` is null, `index` beyond the count or memory short.
    void insert(OrvIBase* object, uint64_t index) noexcept;
    /// Does nothing when there is no such element.
    void removeAt(size_t index) noexcept;
    /// Removes the first element that compares equal to `object`.
    void remove(const OrvIBase* object) noexcept;
    /// Releases the elements from the first to the last.
    void removeAll() noexcept;
    /// Does nothing when there is no such element or no object.
    void replaceAt(OrvIBase* object, size_t index) noexcept;

  private:
    std::vector<OrvPtr<>> _elements;
};

/// Walks through objects. Kinds of enumerators differ in what they walk through.
class OrvEnumeratorImpl : public OrvCBase {
  public:
    /// The next object, borrowed, or null when there is none.
    virtual OrvIBase* NextObject() noexcept = 0;
    /// Goes back to the first object.
    virtual void Reset() noexcept = 0;
};

/// Walks through an array, which it keeps alive and which must not change meanwhile.
class OrvArrayImplObjectEnumerator final : public OrvEnumeratorImpl {
  public:
    static constexpr uint32_t typeID = 2;

    explicit OrvArrayImplObjectEnumerator(OrvArrayImpl* array) noexcept
        : _array(OrvPtr<OrvArrayImpl>::retaining(array)) {}

    [[nodiscard]] uint32_t GetTypeID() const noexcept override { return typeID; }
    OrvIBase* NextObject() noexcept override;
    void Reset() noexcept override { _cursor = 0; }

  private:
    OrvPtr<OrvArrayImpl> _array;
    size_t _cursor = 0; // index of the next element
};

} // namespace zelmora
