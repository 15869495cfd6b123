#include "platform/defaults/user_defaults.h"

#include "platform/defaults/file_lock.h"
#include "platform/defaults/saved_settings.h"
#include "platform/text/path_string.h"
#include "platform/text/utf8.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <map>
#include <mutex>
#include <shared_mutex>

namespace zelmora::platform {

namespace {

/// Keys and their values; shared, so that a reader can go on with a value that was replaced.
using Layer = std::map<std::string, ValuePointer, std::less<>>;

Layer layerOf(const PropertyListDictionary& values) {
    Layer layer;
    for (const auto& [key, value] : values)
        layer.emplace_hint(layer.end(), key, std::make_shared<PropertyListValue>(value));
    return layer;
}

void applyChanges(const SettingChanges& changes, Layer& layer) {
    for (const auto& [key, value] : changes) {
        if (value)
            layer.insert_or_assign(key, value);
        else
            layer.erase(key);
    }
}

int64_t integerOfReal(double real) {
    constexpr double kLimit = 9223372036854775808.0; // 2 to the power of 63
    return real >= -kLimit && real < kLimit ? static_cast<int64_t>(real) : 0;
}

int64_t integerOf(const PropertyListValue& value) {
    if (const auto* integer = value.as<int64_t>())
        return *integer;
    if (const auto* boolean = value.as<bool>())
        return *boolean ? 1 : 0;
    if (const auto* real = value.as<double>())
        return integerOfReal(*real);
    if (const auto* text = value.as<std::string>())
        return integerFromDecimal(*text).value_or(0);
    return 0;
}

bool boolOf(const PropertyListValue& value) {
    if (const auto* real = value.as<double>())
        return *real != 0;
    if (const auto* text = value.as<std::string>(); text && (*text == "YES" || *text == "true"))
        return true;
    return integerOf(value) != 0;
}

std::optional<std::string> stringOf(const PropertyListValue& value) {
    if (const auto* text = value.as<std::string>())
        return *text;
    if (value.as<int64_t>() || value.as<bool>())
        return std::to_string(integerOf(value));
    if (const auto* real = value.as<double>()) {
        char digits[32]; // the shortest form of a double takes 24
        return std::string(digits, std::to_chars(digits, std::end(digits), *real).ptr);
    }
    return std::nullopt;
}

} // namespace

struct UserDefaults::State {
    struct Registration {
        std::string key;
        std::shared_ptr<const Observer> observer;
    };

    /// Hands the effective value of `key`, null when there is none, to `read` under the lock.
    template<typename Read>
    auto read(std::string_view key, Read&& read) const {
        const std::shared_lock lock(mutex);
        const auto* found = effectiveValue(key);
        return read(found ? found->get() : nullptr);
    }

    /// Runs `mutation` under the lock, then tells the observers whose key reads differently.
    template<typename Mutation>
    void change(Mutation&& mutation) {
        std::vector<std::pair<ObserverID, ValuePointer>> watched;
        {
            const std::lock_guard lock(mutex);
            for (const auto& [id, registration] : observers)
                watched.emplace_back(id, valueOfKey(registration.key));
            mutation();
            std::erase_if(watched, [this](const auto& entry) {
                const ValuePointer now = valueOfKey(observers.at(entry.first).key);
                return now == entry.second || (now && entry.second && *now == *entry.second);
            });
        }
        for (const auto& [id, before] : watched)
            notify(id);
    }

    /// Sets, or with null removes, a value of the saved layer; see the class on this run's layer.
    void write(std::string_view key, const ValuePointer& value) {
        change([&] {
            const SettingChanges written{{std::string(key), value}};
            applyChanges(written, saved);
            unsaved.insert_or_assign(std::string(key), value);
            if (thisRun.contains(key))
                applyChanges(written, thisRun);
        });
    }

    const ValuePointer* effectiveValue(std::string_view key) const {
        for (const Layer* layer : {&thisRun, &saved, &registered}) {
            if (const auto found = layer->find(key); found != layer->end())
                return &found->second;
        }
        return nullptr;
    }

    ValuePointer valueOfKey(std::string_view key) const {
        const auto* value = effectiveValue(key);
        return value ? *value : nullptr;
    }

    /// REQUIRES: no lock held. An observer removed in the meantime is left out.
    void notify(ObserverID id) const {
        Registration registration;
        {
            const std::shared_lock lock(mutex);
            const auto found = observers.find(id);
            if (found == observers.end())
                return;
            registration = found->second;
        }
        (*registration.observer)(registration.key);
    }

    mutable std::shared_mutex mutex; ///< guards everything below

    Layer thisRun;
    Layer saved; ///< the file's values with `unsaved` applied
    Layer registered;
    SettingChanges unsaved;

