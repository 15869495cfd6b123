// The progress window. It stands in this floor, below the application shell, because the engine
// makes and drives it.
#pragma once

#include "platform/ui/user_interface.h"

#include <memory>
#include <utility>

namespace zelmora {

class ProgressWindow;

/// Decides what Cancel does.
class ProgressWindowDelegate {
  public:
    virtual ~ProgressWindowDelegate() = default;
    /// YES lets the window close, NO leaves it open. A delegate that does not care closes it.
    virtual bool onCancelProgressWindow(ProgressWindow&) { return true; }
};

/// A label, a progress bar and a Cancel button, loaded from the interface description "Progress".
/// It does not know what it shows: its users set the label and the bar. Main thread only.
class ProgressWindow {
  public:
    explicit ProgressWindow(platform::UserInterface& userInterface);

    [[nodiscard]] platform::Window& window() { return _interface->window(); }
    [[nodiscard]] platform::StaticText& labelStaticText() { return _staticLabel; }
    [[nodiscard]] platform::ProgressIndicator& progressBar() { return _progressBar; }
    [[nodiscard]] platform::Button& cancelButton() { return _buttonCancel; }
    void showWindow() { window().show(); }
    void close() { window().close(); }

    /// Keeps the delegate alive until it is replaced or the window goes.
    void setDelegate(std::shared_ptr<ProgressWindowDelegate> delegate) {
        _target = std::move(delegate);
    }
    [[nodiscard]] const std::shared_ptr<ProgressWindowDelegate>& delegate() const {
        return _target;
    }
    /// Anything the delegate wants to attach; kept alive like the delegate.
    void setContext(std::shared_ptr<void> context) { _context = std::move(context); }
    [[nodiscard]] const std::shared_ptr<void>& context() const { return _context; }

    /// The Cancel button's action.
    void onCancel();

  private:
    std::unique_ptr<platform::LoadedInterface> _interface;
    platform::StaticText& _staticLabel;
    platform::ProgressIndicator& _progressBar;
    platform::Button& _buttonCancel;
    std::shared_ptr<ProgressWindowDelegate> _target;
    std::shared_ptr<void> _context;
};

} // namespace zelmora
