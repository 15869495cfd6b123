// What a disk holds after the power was cut: the least that it has promised.
#pragma once

#include "tests/support/system_calls.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace zelmora::test {

/// Remembers what was done beneath one folder while it observes, and tells what a cut at any moment
/// may leave. A file's bytes are safe once the file is synced. A name given, taken away or changed
/// is safe once its folder is synced; until then each of these may have reached the disk or not,
/// apart from the others; a rename is one of them, as every file system with a journal has it.
/// Syncing a file makes no name safe, although some file systems do.
class PowerCutModel final : public SystemCallObserver {
  public:
    /// What is beneath `root` now is safe.
    explicit PowerCutModel(std::string root);

    void after(const SystemCall& call, int64_t answer) override;

    /// The files that are left, by their path relative to the root; nullopt: bytes that were never
    /// synced, which may be anything.
    using Files = std::map<std::string, std::optional<std::string>>;

    /// How many things have been done so far; a cut can come after each.
    [[nodiscard]] size_t moments() const { return _events.size(); }
    /// Calls `check` with all that a cut after the first `moment` things may leave.
    void cut(size_t moment, const std::function<void(const Files&)>& check) const;

  private:
    using Object = uint64_t; ///< not to be mistaken for a later one of its inode; 0: not beneath
    struct Place {
        Object folder;
        std::string name;
        auto operator<=>(const Place&) const = default;
    };
    using Names = std::map<Place, Object>;
    using Contents = std::map<Object, std::string>; ///< of files
    enum class Kind { link, remove, rename, syncFile, syncFolder, syncAll };
    struct Event {
        Kind kind = Kind::link;
        Place place;
        Place to;          ///< of a rename
        Object object = 0; ///< what was linked or synced
        Contents contents; ///< of the files synced
    };

    Object newObject(uint64_t inode);
    [[nodiscard]] Object objectOf(int folder, const char* name) const;
    [[nodiscard]] Place placeOf(int folder, const char* name) const;
    [[nodiscard]] Contents contentsNow() const;
    static void apply(const Event& event, Names& names);
    static Files filesOf(Object folder, const std::string& prefix, const Names& names,
                         const Contents& contents);

    std::string _root;
    std::map<uint64_t, Object> _objects; ///< by inode
    Names _firstNames;
    Contents _firstContents;
    std::vector<Event> _events;
    Object _last = 0; ///< the root is 1
};

} // namespace zelmora::test
