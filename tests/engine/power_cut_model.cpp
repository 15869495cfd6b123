#include "power_cut_model.h"

#include "tests/support/temporary_directory.h"

#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>

namespace zelmora::test {

namespace {

uint64_t inodeOf(int folder, const char* name) {
    struct stat status = {};
    return ::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) == 0 ? status.st_ino : 0;
}

} // namespace

PowerCutModel::PowerCutModel(std::string root) : _root(std::move(root)) {
    learn(newObject(inodeOf(AT_FDCWD, _root.c_str())), _root);
    _isFolder[1] = true;
}

void PowerCutModel::learn(Object folder, const std::string& path) {
    for (const auto& entry : std::filesystem::directory_iterator(path)) {
        const Object object = newObject(inodeOf(AT_FDCWD, entry.path().c_str()));
        _firstNames[{folder, entry.path().filename()}] = object;
        _isFolder[object] = entry.is_directory();
        if (entry.is_directory())
            learn(object, entry.path());
        else
            _firstContents[object] = readFile(entry.path());
    }
}

PowerCutModel::Object PowerCutModel::newObject(uint64_t inode) {
    return _objects[inode] = ++_last;
}

/// The object behind a descriptor; 0 when it is not beneath the root.
PowerCutModel::Object PowerCutModel::objectOf(int file) {
    struct stat status = {};
    const auto known = ::fstat(file, &status) == 0 ? _objects.find(status.st_ino) : _objects.end();
    return known == _objects.end() ? 0 : known->second;
}

PowerCutModel::Place PowerCutModel::placeOf(int folder, const char* name) {
    const std::filesystem::path path(name);
    const auto parent = path.has_parent_path() ? path.parent_path() : std::filesystem::path(".");
    const auto known = _objects.find(inodeOf(folder, parent.c_str()));
    return {known == _objects.end() ? 0 : known->second, path.filename()};
}

void PowerCutModel::after(const SystemCall& call, int64_t answer) {
    Event event{.kind = Kind::link, .place = {}, .to = {}, .contents = {}};
    switch (call.kind) {
    case CallKind::open: {
        if ((call.flags & (O_CREAT | (O_TMPFILE & ~O_DIRECTORY))) == 0)
            return;
        struct stat status = {};
        ::fstat(static_cast<int>(answer), &status);
        event.object = newObject(status.st_ino);
        if ((call.flags & O_CREAT) == 0)
            return; // it has no name yet
        event.place = placeOf(call.file, call.name);
        break;
    }
    case CallKind::folder:
        event.place = placeOf(call.file, call.name);
        event.object = newObject(inodeOf(call.file, call.name));
        _isFolder[event.object] = true;
        break;
    case CallKind::link:
        event.place = placeOf(call.toFolder, call.toName);
        event.object = _objects[inodeOf(call.toFolder, call.toName)];
        break;
    case CallKind::rename:
        event.kind = Kind::rename;
        event.place = placeOf(call.file, call.name);
        event.to = placeOf(call.toFolder, call.toName);
        break;
    case CallKind::remove:
        event.kind = Kind::remove;
        event.place = placeOf(call.file, call.name);
        break;
    case CallKind::sync:
        event.object = objectOf(call.file);
        if (event.object == 0)
            return;
        if (call.function == std::string("syncfs")) {
            event.kind = Kind::syncAll;
            for (const auto& entry : std::filesystem::recursive_directory_iterator(_root)) {
                if (entry.is_regular_file())
                    event.contents[_objects[inodeOf(AT_FDCWD, entry.path().c_str())]] =
                        readFile(entry.path());
            }
        } else if (_isFolder[event.object]) {
            event.kind = Kind::syncFolder;
        } else {
            event.kind = Kind::syncFile;
            event.contents[event.object] = readFile("/proc/self/fd/" + std::to_string(call.file));
        }
        break;
    default:
        return;
    }
    if (event.place.folder != 0 || event.kind >= Kind::syncFile)
        _events.push_back(std::move(event));
}

bool PowerCutModel::touches(const Event& event, Object folder) {
    return event.place.folder == folder || event.to.folder == folder;
}

void PowerCutModel::apply(const Event& event, Names& names) {
    if (event.kind == Kind::link) {
        names[event.place] = event.object;
    } else if (const auto named = names.find(event.place); named != names.end()) {
        const Object object = named->second;
        names.erase(named);
        if (event.kind == Kind::rename)
            names[event.to] = object;
    }
}

PowerCutModel::Files PowerCutModel::filesOf(Object folder, const std::string& prefix,
                                            const Names& names,
                                            const std::map<Object, std::string>& contents) {
    Files files;
    for (auto each = names.lower_bound({folder, ""});
         each != names.end() && each->first.folder == folder; ++each) {
        const auto& [place, object] = *each;
        const auto inside = filesOf(object, prefix + place.name + "/", names, contents);
        files.insert(inside.begin(), inside.end());
        const auto known = contents.find(object);
        files[prefix + place.name] =
            known == contents.end() ? std::nullopt : std::optional(known->second);
    }
    return files;
}

void PowerCutModel::cut(size_t moment, const std::function<void(const Files&)>& check) const {
    Names names = _firstNames;
    auto contents = _firstContents;
    std::vector<const Event*> pending;
    for (size_t i = 0; i < moment; ++i) {
        const Event& event = _events[i];
        if (event.kind < Kind::syncFile) {
            pending.push_back(&event);
            continue;
        }
        for (const auto& [object, text] : event.contents)
            contents[object] = text;
        if (event.kind != Kind::syncFile)
            std::erase_if(pending, [&](const Event* each) {
                const bool isSafe = event.kind == Kind::syncAll || touches(*each, event.object);
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
