#include "engine/conversion_log.h"

#include "engine/settings.h"
#include "platform/events/notification_center.h"
#include "platform/text/path_string.h"
#include "platform/text/utf8.h"
#include "platform/threads/mutex.h"

#include <array>
#include <cerrno>
#include <ctime>
#include <vector>

namespace zelmora {

namespace {

platform::Mutex sharedLogMutex;
std::shared_ptr<ZelLog> theSharedLog GUARDED_BY(sharedLogMutex);

// Localized-string keys, indexed by code - 1. "LIneBreakLS" is spelled so in the string tables.
constexpr std::array<std::string_view, 4> lineBreakKeys = {"LineBreakLF", "LineBreakCR",
                                                           "LineBreakCRLF", "LIneBreakLS"};
constexpr std::array<std::string_view, 6> encodingKeys = {"EncodingCodeSJIS",  "EncodingCodeJIS",
                                                          "EncodingCodeEUCJP", "EncodingCodeUTF8",
                                                          "EncodingCodeUTF16", "EncodingCodeUTF32"};

/// The key of a code, empty for a code without a name.
template<size_t N, typename Code>
std::string_view keyOfCode(const std::array<std::string_view, N>& keys, Code code) {
    const auto index = static_cast<int64_t>(code) - 1;
    return index >= 0 && index < static_cast<int64_t>(N) ? keys[static_cast<size_t>(index)]
                                                         : std::string_view();
}

bool hasByteOrder(OrvEncodingInfo info) {
    return info.encoding == OrvEncoding::utf16 || info.encoding == OrvEncoding::utf32;
}

bool canHaveMark(OrvEncodingInfo info) {
    return info.encoding == OrvEncoding::utf8 || hasByteOrder(info);
}

std::string_view byteOrderKey(OrvEncodingInfo info) {
    if (hasByteOrder(info) && info.byteOrder == OrvByteOrder::littleEndian)
        return "LittleEndian";
    if (hasByteOrder(info) && info.byteOrder == OrvByteOrder::bigEndian)
        return "BigEndian";
    return "Unknown";
}

std::string_view markKey(OrvEncodingInfo info) {
    return canHaveMark(info) && info.hasBOM ? "Available" : "Unavailable";
}

std::string change(const std::string& from, const std::string& to) {
    return from + "->" + to;
}

/// Local time as "2024/03/05 09:07:02".
std::string timeStamp() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    std::array<char, 64> text{};
    const size_t length = std::strftime(text.data(), text.size(), "%Y/%m/%d %H:%M:%S", &local);
    return {text.data(), length};
}

} // namespace

std::string_view encodingNameKey(OrvEncoding encoding) {
    return keyOfCode(encodingKeys, encoding);
}

std::shared_ptr<ZelLog> ZelLog::sharedLog(const EngineServices& services) {
    const platform::MutexLock lock(sharedLogMutex);
    if (!theSharedLog) {
        theSharedLog = std::make_shared<ZelLog>(services);
        // Registered once for the process; it releases whichever instance is shared by then.
        [[maybe_unused]] static const auto observer =
            platform::NotificationCenter::defaultCenter().addObserver(
                platform::applicationWillTerminateNotification, [] { callRelease(); });
    }
    return theSharedLog;
}

void ZelLog::callRelease() {
    const platform::MutexLock lock(sharedLogMutex);
    theSharedLog.reset();
}

void ZelLog::logBackupActionWithResult(bool result, std::string_view srcPath,
                                       std::string_view dstPath) {
    const auto& strings = _services.strings;
    logWithAction(word("ActionBackup"), result,
                  strings.format("BackupSrc", {platform::displayPath(srcPath)}) + " " +
                      strings.format("BackupDst", {platform::displayPath(dstPath)}));
}

