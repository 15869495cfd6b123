// The user's programs for files and web pages.
#pragma once

#include "platform/ui/panels.h"

namespace zelmora::platform {

/// Hands over through the desktop's own choice of programs.
class DesktopWorkspace final : public Workspace {
  public:
    bool openFile(const std::string& path) override;
    bool openURL(const std::string& url) override;
};

} // namespace zelmora::platform
