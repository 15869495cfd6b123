// The power goes at every moment of a backup and of the conversions after it: whatever the disk
// kept, each text is there, as it was or converted.

#include "engine/backup_manager.h"
#include "engine/document_controller.h"
#include "engine/settings.h"
#include "engine_fixture.h"
#include "tests/support/system_calls.h"

#include <fcntl.h>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <sys/stat.h>

namespace zelmora::test {
namespace {

namespace fs = std::filesystem;

uint64_t inodeOf(int folder, const char* name) {
    struct stat status = {};
    return ::fstatat(folder, name, &status, AT_EMPTY_PATH | AT_SYMLINK_NOFOLLOW) == 0
               ? status.st_ino
               : 0;
}

/// Remembers what was done beneath one folder while it observes, and tells what a cut at any moment
/// may leave: the least that the disk has promised. A file's bytes are safe once the file is
/// synced. A name given, taken away or changed is safe once its folder is synced; until then each
/// of these may have reached the disk or not, apart from the others; a rename is one of them, as
/// every file system with a journal has it. Syncing a file makes no name safe, although some file
/// systems do.
class PowerCutModel final : public SystemCallObserver {
  public:
    /// What is beneath `root` now is safe.
    explicit PowerCutModel(std::string root) : _root(std::move(root)) {
        newObject(inodeOf(AT_FDCWD, _root.c_str()));
        for (const auto& entry : fs::recursive_directory_iterator(_root)) {
            const Place place = placeOf(AT_FDCWD, entry.path().c_str());
            _firstNames[place] = newObject(inodeOf(AT_FDCWD, entry.path().c_str()));
        }
        _firstContents = contentsNow();
    }

    void after(const SystemCall& call, int64_t answer) override {
        Event event{.place = {}, .to = {}, .contents = {}};
        if (call.kind == CallKind::open) {
            if ((call.flags & (O_CREAT | (O_TMPFILE & ~O_DIRECTORY))) == 0)
                return;
            event.object = newObject(inodeOf(static_cast<int>(answer), ""));
            if ((call.flags & O_CREAT) == 0)
                return; // it has no name yet
        } else if (call.kind == CallKind::folder) {
            event.object = newObject(inodeOf(call.file, call.name));
        } else if (call.kind == CallKind::link) {
            event.object = objectOf(call.toFolder, call.toName);
        } else if (call.kind == CallKind::sync) {
            event.object = objectOf(call.file, "");
            if (event.object == 0)
                return;
            const auto file = "/proc/self/fd/" + std::to_string(call.file);
            if (call.function == std::string("syncfs")) {
                event.kind = Kind::syncAll;
                event.contents = contentsNow();
            } else if (fs::is_directory(file)) {
                event.kind = Kind::syncFolder;
            } else {
                event.kind = Kind::syncFile;
                event.contents[event.object] = readFile(file);
            }
            _events.push_back(std::move(event));
            return;
        } else if (call.kind != CallKind::rename && call.kind != CallKind::remove) {
            return;
        }
        // A name was given or taken away.
        if (call.kind != CallKind::link)
            event.place = placeOf(call.file, call.name);
        if (call.toName != nullptr)
            event.to = placeOf(call.toFolder, call.toName);
        if (call.kind == CallKind::link)
            event.place = event.to;
        event.kind = call.kind == CallKind::rename   ? Kind::rename
                     : call.kind == CallKind::remove ? Kind::remove
                                                     : Kind::link;
        if (event.place.folder != 0)
            _events.push_back(std::move(event));
    }

    /// The files that are left, by their path relative to the root; nullopt: bytes that were never
    /// synced, which may be anything.
    using Files = std::map<std::string, std::optional<std::string>>;

    /// How many things have been done so far; a cut can come after each.
    [[nodiscard]] size_t moments() const { return _events.size(); }
    /// Calls `check` with all that a cut after the first `moment` things may leave.
    void cut(size_t moment, const std::function<void(const Files&)>& check) const {
        Names names = _firstNames;
        Contents contents = _firstContents;
        std::vector<const Event*> pending;
        for (size_t i = 0; i < moment; ++i) {
            const Event& event = _events[i];
            if (event.kind < Kind::syncFile) {
                pending.push_back(&event);
                continue;
            }
            for (const auto& [object, text] : event.contents)
                contents[object] = text;
            std::erase_if(pending, [&](const Event* each) {
                const bool isInFolder =
                    each->place.folder == event.object || each->to.folder == event.object;
                const bool isSafe =
                    event.kind == Kind::syncAll || (event.kind == Kind::syncFolder && isInFolder);
                if (isSafe)
                    apply(*each, names);
                return isSafe;
            });
        }
        for (uint64_t chosen = 0; chosen >> pending.size() == 0; ++chosen) {
            Names left = names;
            for (size_t i = 0; i < pending.size(); ++i) {
                if ((chosen >> i & 1) != 0)
                    apply(*pending[i], left);
            }
            check(filesOf(1, "", left, contents));
        }
    }

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

