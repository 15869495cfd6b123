#include "platform/defaults/user_defaults.h"

#include "platform/defaults/file_lock.h"
#include "platform/defaults/saved_settings.h"
#include "platform/text/path_string.h"
#include "platform/text/utf8.h"
#include "platform/threads/mutex.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <map>

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
    /// What the lock guards, beside the observers.
    struct Values {
        Layer thisRun;
        Layer saved; ///< the file's values with `unsaved` applied
        Layer registered;
        SettingChanges unsaved;

        std::string path;        ///< of the saved file; empty before load()
        bool mayReplace = false; ///< whether the file was read without a problem, or is missing

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
    };

    struct Registration {
        std::string key;
        std::shared_ptr<const Observer> observer;
    };

    /// Hands the effective value of `key`, null when there is none, to `read` under the lock.
    template<typename Read>
    auto read(std::string_view key, Read&& read) const EXCLUDES(mutex) {
        const ReaderLock lock(mutex);
        const auto* found = values.effectiveValue(key);
        return read(found ? found->get() : nullptr);
    }

    /// Hands the values to `mutation` under the lock, then tells the observers whose key reads
    /// differently.
    template<typename Mutation>
    void change(Mutation&& mutation) EXCLUDES(mutex) {
        std::vector<std::pair<ObserverID, ValuePointer>> watched;
        {
            const WriterLock lock(mutex);
            for (const auto& [id, registration] : observers)
                watched.emplace_back(id, values.valueOfKey(registration.key));
            mutation(values);
            std::erase_if(watched, [this](const auto& entry) REQUIRES(mutex) {
                const ValuePointer now = values.valueOfKey(observers.at(entry.first).key);
                return now == entry.second || (now && entry.second && *now == *entry.second);
            });
        }
        for (const auto& [id, before] : watched)
            notify(id);
    }

    /// Sets, or with null removes, a value of the saved layer; see the class on this run's layer.
    void write(std::string_view key, const ValuePointer& value) {
        change([&](Values& current) {
            const SettingChanges written{{std::string(key), value}};
            applyChanges(written, current.saved);
            current.unsaved.insert_or_assign(std::string(key), value);
            if (current.thisRun.contains(key))
                applyChanges(written, current.thisRun);
        });
    }

    /// An observer removed in the meantime is left out.
    void notify(ObserverID id) const EXCLUDES(mutex) {
        Registration registration;
        {
            const ReaderLock lock(mutex);
            const auto found = observers.find(id);
            if (found == observers.end())
                return;
            registration = found->second;
        }
        (*registration.observer)(registration.key);
    }

    std::span<const SettingKey> knownKeys; ///< never changes

    mutable SharedMutex mutex;
    Values values GUARDED_BY(mutex);
    std::map<ObserverID, Registration> observers GUARDED_BY(mutex);
    ObserverID lastObserver GUARDED_BY(mutex) = 0;
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
    const ReaderLock lock(_state->mutex);
    return _state->values.valueOfKey(key);
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
    _state->change([&](State::Values& values) { applyChanges(added, values.registered); });
}

void UserDefaults::setValueForThisRun(PropertyListValue value, std::string_view key) {
    auto shared = std::make_shared<PropertyListValue>(std::move(value));
    _state->change([&](State::Values& values) {
        values.thisRun.insert_or_assign(std::string(key), std::move(shared));
    });
}

UserDefaults::ObserverID UserDefaults::addObserver(std::string_view key, Observer observer) {
    auto shared = std::make_shared<const Observer>(std::move(observer));
    const WriterLock lock(_state->mutex);
    const ObserverID id = ++_state->lastObserver;
    _state->observers.emplace(id, State::Registration{std::string(key), std::move(shared)});
    return id;
}

void UserDefaults::removeObserver(ObserverID observer) {
    const WriterLock lock(_state->mutex);
    _state->observers.erase(observer);
}

std::vector<std::string> UserDefaults::load(FileManager& files, const std::string& path) {
    SavedSettings file = readSavedSettings(files, path, _state->knownKeys);
    _state->change([&](State::Values& values) {
        values.saved = layerOf(file.values);
        values.unsaved.clear();
        values.path = path;
        values.mayReplace = file.problems.empty();
    });
    return std::move(file.problems);
}

Status UserDefaults::save(FileManager& files) {
    std::string path;
    {
        const ReaderLock lock(_state->mutex);
        if (_state->values.unsaved.empty())
            return {};
        path = _state->values.path;
        if (!_state->values.mayReplace) {
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
        const ReaderLock lock(_state->mutex);
        written = _state->values.unsaved;
    }
    const auto merged = mergeIntoSavedSettings(files, path, _state->knownKeys, written);
    if (!merged)
        return merged.error();
    _state->change([&](State::Values& values) {
        // What was set again while the file was written is still to be saved.
        std::erase_if(values.unsaved, [&](const auto& entry) {
            const auto found = written.find(entry.first);
            return found != written.end() && found->second == entry.second;
        });
        values.saved = layerOf(*merged);
        applyChanges(values.unsaved, values.saved);
    });
    return {};
}

} // namespace zelmora::platform
