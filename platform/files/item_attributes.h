// What a copy takes over besides an item's contents.
#pragma once

#include <sys/stat.h>

namespace zelmora::platform {

/// Gives the open copy the open source's owner, extended attributes, permissions and times.
/// `status` is the source's, taken before it was read. Losing permissions, times or an attribute of
/// the user's fails; owners and the system's own attributes are kept where the process may set
/// them. Answers 0 or an errno.
int copyAttributes(int source, const struct stat& status, int copy);

/// The same for a symbolic link, which has no permissions and no attributes of the user's.
int copyLinkAttributes(const struct stat& status, int copyFolder, const char* copyName);

} // namespace zelmora::platform
