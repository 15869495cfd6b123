// Alerts and progress on a terminal.
#pragma once

#include "platform/ui/user_interface.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace zelmora::platform {

/// The last line of the terminal on which progress is drawn over and over, and the messages that
/// scroll up above it. Writes nothing but messages when the descriptor is not a terminal.
class StatusLine {
  public:
    /// `descriptor` stays open and the caller's.
    explicit StatusLine(int descriptor);

    /// Replaces the status line by `text`, cut to the terminal's width. Redrawn at most 20 times a
    /// second; the text of a call in between is dropped.
    void show(std::string_view text);
    /// Removes the status line.
    void clear();
    /// Writes a line of text above the status line. Control characters are written escaped.
    void printLine(std::string_view text);

  private:
    void write(std::string_view text) const;

    int _descriptor;
    bool _isTerminal;
    bool _isShown = false;
    std::chrono::steady_clock::time_point _lastShown;
};

/// The console's face: an alert is two lines, a progress window one status line. Main thread only.
class TerminalUserInterface : public UserInterface {
  public:
    /// Alerts and progress go to `descriptor`; `terminate` is what terminate() calls.
    TerminalUserInterface(int descriptor, std::function<void()> terminate);

    void runModal(const Alert& alert) override;
    std::unique_ptr<LoadedInterface> loadInterface(std::string_view name) override;
    std::unique_ptr<ModalSession> beginModalSessionForWindow(Window& window) override;
    void terminate() override { _terminate(); }

    /// One line of the program's own, above the progress.
    void printLine(std::string_view text) { _statusLine.printLine(text); }

  private:
    StatusLine _statusLine;
    std::function<void()> _terminate;
};

} // namespace zelmora::platform
