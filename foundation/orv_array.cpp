#include "foundation/orv_array_impl.h"
#include "foundation/orv_collections.h"

#include <algorithm>

namespace zelmora {

OrvPtr<OrvArrayImpl> OrvArrayImpl::create(uint64_t capacity) noexcept {
    auto array = makeObject<OrvArrayImpl>(capacity);
    if (!array)
        OrvLog(L"Couldn't allocate the instance of the OrvArray. (capacity=%d)",
               static_cast<int>(capacity));
    return array;
}

OrvPlatformObject OrvArrayImpl::CopyCocoaObject() const noexcept {
    return platformObject([this] {
        platform::PropertyListArray values;
        values.reserve(_elements.size());
        for (const OrvPtr<>& element : _elements)
            values.push_back(element->CopyCocoaObject().value_or(std::string()));
        return values;
    });
}

OrvIBase* OrvArrayImpl::at(size_t index) const noexcept {
    return index < _elements.size() ? _elements[index].get() : nullptr;
}

bool OrvArrayImpl::add(OrvIBase* object) noexcept {
    if (!object) {
        OrvLog(L"Add NULL object into the array.");
        return false;
    }
    if (allocating([&] { _elements.push_back(OrvPtr<>::retaining(object)); }))
        return true;
    OrvLog(L"Failed adding the object into the array.");
    return false;
}

void OrvArrayImpl::insert(OrvIBase* object, uint64_t index) noexcept {
    if (!object) {
        OrvLog(L"Add NULL object into the array.");
        return;
    }
    if (index > _elements.size()) {
        OrvLog(L"The index(%d) is out of range.", static_cast<int>(index));
        return;
    }
    // The reference is taken ahead of the insertion and given back when that fails.
    const auto position = _elements.begin() + static_cast<std::ptrdiff_t>(index);
    if (!allocating([&] { _elements.insert(position, OrvPtr<>::retaining(object)); }))
        OrvLog(L"Failed inserting the object.");
}

void OrvArrayImpl::removeAt(size_t index) noexcept {
    if (index < _elements.size())
        _elements.erase(_elements.begin() + static_cast<std::ptrdiff_t>(index));
}

void OrvArrayImpl::remove(const OrvIBase* object) noexcept {
    const auto isEqual = [object](const OrvPtr<>& element) {
        return element->Compare(object) == 0;
    };
    const auto found = std::find_if(_elements.begin(), _elements.end(), isEqual);
    if (found != _elements.end())
        _elements.erase(found);
}

void OrvArrayImpl::removeAll() noexcept {
    // First to last, which a vector does not promise.
    for (OrvPtr<>& element : _elements)
        element = {};
    _elements.clear();
}

void OrvArrayImpl::replaceAt(OrvIBase* object, size_t index) noexcept {
    if (object && index < _elements.size())
        _elements[index] = OrvPtr<>::retaining(object);
}

OrvIBase* OrvArrayImplObjectEnumerator::NextObject() noexcept {
    return _cursor < _array->count() ? _array->at(_cursor++) : nullptr;
}

OrvIBase* OrvArrayCreate(uint64_t capacity) noexcept {
    return OrvArrayImpl::create(capacity).release();
}

OrvIBase* OrvArrayCreateWithObjects(OrvIBase* const* objects, uint64_t count) noexcept {
    auto array = OrvArrayImpl::create(count);
    for (uint64_t i = 0; array && i < count; ++i) {
        if (objects[i] && !array->add(objects[i]))
            return nullptr;
    }
    return array.release();
}

uint64_t OrvArrayGetCount(const OrvIBase* array) noexcept {
    const auto* self = objectCast<OrvArrayImpl>(array);
    return self ? self->count() : 0;
}

OrvIBase* OrvArrayGetObjectAtIndex(const OrvIBase* array, uint64_t index) noexcept {
    const auto* self = objectCast<OrvArrayImpl>(array);
    return self ? self->at(index) : nullptr;
}

void OrvArrayAddObject(OrvIBase* array, OrvIBase* object) noexcept {
    if (auto* self = objectCast<OrvArrayImpl>(array))
        self->add(object);
}

void OrvArrayInsertObjectAtIndex(OrvIBase* array, OrvIBase* object, uint64_t index) noexcept {
    if (auto* self = objectCast<OrvArrayImpl>(array))
        self->insert(object, index);
}

void OrvArrayRemoveObjectAtIndex(OrvIBase* array, uint64_t index) noexcept {
    if (auto* self = objectCast<OrvArrayImpl>(array))
        self->removeAt(index);
}

void OrvArrayRemoveObject(OrvIBase* array, const OrvIBase* object) noexcept {
    if (auto* self = objectCast<OrvArrayImpl>(array))
        self->remove(object);
}

void OrvArrayRemoveAllObjects(OrvIBase* array) noexcept {
    if (auto* self = objectCast<OrvArrayImpl>(array))
        self->removeAll();
}

void OrvArrayReplaceObjectAtIndex(OrvIBase* array, OrvIBase* object, uint64_t index) noexcept {
    if (auto* self = objectCast<OrvArrayImpl>(array))
        self->replaceAt(object, index);
}

OrvIBase* OrvArrayCreateEnumerator(OrvIBase* array) noexcept {
    auto* self = objectCast<OrvArrayImpl>(array);
    if (!self)
        return nullptr;
    auto enumerator = makeObject<OrvArrayImplObjectEnumerator>(self);
    if (!enumerator)
        OrvLog(L"Couldn't allocate the instance of the OrvEnumerator for the array.");
    return enumerator.release();
}

OrvIBase* OrvEnumeratorGetNextObject(OrvIBase* enumerator) noexcept {
    auto* self = objectCast<OrvEnumeratorImpl>(enumerator);
    return self ? self->NextObject() : nullptr;
}

} // namespace zelmora
