// Writes one file while the next of its bytes are being made.
#pragma once

#include "platform/text/bytes.h"

#include <condition_variable>
#include <mutex>
#include <thread>

namespace zelmora::platform {

/// A thread that writes to the end of an open file what it is handed, in that order. Three buffers
/// go round: one being filled, one waiting, one being written. Used by one thread at a time.
class BackgroundWriter {
  public:
    /// REQUIRES: `file` stays open as long as this object. Throws std::system_error when no thread
    /// can be started.
    explicit BackgroundWriter(int file);
    /// Waits for what is being written; what still waits is dropped.
    ~BackgroundWriter();
    BackgroundWriter(const BackgroundWriter&) = delete;
    BackgroundWriter& operator=(const BackgroundWriter&) = delete;

    /// Hands `bytes` over and takes an empty buffer for them; waits while another one is waiting.
    void write(Bytes& bytes);

    /// Waits until all is written. Answers 0 or the errno of the first failure, after which nothing
    /// was written.
    int finish();

  private:
    void run();

    const int _file;
    std::mutex _mutex; ///< guards what follows
    std::condition_variable _changed;
    Bytes _waiting;
    bool _isWriting = false;
    bool _isDone = false;
    int _code = 0;
    std::thread _thread; ///< last: it uses all of the above
};

} // namespace zelmora::platform
