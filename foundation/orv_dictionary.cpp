#include "foundation/orv_array_impl.h"
#include "foundation/orv_collections.h"
#include "foundation/orv_dictionary_impl.h"
#include "foundation/orv_string_impl.h"
#include "foundation/wide_text.h"

namespace zelmora {

OrvDictionaryImpl::~OrvDictionaryImpl() {
    // In key order, which a map does not promise.
    for (auto& [key, value] : _entries)
        value = {};
}

OrvPtr<OrvDictionaryImpl> OrvDictionaryImpl::create() noexcept {
    auto dictionary = makeObject<OrvDictionaryImpl>();
    if (!dictionary)
        OrvLog(L"Could not allocate the dictionary.");
    return dictionary;
}

OrvPlatformObject OrvDictionaryImpl::CopyCocoaObject() const noexcept {
    return platformObject([this] {
        platform::PropertyListDictionary values;
        for (const auto& [key, value] : _entries)
            values.emplace(utf8FromWide(key), value->CopyCocoaObject().value_or(std::string()));
        return values;
    });
}

OrvIBase* OrvDictionaryImpl::value(std::wstring_view key) const noexcept {
    const auto entry = _entries.find(key);
    return entry == _entries.end() ? nullptr : entry->second.get();
}

bool OrvDictionaryImpl::setValue(OrvIBase* value, const wchar_t* key) noexcept {
    if (!value || !key) {
        OrvLog(value ? L"Attempt to insert the value with NULL key."
                     : L"Attempt to insert NULL value into the dictionary.");
        return false;
    }
    Entries::node_type old; // alive to the end: it may own `value`, and `key` may be its text
    if (const auto entry = _entries.find(std::wstring_view(key)); entry != _entries.end()) {
        if (entry->second.get() == value)
            return true; // retaining it again would count one owner twice
        old = _entries.extract(entry);
    }
    if (allocating([&] { _entries.emplace(key, OrvPtr<>::retaining(value)); }))
        return true;
    OrvLog(L"The dictionary could not insert the value.");
    return false;
}

void OrvDictionaryImpl::removeValue(std::wstring_view key) noexcept {
    if (const auto entry = _entries.find(key); entry != _entries.end())
        _entries.erase(entry);
}

OrvIBase* OrvDictionaryCreate() noexcept {
    return OrvDictionaryImpl::create().release();
}

void OrvDictionarySetValue(OrvIBase* dictionary, OrvIBase* value, const wchar_t* key) noexcept {
    if (auto* self = objectCast<OrvDictionaryImpl>(dictionary))
        self->setValue(value, key);
}

OrvIBase* OrvDictionaryGetValue(const OrvIBase* dictionary, const wchar_t* key) noexcept {
    const auto* self = objectCast<OrvDictionaryImpl>(dictionary);
    return self && key ? self->value(key) : nullptr;
}

void OrvDictionaryRemoveValue(OrvIBase* dictionary, const wchar_t* key) noexcept {
    auto* self = objectCast<OrvDictionaryImpl>(dictionary);
    if (self && key)
        self->removeValue(key);
}

void OrvDictionaryAddEntries(OrvIBase* dictionary, const OrvIBase* other) noexcept {
    auto* self = objectCast<OrvDictionaryImpl>(dictionary);
    const auto* added = objectCast<OrvDictionaryImpl>(other);
    if (!self || !added)
        return;
    for (const auto& [key, value] : added->entries())
        self->setValue(value.get(), key.c_str());
}

OrvIBase* OrvDictionaryCreateKeys(const OrvIBase* dictionary) noexcept {
    const auto* self = objectCast<OrvDictionaryImpl>(dictionary);
    auto keys = self ? OrvArrayImpl::create(self->entries().size()) : OrvPtr<OrvArrayImpl>();
    if (!keys)
        return nullptr;
    for (const auto& [key, value] : self->entries()) {
        const auto string = makeString(key);
        if (!string || !keys->add(string.get()))
            return nullptr;
    }
    return keys.release();
}

OrvIBase* OrvDictionaryCreateValues(const OrvIBase* dictionary) noexcept {
    const auto* self = objectCast<OrvDictionaryImpl>(dictionary);
    auto values = self ? OrvArrayImpl::create(self->entries().size()) : OrvPtr<OrvArrayImpl>();
    if (!values)
        return nullptr;
    for (const auto& [key, value] : self->entries()) {
        if (!values->add(value.get()))
            return nullptr;
    }
    return values.release();
}

} // namespace zelmora
