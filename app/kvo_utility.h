// Observing the values of the elements of a list. Main thread only.
#pragma once

#include "platform/defaults/property_list.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zelmora {

/// Told of changes of values it was registered for.
class ValueObserver {
  public:
    virtual ~ValueObserver() = default;
    /// `keyPath` has a new value. `context` is what was given at the registration.
    virtual void observeValueForKeyPath(std::string_view keyPath, const void* context) = 0;
};

/// A dictionary that tells its observers when a value is set.
class ObservableDictionary {
  public:
    explicit ObservableDictionary(platform::PropertyListDictionary entries)
        : _entries(std::move(entries)) {}

    [[nodiscard]] const platform::PropertyListDictionary& entries() const { return _entries; }
    /// The string under `key`; empty when there is none.
    [[nodiscard]] std::string stringForKey(std::string_view key) const;
    /// Sets a value, then tells the observers of `key`.
    void setObject(platform::PropertyListValue value, std::string_view key);

    /// `observer` is borrowed, until it is removed.
    void addObserver(ValueObserver& observer, std::string_view key, const void* context);
    /// NO when the observer was not registered for `key`.
    bool removeObserver(const ValueObserver& observer, std::string_view key);

  private:
    struct Registration {
        ValueObserver* observer;
        std::string key;
        const void* context;
    };

    platform::PropertyListDictionary _entries;
    std::vector<Registration> _registrations;
};

using ObservableArray = std::vector<std::shared_ptr<ObservableDictionary>>;

/// Registers and removes an observer of one key with every element of a list.
class KVOUtility {
  public:
    static void registerValueObserver(ValueObserver& observer, const ObservableArray& array,
                                      std::string_view modelKey, const void* context);
    /// An element with which the observer was not registered is passed over.
    static void removeValueObserver(const ValueObserver& observer, const ObservableArray& array,
                                    std::string_view modelKey);
};

} // namespace zelmora
