// The settings store.
#pragma once

#include "platform/defaults/property_list.h"
#include "platform/files/file_manager.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zelmora::platform {

/// The type that a setting's value must have to be accepted from a saved file.
enum class SettingType : int32_t { boolean, integer, string, extensionList };

/// A key and the type of its value.
struct SettingKey {
    std::string_view name;
    SettingType type;
};

/// Whether `value` is of `type`; an extension list is an array of dictionaries that each hold a
/// string under "nameExtension".
[[nodiscard]] bool isValueOfType(const PropertyListValue& value, SettingType type);

/// Values under string keys in three layers; a read takes the first that has the key: this run's
/// values (command line), saved values (property list file), registered defaults.
///
/// Safe to read and write from several threads at once; each read sees the old or the new value of
/// its key. Nothing is written to disk but by save().
class UserDefaults {
  public:
    /// `knownKeys` is what load() checks saved values against; it must outlive the store.
    explicit UserDefaults(std::span<const SettingKey> knownKeys = {});
    ~UserDefaults();
    UserDefaults(const UserDefaults&) = delete;
    UserDefaults& operator=(const UserDefaults&) = delete;

    // Reads. A key without a value reads as 0, NO or nullopt, and so does a value that cannot be
    // turned into the type asked for. Numbers, booleans and strings of digits are turned into one
    // another ("1" reads as 1 and as YES; "YES" and "true" as YES).

    [[nodiscard]] int64_t integerForKey(std::string_view key) const;
    [[nodiscard]] bool boolForKey(std::string_view key) const;
    /// UTF-8; for a path, the file system's own bytes.
    [[nodiscard]] std::optional<std::string> stringForKey(std::string_view key) const;
    [[nodiscard]] std::optional<PropertyListArray> arrayForKey(std::string_view key) const;
    [[nodiscard]] std::optional<PropertyListValue> objectForKey(std::string_view key) const;
    /// The same without a copy, null when there is none: for lists that are read for each file.
    /// Later writes replace the value and leave this one as it is.
    [[nodiscard]] std::shared_ptr<const PropertyListValue>
    sharedObjectForKey(std::string_view key) const;

    // Writes to the saved layer, and to this run's layer where that has the key, so that a write
    // is always what the next read sees.

    void setBool(bool value, std::string_view key);
    void setInteger(int64_t value, std::string_view key);
    void setObject(PropertyListValue value, std::string_view key);
    void removeObjectForKey(std::string_view key);

    /// Adds fallback values, used where no other layer has the key; never saved.
    void registerDefaults(const PropertyListDictionary& defaults);
    /// Sets a value for this run only, above everything saved; never saved.
    void setValueForThisRun(PropertyListValue value, std::string_view key);

    // Observing.

    using Observer = std::function<void(std::string_view key)>;
    using ObserverID = uint64_t;
    /// Calls `observer` after each change of `key`'s effective value, on the thread that made it,
    /// with no lock held.
    ObserverID addObserver(std::string_view key, Observer observer);
    /// The observer is not called again once this has returned, except by a call in progress on
    /// another thread.
    void removeObserver(ObserverID observer);

    // The saved file.

    /// Reads the saved layer from the XML property list at `path`, an absolute path; a missing file
    /// is an empty layer. Changes not yet saved are dropped. Answers one message for each problem,
    /// naming the file and, for a value of the wrong type, the key: such a value is left out, and
    /// what is not a property list leaves the whole layer empty. After any problem save() refuses,
    /// so that the file is not overwritten.
    std::vector<std::string> load(FileManager& files, const std::string& path);

    /// Writes the changes made since load() or the last save() to the saved file: under a lock file
    /// ("`path`.lock") it reads the file anew, applies the keys set and removed here, and replaces
    /// it, so that another process's changes to other keys survive, and are what this store then
    /// reads. Its folder is made when missing. Without a change nothing is written. On failure,
    /// also when the file has become one that load() would complain of, it stays as it was and the
    /// changes stay to be saved. A known string that is no text is saved as data, and load() makes
    /// it a string again. REQUIRES: load() was called.
    Status save(FileManager& files);

  private:
    struct State;
    std::unique_ptr<State> _state;
};

} // namespace zelmora::platform