void ZelLog::logConversionActionWithResult(const ConversionLogEntry& entry) {
    std::string detail =
        _services.strings.format("ConversionFilePath", {platform::displayPath(entry.filePath)});
    detail += " " + lineBreakItem(entry);
    detail += " " + encodingItem(entry);
    if (hasByteOrder(entry.srcEncodingInfo) || hasByteOrder(entry.dstEncodingInfo))
        detail += " " + byteOrderItem(entry);
    if (canHaveMark(entry.srcEncodingInfo) || canHaveMark(entry.dstEncodingInfo))
        detail += " " + markItem(entry);
    detail += " " + yesNoItem("ConversionHalfwidthKatakana", entry.halfwidthKatakana);
    detail += " " + yesNoItem("ConversionHTML", entry.html);
    detail += " " + yesNoItem("ConversionXML", entry.xml);
    logWithAction(word("ActionConversion"), entry.result, detail);
}

void ZelLog::logWithAction(std::string_view action, bool result, std::string_view detail) {
    const auto path = _services.defaults.stringForKey(settings::logFilePath);
    if (!path || path->empty())
        return;
    std::string line = timeStamp();
    line.append(" ").append(action);
    line.append(" ").append(word(result ? "Success" : "Fail"));
    line.append(" ").append(detail).append("\n");
    appendLine(platform::expandingTilde(*path), line);
}

void ZelLog::appendLine(const std::string& path, std::string_view line) {
    auto& files = _services.files;
    const auto bytes = platform::bytesOf(line);
    const auto appended = files.appendToFileAtPath(path, bytes);
    if (appended.ok() || appended.error().code != ENOENT)
        return;
    MakeDirectoryPath(files, platform::deletingLastPathComponent(path));
    const auto created = files.createFileAtPath(path, bytes);
    // Another thread or process made the file meanwhile: the line goes below theirs.
    if (!created.ok() && created.error().code == EEXIST)
        static_cast<void>(files.appendToFileAtPath(path, bytes));
}

std::string ZelLog::word(std::string_view key) const {
    return _services.strings.stringForKey(key);
}

std::string ZelLog::yesNoItem(std::string_view key, bool value) const {
    return _services.strings.format(key, {word(value ? "Yes" : "No")});
}

std::string ZelLog::lineBreakItem(const ConversionLogEntry& entry) const {
    const auto from = keyOfCode(lineBreakKeys, entry.srcLineBreak);
    const auto to = keyOfCode(lineBreakKeys, entry.dstLineBreak);
    const bool converted = !from.empty() && !to.empty();
    return _services.strings.format(
        "ConversionLineBreak", {converted ? change(word(from), word(to)) : word("NotConvert")});
}

std::string ZelLog::encodingItem(const ConversionLogEntry& entry) const {
    const auto from = encodingNameKey(entry.srcEncodingInfo.encoding);
    const auto to = encodingNameKey(entry.dstEncodingInfo.encoding);
    const auto toWord = word(to.empty() ? "NotConvert" : to);
    return _services.strings.format(
        "ConversionEncoding", {from.empty() ? word("NotConvert") : change(word(from), toWord)});
}

std::string ZelLog::byteOrderItem(const ConversionLogEntry& entry) const {
    return _services.strings.format("ConversionByteOrder",
                                    {change(word(byteOrderKey(entry.srcEncodingInfo)),
                                            word(byteOrderKey(entry.dstEncodingInfo)))});
}

std::string ZelLog::markItem(const ConversionLogEntry& entry) const {
    return _services.strings.format(
        "ConversionBOM",
        {change(word(markKey(entry.srcEncodingInfo)), word(markKey(entry.dstEncodingInfo)))});
}

bool MakeDirectoryPath(platform::FileManager& files, const std::string& path) {
    std::vector<std::string> levels{path};
    for (auto parent = platform::deletingLastPathComponent(path); parent.size() >= 2;
         parent = platform::deletingLastPathComponent(parent))
        levels.push_back(parent);
    for (auto level = levels.rbegin(); level != levels.rend(); ++level) {
        if (files.fileExistsAtPath(*level) ? !files.isDirectoryAtPath(*level)
                                           : !files.createDirectoryAtPath(*level).ok())
            return false;
    }
    return true;
}

} // namespace zelmora
