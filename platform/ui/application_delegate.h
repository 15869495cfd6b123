// What the platform's application object asks of the application.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zelmora::platform {

enum class TerminateReply : int32_t { cancel = 0, now = 1 };

/// Consulted at launch, when files are handed over and at the end. Main thread. Paths are absolute,
/// raw bytes.
class ApplicationDelegate {
  public:
    virtual ~ApplicationDelegate() = default;
    /// Once, before any file is delivered.
    virtual void applicationWillFinishLaunching() = 0;
    /// Started without a file. YES: there is nothing more to do.
    virtual bool applicationOpenUntitledFile() = 0;
    virtual bool applicationOpenFile(const std::string& path) = 0;
    virtual void applicationOpenFiles(const std::vector<std::string>& paths) = 0;
    /// Before the run loop is stopped; nothing is delivered after `now`.
    virtual TerminateReply applicationShouldTerminate() = 0;
};

} // namespace zelmora::platform
