// The names of a converted file, temporary and final, and its way into the source's place.

#include "engine/document_controller.h"

#include "engine/settings.h"
#include "platform/text/path_string.h"
#include "platform/text/utf8.h"

#include <cerrno>

namespace zelmora {

namespace {

// The action selectors' values as the settings hold them.
constexpr int64_t setCode = 1;
constexpr int64_t removeCode = 2;
constexpr int64_t setExtension = 1;
constexpr int64_t removeExtension = 2;
constexpr int64_t appendToExtension = 1;
constexpr int64_t replaceExtension = 2;

} // namespace

uint32_t FourCharCodeFromString(std::optional<std::u16string_view> string) {
    if (!string || string->empty())
        return 0;
    uint32_t code = 0;
    for (size_t i = 0; i < 4; ++i) {
        const uint32_t byte = i < string->size() ? (*string)[i] & 0xFFu : uint32_t{' '};
        code = code << 8 | byte;
    }
    return code;
}

std::u16string StringFromFourCharCode(uint32_t code) {
    if (code == 0)
        return {};
    std::u16string string;
    for (const uint32_t shift : {24u, 16u, 8u, 0u})
        string.push_back(static_cast<char16_t>(code >> shift & 0xFFu));
    return string;
}

std::string ZelDocumentController::numberedPath(const std::string& path, uint32_t n) {
    const auto name = platform::lastPathComponent(path);
    const auto base = platform::deletingPathExtension(name);
    return platform::appendingPathComponent(
        platform::deletingLastPathComponent(path),
        platform::appendingPathExtension(base + "#" + std::to_string(n),
                                         platform::pathExtension(name)));
}

std::string ZelDocumentController::dstPathForSrcPath(const std::string& path) const {
    for (uint32_t n = 0;; ++n) {
        auto candidate = numberedPath(path, n);
        if (!_services.files.fileExistsAtPath(candidate))
            return candidate;
    }
}

platform::Status
ZelDocumentController::doConvertProcessPostDstPath(const std::string& dstPath,
                                                   const std::string& srcPath) const {
    auto& files = _services.files;
    const auto sourceCodes = files.hfsCodesOfItemAtPath(srcPath);
    if (!sourceCodes.ok())
        return sourceCodes.error();
    const platform::HFSCodes codes{
        .type = hfsCode(settings::actionForFileType, settings::fileType, sourceCodes->type),
        .creator =
            hfsCode(settings::actionForCreator, settings::creatorCode, sourceCodes->creator)};
    // A new file has none.
    if (codes != platform::HFSCodes{}) {
        if (auto set = files.setHFSCodes(codes, dstPath); !set.ok())
            return set;
    }
    // The converted bytes are on disk by now, so the source may go.
    if (auto removed = files.removeFileAtPath(srcPath); !removed.ok())
        return removed;
    const auto finalPath = finalPathForSrcPath(srcPath);
    auto moved = files.moveItemAtPath(dstPath, finalPath);
    // Asking beforehand would cost each file a call here too.
    if (!moved.ok() && moved.error().code == EEXIST)
        moved = files.moveItemAtPath(dstPath, dstPathForSrcPath(finalPath));
    return moved;
}

uint32_t ZelDocumentController::hfsCode(std::string_view actionKey, std::string_view codeKey,
                                        uint32_t sourceCode) const {
    const auto action = _services.defaults.integerForKey(actionKey);
    if (action == removeCode)
        return 0;
    if (action != setCode)
        return sourceCode;
    const auto code = _services.defaults.stringForKey(codeKey).value_or("");
    return FourCharCodeFromString(platform::utf16FromUTF8(code));
}

std::string ZelDocumentController::finalPathForSrcPath(const std::string& srcPath) const {
    const auto& defaults = _services.defaults;
    const auto action = defaults.integerForKey(settings::convertExtension);
    if (action == removeExtension)
        return platform::deletingPathExtension(srcPath);
    if (action != setExtension)
        return srcPath;
    const auto extension = platform::pathExtension(srcPath);
    const auto newExtension = defaults.stringForKey(settings::extensionOfDstFiles).value_or("");
    // An extension that would lead to another folder is none.
    if (newExtension.empty() || newExtension.find('/') != std::string::npos ||
        platform::equalsIgnoringASCIICase(extension, newExtension))
        return srcPath;
    if (extension.empty())
        return platform::appendingPathExtension(srcPath, newExtension);
    const auto adding = defaults.integerForKey(settings::actionForAddingExtension);
    if (adding == appendToExtension)
        return platform::appendingPathExtension(srcPath, newExtension);
    if (adding == replaceExtension)
        return platform::appendingPathExtension(platform::deletingPathExtension(srcPath),
                                                newExtension);
    return srcPath;
}

} // namespace zelmora