    Object newObject(uint64_t inode) { return _objects[inode] = ++_last; }

    Object objectOf(int folder, const char* name) const {
        const auto known = _objects.find(inodeOf(folder, name));
        return known == _objects.end() ? 0 : known->second;
    }

    Place placeOf(int folder, const char* name) const {
        const fs::path path(name);
        const auto parent = path.has_parent_path() ? path.parent_path() : fs::path(".");
        return {objectOf(folder, parent.c_str()), path.filename()};
    }

    [[nodiscard]] Contents contentsNow() const {
        Contents contents;
        for (const auto& entry : fs::recursive_directory_iterator(_root)) {
            if (entry.is_regular_file())
                contents[objectOf(AT_FDCWD, entry.path().c_str())] = readFile(entry.path());
        }
        return contents;
    }

    static void apply(const Event& event, Names& names) {
        if (event.kind == Kind::link) {
            names[event.place] = event.object;
        } else if (const auto named = names.extract(event.place); named) {
            if (event.kind == Kind::rename)
                names[event.to] = named.mapped();
        }
    }

    static Files filesOf(Object folder, const std::string& prefix, const Names& names,
                         const Contents& contents) {
        Files files;
        for (auto each = names.lower_bound({folder, ""});
             each != names.end() && each->first.folder == folder; ++each) {
            const auto& [place, object] = *each;
            files.merge(filesOf(object, prefix + place.name + "/", names, contents));
            const auto known = contents.find(object);
            files[prefix + place.name] =
                known == contents.end() ? std::nullopt : std::optional(known->second);
        }
        return files;
    }

    std::string _root;
    std::map<uint64_t, Object> _objects; ///< by inode
    Names _firstNames;
    Contents _firstContents;
    std::vector<Event> _events;
    Object _last = 0; ///< the root is 1
};

const Items names = {"a.txt", "b.txt", "sub/c.txt"};

std::string oldText(const std::string& name) {
    return name + " \x95\x5c\n";
}
std::string newText(const std::string& name) {
    return name + " \xe8\xa1\xa8\n";
}

class PowerCutTest : public EngineTest {
  protected:
    PowerCutTest() {
        for (const auto& name : names)
            folder.writeFile("docs/" + name, oldText(name));
        defaults.setBool(true, settings::autoBackup);
        defaults.setObject(folder / "new/backup", settings::backupDataDir);
    }
    /// Whether each text is there, and nothing else under these names.
    void expectEveryText(const PowerCutModel::Files& left) const {
        for (const auto& name : names) {
            const auto own = "docs/" + name;
            const auto base = own.substr(0, own.size() - 4);
            size_t found = 0;
            for (const auto& each : std::set{own, base + extension, base + "#0.txt"}) {
                if (!left.contains(each))
                    continue;
                // Under the source's own name, the old text may be, too.
                const auto& text = left.at(each);
                const bool isOld = each == own && text == oldText(name);
                const bool isNew = (each != own || extension == ".txt") && text == newText(name);
                EXPECT_TRUE(isOld || isNew) << each;
                ++found;
            }
            EXPECT_GT(found, 0U) << name << " is gone";
        }
    }
    static void expectBackup(const PowerCutModel::Files& left) {
        for (const auto& name : names) {
            const auto copy = left.find("new/backup/docs/" + name);
            EXPECT_TRUE(copy != left.end() && copy->second == oldText(name)) << name;
        }
    }

    /// Runs the batch and cuts it everywhere.
    void cutEverywhere();

    std::string extension = ".txt"; ///< that a converted file gets
};

void PowerCutTest::cutEverywhere() {
    PowerCutModel model(folder.path());
    BackupManager backups(services());
    ZelDocumentController controller(services());
    size_t backedUp = 0;
    {
        const ObservedSystemCalls observed(model);
        ASSERT_TRUE(backups.backupPath(folder / "docs"));
        backedUp = model.moments();
        for (const auto& name : names)
            controller.doConvertProcess(folder / ("docs/" + name));
    }
    ASSERT_EQ(controller.convertedCount(), names.size());
    size_t outcomes = 0;
    for (size_t moment = 0; moment <= model.moments() && !HasFailure(); ++moment) {
        SCOPED_TRACE(moment);
        model.cut(moment, [&](const PowerCutModel::Files& left) {
            ++outcomes;
            expectEveryText(left);
            if (moment >= backedUp)
                expectBackup(left);
        });
    }
    EXPECT_GT(model.moments(), backedUp + 3 * names.size());
    EXPECT_GT(outcomes, model.moments()); // there were moments at which the disk had a choice
}

TEST_F(PowerCutTest, LosesNothing) {
    cutEverywhere();
}

TEST_F(PowerCutTest, LosesNothingWhereNamesChange) {
    extension = ".html";
    defaults.setInteger(1, settings::convertExtension);
    defaults.setObject(std::string("html"), settings::extensionOfDstFiles);
    cutEverywhere();
}

} // namespace
} // namespace zelmora::test
