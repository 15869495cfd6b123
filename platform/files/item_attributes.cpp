#include "platform/files/item_attributes.h"

#include "platform/files/file_descriptor.h"

#include <array>
#include <string>
#include <string_view>
#include <sys/xattr.h>
#include <vector>

namespace zelmora::platform {

namespace {

constexpr mode_t kAllPermissions = 07777;

std::array<timespec, 2> timesOf(const struct stat& status) {
    return {status.st_atim, status.st_mtim};
}

/// Copies one extended attribute; `value` is a buffer to use.
int copyAttribute(int source, int copy, const char* name, std::vector<char>& value) {
    constexpr size_t kLargestValue = 65536; // XATTR_SIZE_MAX
    value.resize(kLargestValue);
    const auto size = ::fgetxattr(source, name, value.data(), value.size());
    if (size < 0)
        return errno == ENODATA ? 0 : errno;
    return errnoUnless(::fsetxattr(copy, name, value.data(), static_cast<size_t>(size), 0));
}

int copyExtendedAttributes(int source, int copy) {
    const auto size = ::flistxattr(source, nullptr, 0);
    if (size <= 0)
        return size == 0 || errno == ENOTSUP ? 0 : errno;
    std::string names(static_cast<size_t>(size), '\0');
    const auto listed = ::flistxattr(source, names.data(), names.size());
    if (listed < 0)
        return errno;
    names.resize(static_cast<size_t>(listed));
    std::vector<char> value;
    for (size_t start = 0; start < names.size();) {
        const std::string_view name = names.c_str() + start;
        const int code = copyAttribute(source, copy, name.data(), value);
        if (code != 0 && name.starts_with("user."))
            return code;
        start += name.size() + 1;
    }
    return 0;
}

} // namespace

int copyAttributes(int source, const struct stat& status, int copy) {
    mode_t permissions = status.st_mode & kAllPermissions;
    // Each step can undo or forbid an earlier one: an owner's change clears permissions, and
    // permissions can forbid attributes.
    if (::fchown(copy, status.st_uid, status.st_gid) != 0)
        permissions &= ~static_cast<mode_t>(S_ISUID | S_ISGID); // meant for another owner
    if (const int code = copyExtendedAttributes(source, copy))
        return code;
    if (::fchmod(copy, permissions) != 0)
        return errno;
    return errnoUnless(::futimens(copy, timesOf(status).data()));
}

int copyLinkAttributes(const struct stat& status, int copyFolder, const char* copyName) {
    // As above, an owner that the process may not give away is not a failure.
    if (::fchownat(copyFolder, copyName, status.st_uid, status.st_gid, AT_SYMLINK_NOFOLLOW) != 0 &&
        errno != EPERM) {
        return errno;
    }
    return errnoUnless(
        ::utimensat(copyFolder, copyName, timesOf(status).data(), AT_SYMLINK_NOFOLLOW));
}

} // namespace zelmora::platform
