// Panels, questions and what other programs open for us, to the code that does not know the
// front-end. Interfaces only, for the main thread. Texts are UTF-8; paths are absolute, raw bytes.
#pragma once

#include "platform/ui/user_interface.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace zelmora::platform {

/// What may be chosen in a panel for existing items.
struct OpenPanel {
    bool canChooseFiles = true;
    bool canChooseDirectories = false;
    bool allowsMultipleSelection = false;
    std::string directoryPath{}; ///< where it begins; empty: the home folder
    std::string title{};         ///< says what is to be chosen
};

/// A panel for the place of a file that is to be written.
struct SavePanel {
    std::string directoryPath{}; ///< where it begins; empty: the home folder
    std::string name{};          ///< offered as the file's name, raw bytes
    std::string title{};         ///< says what is to be written

    /// The extension that the name ends in, without its dot; empty: any, or none.
    std::string allowedFileType{};
    bool isExtensionHidden = false;        ///< the panel shows names without it, to begin with
    bool canSelectHiddenExtension = false; ///< whether the user may decide that
};

/// A message with buttons to choose from.
struct Question {
    std::string messageText;
    std::string informativeText;
    std::vector<std::string> buttons; ///< titles, the default one first; at least one
};

/// Panels and questions that return once the user has answered. They run as a sheet of
/// `sheetParent`, or by themselves when it is null.
class Panels {
  public:
    virtual ~Panels() = default;
    /// What was chosen, in the panel's order; empty when it was cancelled.
    virtual std::vector<std::string> runOpenPanel(const OpenPanel& panel, Window* sheetParent) = 0;
    /// The path chosen; nullopt when it was cancelled.
    virtual std::optional<std::string> runSavePanel(const SavePanel& panel,
                                                    Window* sheetParent) = 0;
    /// The index of the button chosen; the last one's when the question was closed.
    virtual size_t runQuestion(const Question& question, Window* sheetParent) = 0;
};

/// Hands files and web pages to the user's programs for them.
class Workspace {
  public:
    virtual ~Workspace() = default;
    /// Whether a program took it.
    virtual bool openFile(const std::string& path) = 0;
    virtual bool openURL(const std::string& url) = 0;
};

} // namespace zelmora::platform
