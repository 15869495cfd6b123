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

    /// Replaces the status line by `text`, cut to the terminal's width. Drawn at most 20 times a
    /// second; what comes too early is put off, and only the last text of these is kept.
    void show(std::string text);
    /// Draws what was put off, if it is time to.
    void redrawIfDue();
    /// Draws what was put off.
    void redraw();
    /// Removes the status line.
    void clear();
    /// Writes a line of text above the status line. Control characters are written escaped.
    void printLine(std::string_view text);

  private:
    void write(std::string_view text) const;

    int _descriptor;
    bool _isTerminal;
    bool _isShown = false;
    bool _isPutOff = false; ///< `_text` is still to be drawn
    std::string _text;
    std::chrono::steady_clock::time_point _lastShown;
};

/// The console's face: an alert is two lines, a progress window one status line. Main thread only.
class TerminalUserInterface : public UserInterface {
  public:
    /// Alerts and progress go to `descriptor`; `terminate` is what terminate() calls.
    TerminalUserInterface(int descriptor, std::function<void()> terminate);

    void runModal(const Alert& alert) override;
    std::unique_ptr<LoadedInterface> loadInterface(std::string_view name) override;
    /// The main thread is about to be busy: progress that was put off is drawn before that.
    std::unique_ptr<ModalSession> beginModalSessionForWindow(Window& window) override;
    void terminate() override { _terminate(); }

    /// One line of the program's own, above the progress.
    void printLine(std::string_view text) { _statusLine.printLine(text); }
    /// Draws progress that was put off; to be called whenever the main thread is about to wait.
    void redraw() { _statusLine.redrawIfDue(); }

  private:
    StatusLine _statusLine;
    std::function<void()> _terminate;
};

} // namespace zelmora::platform
