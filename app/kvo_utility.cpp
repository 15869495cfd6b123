#include "app/kvo_utility.h"

namespace zelmora {

std::string ObservableDictionary::stringForKey(std::string_view key) const {
    const auto found = _entries.find(key);
    const auto* text = found == _entries.end() ? nullptr : found->second.as<std::string>();
    return text ? *text : std::string();
}

void ObservableDictionary::setObject(platform::PropertyListValue value, std::string_view key) {
    _entries.insert_or_assign(std::string(key), std::move(value));
    // A copy: an observer may register or remove observers.
    for (const auto& registration : std::vector(_registrations)) {
        if (registration.key == key)
            registration.observer->observeValueForKeyPath(key, registration.context);
    }
}

void ObservableDictionary::addObserver(ValueObserver& observer, std::string_view key,
                                       const void* context) {
    _registrations.push_back({&observer, std::string(key), context});
}

bool ObservableDictionary::removeObserver(const ValueObserver& observer, std::string_view key) {
    return std::erase_if(_registrations, [&](const Registration& registration) {
               return registration.observer == &observer && registration.key == key;
           }) > 0;
}

void KVOUtility::registerValueObserver(ValueObserver& observer, const ObservableArray& array,
                                       std::string_view modelKey, const void* context) {
    for (const auto& element : array)
        element->addObserver(observer, modelKey, context);
}

void KVOUtility::removeValueObserver(const ValueObserver& observer, const ObservableArray& array,
                                     std::string_view modelKey) {
    for (const auto& element : array)
        element->removeObserver(observer, modelKey);
}

} // namespace zelmora
