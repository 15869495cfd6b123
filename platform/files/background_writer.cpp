#include "platform/files/background_writer.h"

#include "platform/files/new_item.h"

#include <fcntl.h>

namespace zelmora::platform {

namespace {

constexpr size_t kWrittenBackAtOnce = size_t{8} << 20; // bytes

} // namespace

BackgroundWriter::BackgroundWriter(int file) : _file(file), _thread([this] { run(); }) {}

BackgroundWriter::~BackgroundWriter() {
    {
        const std::lock_guard lock(_mutex);
        _isDone = true;
        _waiting.clear();
    }
    _changed.notify_all();
    _thread.join();
}

void BackgroundWriter::write(Bytes& bytes) {
    {
        std::unique_lock lock(_mutex);
        _changed.wait(lock, [this] { return _waiting.empty(); });
        std::swap(_waiting, bytes);
    }
    _changed.notify_all();
}

int BackgroundWriter::finish() {
    std::unique_lock lock(_mutex);
    _changed.wait(lock, [this] { return _waiting.empty() && !_isWriting; });
    return _code;
}

void BackgroundWriter::run() {
    Bytes bytes;
    size_t heldBack = 0; // bytes that the disk has not been told of
    std::unique_lock lock(_mutex);
    for (;;) {
        _changed.wait(lock, [this] { return _isDone || !_waiting.empty(); });
        if (_waiting.empty()) {
            return;
        }
        std::swap(_waiting, bytes);
        _isWriting = true;
        const bool isWanted = _code == 0;
        lock.unlock();
        _changed.notify_all();
        const int code = isWanted ? writeAll(_file, bytes.data(), bytes.size()) : 0;
        heldBack += bytes.size();
        bytes.clear();
        if (heldBack >= kWrittenBackAtOnce) {
            // Only begun, for a shorter wait at the end; whether it worked is told there.
            ::sync_file_range(_file, 0, 0, SYNC_FILE_RANGE_WRITE);
            heldBack = 0;
        }
        lock.lock();
        _isWriting = false;
        if (code != 0) {
            _code = code;
        }
        _changed.notify_all();
    }
}

} // namespace zelmora::platform