    std::string path;        ///< of the saved file; empty before load()
    bool mayReplace = false; ///< whether the file was read without a problem, or is missing

    std::span<const SettingKey> knownKeys;
    std::map<ObserverID, Registration> observers;
    ObserverID lastObserver = 0;
};

UserDefaults::UserDefaults(std::span<const SettingKey> knownKeys)
    : _state(std::make_unique<State>()) {
    _state->knownKeys = knownKeys;
}

UserDefaults::~UserDefaults() = default;

int64_t UserDefaults::integerForKey(std::string_view key) const {
    return _state->read(key, [](const auto* value) { return value ? integerOf(*value) : 0; });
}

bool UserDefaults::boolForKey(std::string_view key) const {
    return _state->read(key, [](const auto* value) { return value && boolOf(*value); });
}

std::optional<std::string> UserDefaults::stringForKey(std::string_view key) const {
    return _state->read(key,
                        [](const auto* value) { return value ? stringOf(*value) : std::nullopt; });
}

std::optional<PropertyListArray> UserDefaults::arrayForKey(std::string_view key) const {
    const auto value = sharedObjectForKey(key);
    const auto* array = value ? value->as<PropertyListArray>() : nullptr;
    return array ? std::optional(*array) : std::nullopt;
}

std::optional<PropertyListValue> UserDefaults::objectForKey(std::string_view key) const {
    const auto value = sharedObjectForKey(key);
    return value ? std::optional(*value) : std::nullopt;
}

std::shared_ptr<const PropertyListValue>
UserDefaults::sharedObjectForKey(std::string_view key) const {
    const std::shared_lock lock(_state->mutex);
    return _state->valueOfKey(key);
}

void UserDefaults::setBool(bool value, std::string_view key) {
    setObject(value, key);
}

void UserDefaults::setInteger(int64_t value, std::string_view key) {
    setObject(value, key);
}

void UserDefaults::setObject(PropertyListValue value, std::string_view key) {
    _state->write(key, std::make_shared<PropertyListValue>(std::move(value)));
}

void UserDefaults::removeObjectForKey(std::string_view key) {
    _state->write(key, nullptr);
}

void UserDefaults::registerDefaults(const PropertyListDictionary& defaults) {
    const Layer added = layerOf(defaults);
    _state->change([&] { applyChanges(added, _state->registered); });
}

void UserDefaults::setValueForThisRun(PropertyListValue value, std::string_view key) {
    auto shared = std::make_shared<PropertyListValue>(std::move(value));
    _state->change([&] { _state->thisRun.insert_or_assign(std::string(key), std::move(shared)); });
}

UserDefaults::ObserverID UserDefaults::addObserver(std::string_view key, Observer observer) {
    auto shared = std::make_shared<const Observer>(std::move(observer));
    const std::lock_guard lock(_state->mutex);
    const ObserverID id = ++_state->lastObserver;
    _state->observers.emplace(id, State::Registration{std::string(key), std::move(shared)});
    return id;
}

void UserDefaults::removeObserver(ObserverID observer) {
    const std::lock_guard lock(_state->mutex);
    _state->observers.erase(observer);
}

std::vector<std::string> UserDefaults::load(FileManager& files, const std::string& path) {
    SavedSettings file = readSavedSettings(files, path, _state->knownKeys);
    _state->change([&] {
        _state->saved = layerOf(file.values);
        _state->unsaved.clear();
        _state->path = path;
        _state->mayReplace = file.problems.empty();
    });
    return std::move(file.problems);
}

Status UserDefaults::save(FileManager& files) {
    std::string path;
    {
        const std::shared_lock lock(_state->mutex);
        if (_state->unsaved.empty())
            return {};
        path = _state->path;
        if (!_state->mayReplace) {
            return Error{EINVAL,
                         displayPath(path) + ": not saved, to keep a file that could not be read"};
        }
    }
    if (auto status = files.createDirectoryAtPath(deletingLastPathComponent(path)); !status)
        return status;
    const auto fileLock = FileLock::acquire(path + ".lock");
    if (!fileLock)
        return fileLock.error();
    SettingChanges written;
    {
        const std::shared_lock lock(_state->mutex);
        written = _state->unsaved;
    }
    const auto merged = mergeIntoSavedSettings(files, path, _state->knownKeys, written);
    if (!merged)
        return merged.error();
    _state->change([&] {
        // What was set again while the file was written is still to be saved.
        std::erase_if(_state->unsaved, [&](const auto& entry) {
            const auto found = written.find(entry.first);
            return found != written.end() && found->second == entry.second;
        });
        _state->saved = layerOf(*merged);
        applyChanges(_state->unsaved, _state->saved);
    });
    return {};
}

} // namespace zelmora::platform
