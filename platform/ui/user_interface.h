// What windows, controls and alerts are to the code that does not know the front-end.
//
// Interfaces only; each front-end implements them. Everything here is for the main thread. Texts
// are UTF-8.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace zelmora::platform {

/// A one-line label.
class StaticText {
  public:
    virtual ~StaticText() = default;
    virtual void setStringValue(const std::string& text) = 0;
};

/// A progress bar; determinate, 0 to 100, unless it is made indeterminate.
class ProgressIndicator {
  public:
    virtual ~ProgressIndicator() = default;
    virtual void setDoubleValue(double percent) = 0;
    virtual void setIndeterminate(bool indeterminate) = 0;
    /// Whether the animation goes on while the main thread is busy.
    virtual void setUsesThreadedAnimation(bool threaded) = 0;
    virtual void startAnimation() = 0;
};

class Button {
  public:
    virtual ~Button() = default;
    virtual void setEnabled(bool enabled) = 0;
    /// What a click does. Replaces the earlier action.
    virtual void setAction(std::function<void()> action) = 0;
};

/// A window, hidden until it is shown; closing hides it, and it can be shown again.
class Window {
  public:
    virtual ~Window() = default;
    [[nodiscard]] virtual bool isVisible() const = 0;
    virtual void show() = 0;
    virtual void center() = 0;
    virtual void close() = 0;
};

/// A window and its controls as loaded from an interface description. The controls live as long as
/// this object; asking for one that the description does not have is a fault of the program.
class LoadedInterface {
  public:
    virtual ~LoadedInterface() = default;
    virtual Window& window() = 0;
    virtual StaticText& staticText(std::string_view name) = 0;
    virtual ProgressIndicator& progressIndicator(std::string_view name) = 0;
    virtual Button& button(std::string_view name) = 0;
};

/// Held while a window has the user's input to itself; its destruction ends the session.
class ModalSession {
  public:
    virtual ~ModalSession() = default;
    /// Carries out `work`, which may take long, and returns once it is done. A front-end with an
    /// event loop keeps the window alive meanwhile: it runs `work`, which must not throw, on
    /// another thread, and on this one whatever comes up, so what must not begin in the middle of
    /// the caller has to be put off by whoever would begin it.
    virtual void run(const std::function<void()>& work) { work(); }
};

/// A message the user must see; the second text names what it is about. One line each.
struct Alert {
    std::string messageText;
    std::string informativeText;
};

/// A front-end's face. The front-end owns it; it outlives the engine.
class UserInterface {
  public:
    virtual ~UserInterface() = default;

    /// Tells the user `alert`. A terminal has written it when this returns; a desktop shows it as
    /// soon as nothing else is in hand, together with what else it was told by then, lets nothing
    /// else have the user's input until it is dismissed, and does not end before.
    virtual void runModal(const Alert& alert) = 0;
    /// Loads the interface description `name`; never null.
    virtual std::unique_ptr<LoadedInterface> loadInterface(std::string_view name) = 0;
    virtual std::unique_ptr<ModalSession> beginModalSessionForWindow(Window& window) = 0;
    /// Ends the application, through its termination sequence. Returns before that has run.
    virtual void terminate() = 0;
    /// The same at the program's own wish, unless `isStillWanted` answers NO by the time nothing is
    /// in hand any more.
    virtual void terminateIf(std::function<bool()> isStillWanted) {
        if (isStillWanted())
            terminate();
    }
    /// Whether terminate() was called and waits for what is in hand: nothing more should begin.
    [[nodiscard]] virtual bool isTerminating() const { return false; }
};

} // namespace zelmora::platform
