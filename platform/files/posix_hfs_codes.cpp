#include "platform/files/posix_file_manager.h"

#include <array>
#include <sys/xattr.h>

namespace zelmora::platform {

namespace {

constexpr const char* kAttribute = "user.com.apple.FinderInfo";
using FinderInfo = std::array<unsigned char, 32>;

/// Reads the attribute, zeros where it is absent or shorter. Answers 0 or an errno.
int readFinderInfo(const std::string& path, FinderInfo& info, bool& present) {
    info = {};
    const auto size = ::lgetxattr(path.c_str(), kAttribute, info.data(), info.size());
    present = size >= 0;
    return present || errno == ENODATA || errno == ENOTSUP ? 0 : errno;
}

uint32_t codeAt(const FinderInfo& info, size_t offset) {
    uint32_t code = 0;
    for (size_t i = 0; i < 4; ++i)
        code = code << 8 | info[offset + i];
    return code;
}

void putCode(uint32_t code, FinderInfo& info, size_t offset) {
    for (size_t i = 0; i < 4; ++i)
        info[offset + i] = static_cast<unsigned char>(code >> (24 - 8 * i));
}

HFSCodes codesIn(const FinderInfo& info) {
    return {codeAt(info, 0), codeAt(info, 4)};
}

int writeCodes(HFSCodes codes, const std::string& path) {
    FinderInfo info;
    bool present = false;
    if (const int code = readFinderInfo(path, info, present))
        return code;
    if (codesIn(info) == codes)
        return 0;
    putCode(codes.type, info, 0);
    putCode(codes.creator, info, 4);
    return errnoUnless(::lsetxattr(path.c_str(), kAttribute, info.data(), info.size(),
                                   present ? XATTR_REPLACE : XATTR_CREATE));
}

} // namespace

Result<HFSCodes> PosixFileManager::hfsCodesOfItemAtPath(const std::string& path) {
    FinderInfo info;
    const Status status = performAt(path, "read HFS codes", [&](const Location& at) {
        bool present = false;
        return readFinderInfo(at.pathForCall(), info, present);
    });
    if (!status)
        return status.error();
    return codesIn(info);
}

Status PosixFileManager::setHFSCodes(HFSCodes codes, const std::string& path) {
    return performAt(path, "set HFS codes",
                     [&](const Location& at) { return writeCodes(codes, at.pathForCall()); });
}

} // namespace zelmora::platform
