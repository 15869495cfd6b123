#include "engine/progress_window.h"

namespace zelmora {

ProgressWindow::ProgressWindow(platform::UserInterface& userInterface)
    : _interface(userInterface.loadInterface("Progress")),
      _staticLabel(_interface->staticText("staticLabel")),
      _progressBar(_interface->progressIndicator("progressBar")),
      _buttonCancel(_interface->button("buttonCancel")) {
    _buttonCancel.setAction([this] { onCancel(); });
}

void ProgressWindow::onCancel() {
    if (!_target || _target->onCancelProgressWindow(*this))
        close();
}

} // namespace zelmora
