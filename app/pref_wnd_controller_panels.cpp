// The preferences window: what is chosen in file panels.
#include "app/pref_wnd_controller.h"

#include "engine/document_controller.h"
#include "engine/settings.h"
#include "platform/text/path_string.h"
#include "platform/text/utf8.h"

namespace zelmora {

namespace {

platform::OpenPanel panelForFilesAndBundles(std::string title) {
    return {.canChooseDirectories = true, .title = std::move(title)};
}

/// The string under `key` in the information dictionary of the bundle at `path`.
std::optional<std::string> bundleString(platform::FileManager& files, const std::string& path,
                                        std::string_view key) {
    const auto infoPath = platform::appendingPathComponent(path, "Contents/Info.plist");
    const auto contents = files.contentsAtPath(infoPath);
    if (!contents)
        return std::nullopt;
    const std::string_view xml(reinterpret_cast<const char*>(contents->data()), contents->size());
    const auto list = platform::propertyListFromXML(xml, platform::displayPath(infoPath));
    const auto* info = list ? list->as<platform::PropertyListDictionary>() : nullptr;
    if (!info || !info->contains(key))
        return std::nullopt;
    const auto* text = info->find(key)->second.as<std::string>();
    return text ? std::optional(*text) : std::nullopt;
}

} // namespace

void ZelPrefWndController::selectCreatorCode() {
    selectCreatorCodePanelDidEnd(
        runOpenPanel(panelForFilesAndBundles(_services.strings.stringForKey("PrefCreatorChoose"))));
}

void ZelPrefWndController::selectCreatorCodePanelDidEnd(const std::optional<std::string>& path) {
    if (path)
        storeCode(*path, settings::creatorCode, "CFBundleSignature", &platform::HFSCodes::creator);
}

void ZelPrefWndController::selectTypeCode() {
    selectTypeCodePanelDidEnd(
        runOpenPanel(panelForFilesAndBundles(_services.strings.stringForKey("PrefTypeChoose"))));
}

void ZelPrefWndController::selectTypeCodePanelDidEnd(const std::optional<std::string>& path) {
    if (path)
        storeCode(*path, settings::fileType, "CFBundlePackageType", &platform::HFSCodes::type);
}

void ZelPrefWndController::selectBackupDataDirectory() {
    const auto stored = _services.defaults.stringForKey(settings::backupDataDir).value_or("");
    selectBackupDataDirectoryPanelDidEnd(
        runOpenPanel({.canChooseFiles = false,
                      .canChooseDirectories = true,
                      .directoryPath = platform::expandingTilde(stored),
                      .title = _services.strings.stringForKey("PrefBackupChoose")}));
}

void ZelPrefWndController::selectBackupDataDirectoryPanelDidEnd(
    const std::optional<std::string>& path) {
    if (path)
        _services.defaults.setObject(*path, settings::backupDataDir);
}

void ZelPrefWndController::putLogFile() {
    const auto stored = platform::expandingTilde(
        _services.defaults.stringForKey(settings::logFilePath).value_or(""));
    platform::SavePanel panel;
    panel.title = _services.strings.stringForKey("PrefLogChoose");
    panel.directoryPath = platform::deletingLastPathComponent(stored);
    // The panel adds its own extension, which need not be the one set by other means.
    panel.name = platform::deletingPathExtension(platform::lastPathComponent(stored));
    panel.allowedFileType = "txt";
    panel.isExtensionHidden = true;
    panel.canSelectHiddenExtension = true;
    putLogFilePanelDidEnd(_services.panels.runSavePanel(panel, &_form->window()));
}

void ZelPrefWndController::putLogFilePanelDidEnd(const std::optional<std::string>& path) {
    if (path)
        _services.defaults.setObject(*path, settings::logFilePath);
}

std::optional<std::string> ZelPrefWndController::runOpenPanel(const platform::OpenPanel& panel) {
    const auto paths = _services.panels.runOpenPanel(panel, &_form->window());
    return paths.empty() ? std::nullopt : std::optional(paths.front());
}

void ZelPrefWndController::storeCode(const std::string& path, std::string_view codeKey,
                                     std::string_view bundleKey,
                                     uint32_t platform::HFSCodes::*code) {
    auto& files = _services.files;
    if (!files.isDirectoryAtPath(path)) {
        const auto codes = files.hfsCodesOfItemAtPath(path);
        const uint32_t value = codes ? (*codes).*code : 0;
        return _services.defaults.setObject(platform::utf8FromUTF16(StringFromFourCharCode(value)),
                                            codeKey);
    }
    if (const auto text = bundleString(files, path, bundleKey))
        _services.defaults.setObject(*text, codeKey);
    else
        _services.defaults.removeObjectForKey(codeKey);
}

} // namespace zelmora
