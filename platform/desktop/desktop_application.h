// The application object of the desktop.
#pragma once

#include "platform/defaults/localized_strings.h"
#include "platform/desktop/desktop_run_loop.h"
#include "platform/desktop/string_table_translator.h"
#include "platform/ui/application_delegate.h"

#include <QApplication>
#include <QTranslator>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zelmora::platform {

/// Qt's application and the run loop: delivers launch, files and the end to the delegate. One for
/// the process, made on the main thread before any window.
class DesktopApplication {
  public:
    /// Removes the arguments meant for Qt from `argumentCount` and `arguments`, which are kept and
    /// changed; what stays is the program's own, its bytes untouched.
    DesktopApplication(int& argumentCount, char** arguments);

    DesktopRunLoop& runLoop() { return _runLoop; }

    /// Gives forms the texts of `strings` (borrowed), and standard buttons those of `language`.
    void installStrings(const LocalizedStrings& strings, std::string_view language);

    /// Who is asked and told; borrowed. Required before everything below.
    void setDelegate(ApplicationDelegate& delegate) { _delegate = &delegate; }

    /// Launches, delivers `paths`, runs, and answers the exit status once terminate() has run.
    int run(const std::vector<std::string>& paths);
    /// The termination sequence: asks the delegate, tells the notification centre, stops the loop.
    void terminate();

  private:
    QApplication _application;
    DesktopRunLoop _runLoop;
    QTranslator _standardTexts;
    std::unique_ptr<StringTableTranslator> _texts;
    ApplicationDelegate* _delegate = nullptr;
    bool _isTerminated = false;
};

} // namespace zelmora::platform
