// The settings: the one list of their keys and types, and their registered defaults. Values live in
// the UserDefaults store; whoever needs one reads it there when it is needed, nothing keeps a copy.
#pragma once

#include "platform/defaults/bundle.h"
#include "platform/defaults/user_defaults.h"
#include "platform/files/file_manager.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace zelmora::settings {

// Which files are converted. An extension list is an array of {"nameExtension": string}.
inline constexpr std::string_view nameExtensionArray = "nameExtensionArray";
inline constexpr std::string_view allowConvertNoNameExtension = "allowConvertNoNameExtension";
inline constexpr std::string_view allowConvertHiddenFiles = "allowConvertHiddenFiles";
inline constexpr std::string_view htmlExtensionArray = "htmlExtensionArray";
inline constexpr std::string_view xmlExtensionArray = "xmlExtensionArray";

// The text.
inline constexpr std::string_view lineBreakCode = "lineBreakCode"; ///< 0 keep, 1 LF .. 4 LS
inline constexpr std::string_view encodingCode =
    "encodingCode"; ///< 0 keep, 1 Shift_JIS .. 6 UTF-32
inline constexpr std::string_view littleEndian = "littleEndian"; ///< for UTF-16 and UTF-32
inline constexpr std::string_view putBOM = "putBOM";             ///< for UTF-8, UTF-16 and UTF-32
inline constexpr std::string_view sjisDeviceCharRead = "sjisDeviceCharRead";   ///< 0 Mac, 1 Windows
inline constexpr std::string_view sjisDeviceCharWrite = "sjisDeviceCharWrite"; ///< 0 Mac, 1 Windows
inline constexpr std::string_view halfToFullKatakana = "halfToFullKatakana";

// The charset declarations.
inline constexpr std::string_view replaceMETA = "replaceMETA";
inline constexpr std::string_view exportMETA = "exportMETA";
inline constexpr std::string_view replaceXMLProc = "replaceXMLProc";
inline constexpr std::string_view replaceCSSCharSet = "replaceCSSCharSet";
inline constexpr std::string_view exportCSSCharSet = "exportCSSCharSet";
inline constexpr std::string_view replaceLink = "replaceLink";

// The converted file.
inline constexpr std::string_view actionForCreator = "actionForCreator"; ///< 0 keep, 1 set, 2 none
inline constexpr std::string_view creatorCode = "creatorCode";           ///< up to 4 characters
inline constexpr std::string_view actionForFileType = "actionForFileType"; ///< as actionForCreator
inline constexpr std::string_view fileType = "fileType";                   ///< as creatorCode
inline constexpr std::string_view convertExtension =
    "convertExtension"; ///< 0 keep, 1 set, 2 remove
inline constexpr std::string_view extensionOfDstFiles = "extensionOfDstFiles"; ///< without the dot
inline constexpr std::string_view actionForAddingExtension =
    "actionForAddingExtension"; ///< 1 append to the old extension, 2 replace it, 0 leave the name

// Backup and log. A leading "~" of the paths stands for the home folder.
inline constexpr std::string_view autoBackup = "autoBackup";
inline constexpr std::string_view backupDataDir = "backupDataDir";
inline constexpr std::string_view actionForDupBackupFiles =
    "actionForDupBackupFiles"; ///< name taken: 0 no copy, 1 remove the old copy, 2 number the new
inline constexpr std::string_view createLogFile = "createLogFile";
inline constexpr std::string_view logFilePath = "logFilePath";

// The application.
inline constexpr std::string_view autoQuit = "autoQuit";
inline constexpr std::string_view displayManualAlert = "displayManualAlert"; ///< YES: was asked

/// Every key above with its type. Lives as long as the process.
[[nodiscard]] std::span<const platform::SettingKey> allKeys();

/// The entry of allKeys() with this name, null when there is none.
[[nodiscard]] const platform::SettingKey* keyNamed(std::string_view name);

/// The value that `text` writes for `key`: a boolean as YES, NO, true, false, 1 or 0; a decimal
/// integer of 64 bits with or without a sign; a string as it is, empty too; an extension list as
/// its extensions without dots between commas, nothing for the empty list. Nullopt when `text`
/// writes no such value.
[[nodiscard]] std::optional<platform::PropertyListValue>
valueFromText(const platform::SettingKey& key, std::string_view text);

/// The integer under `key` as the engine's codes hold it: its low 32 bits.
[[nodiscard]] inline int32_t codeForKey(const platform::UserDefaults& defaults,
                                        std::string_view key) {
    return static_cast<int32_t>(defaults.integerForKey(key));
}

/// Registers the values of the resource UserDefaults.plist. When it is missing or no dictionary,
/// nothing is registered and every key without a value reads as 0, NO or nothing.
void registerDefaults(platform::UserDefaults& defaults, platform::FileManager& files,
                      const platform::Bundle& bundle);

} // namespace zelmora::settings
