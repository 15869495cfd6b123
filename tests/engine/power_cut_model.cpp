#include "power_cut_model.h"

#include "tests/support/temporary_directory.h"

#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>

namespace zelmora::test {

namespace fs = std::filesystem;

namespace {

uint64_t inodeOf(int folder, const char* name) {
    struct stat status = {};
    return ::fstatat(folder, name, &status, AT_EMPTY_PATH | AT_SYMLINK_NOFOLLOW) == 0
               ? status.st_ino
               : 0;
}

} // namespace

PowerCutModel::PowerCutModel(std::string root) : _root(std::move(root)) {
    newObject(inodeOf(AT_FDCWD, _root.c_str()));
    for (const auto& entry : fs::recursive_directory_iterator(_root)) {
        const Place place = placeOf(AT_FDCWD, entry.path().c_str());
        _firstNames[place] = newObject(inodeOf(AT_FDCWD, entry.path().c_str()));
    }
    _firstContents = contentsNow();
}

PowerCutModel::Object PowerCutModel::newObject(uint64_t inode) {
    return _objects[inode] = ++_last;
}

PowerCutModel::Object PowerCutModel::objectOf(int folder, const char* name) const {
    const auto known = _objects.find(inodeOf(folder, name));
    return known == _objects.end() ? 0 : known->second;
}

PowerCutModel::Place PowerCutModel::placeOf(int folder, const char* name) const {
    const fs::path path(name);
    const auto parent = path.has_parent_path() ? path.parent_path() : fs::path(".");
    return {objectOf(folder, parent.c_str()), path.filename()};
}

PowerCutModel::Contents PowerCutModel::contentsNow() const {
    Contents contents;
    for (const auto& entry : fs::recursive_directory_iterator(_root)) {
        if (entry.is_regular_file())
            contents[objectOf(AT_FDCWD, entry.path().c_str())] = readFile(entry.path());
    }
    return contents;
}

void PowerCutModel::after(const SystemCall& call, int64_t answer) {
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

void PowerCutModel::apply(const Event& event, Names& names) {
    if (event.kind == Kind::link) {
        names[event.place] = event.object;
    } else if (const auto named = names.extract(event.place); named) {
        if (event.kind == Kind::rename)
            names[event.to] = named.mapped();
    }
}

PowerCutModel::Files PowerCutModel::filesOf(Object folder, const std::string& prefix,
                                            const Names& names, const Contents& contents) {
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

void PowerCutModel::cut(size_t moment, const std::function<void(const Files&)>& check) const {
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

} // namespace zelmora::test
