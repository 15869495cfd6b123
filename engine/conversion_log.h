// The log file: one line for each backup and each conversion.
#pragma once

#include "engine/services.h"
#include "textutil/encoding_info.h"

#include <memory>
#include <string>
#include <string_view>

namespace zelmora {

/// The localized-string key of an encoding's name; empty for `none` and codes without a name.
[[nodiscard]] std::string_view encodingNameKey(OrvEncoding encoding);

/// What one conversion line tells, as the settings and the detector had it.
struct ConversionLogEntry {
    bool result = false;
    std::string_view filePath; ///< the source's path, raw bytes
    OrvLineBreak srcLineBreak = OrvLineBreak::none;
    OrvLineBreak dstLineBreak = OrvLineBreak::none;
    OrvEncodingInfo srcEncodingInfo;
    OrvEncodingInfo dstEncodingInfo; ///< encoding `none`: the file keeps its encoding
    bool halfwidthKatakana = false;
    bool html = false;
    bool xml = false;
};

/// Writes lines "date time action result detail" at the end of the file under `logFilePath`:
/// UTF-8, a line feed after each. Callers test `createLogFile`; this decides where and how.
/// Failures are silent by design: logging never affects a conversion. Safe on any thread; each
/// line is one append, so lines of several threads and processes do not mix.
class ZelLog {
  public:
    explicit ZelLog(const EngineServices& services) : _services(services) {}

    /// The shared instance, made on first use with the services of that first caller and released
    /// when the application is about to terminate. Whoever holds the answer keeps it alive.
    static std::shared_ptr<ZelLog> sharedLog(const EngineServices& services);
    /// Releases the shared instance; the handler of the application-will-terminate notification.
    static void callRelease();

    /// One backup line; paths are raw bytes.
    void logBackupActionWithResult(bool result, std::string_view srcPath, std::string_view dstPath);
    /// One conversion line.
    void logConversionActionWithResult(const ConversionLogEntry& entry);
    /// One line of any action; texts are UTF-8.
    void logWithAction(std::string_view action, bool result, std::string_view detail);

  private:
    [[nodiscard]] std::string word(std::string_view key) const;
    [[nodiscard]] std::string yesNoItem(std::string_view key, bool value) const;
    [[nodiscard]] std::string lineBreakItem(const ConversionLogEntry& entry) const;
    [[nodiscard]] std::string encodingItem(const ConversionLogEntry& entry) const;
    [[nodiscard]] std::string byteOrderItem(const ConversionLogEntry& entry) const;
    [[nodiscard]] std::string markItem(const ConversionLogEntry& entry) const;
    void appendLine(const std::string& path, std::string_view line);

    EngineServices _services;
};

/// Makes sure that a folder is at `path`, creating it and the missing folders above it. Answers
/// whether it is one afterwards: NO when the path or one above it is there but is no folder.
bool MakeDirectoryPath(platform::FileManager& files, const std::string& path);

} // namespace zelmora
