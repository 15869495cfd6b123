#include "app/detect_report.h"

#include "engine/settings.h"
#include "platform/text/utf8.h"
#include "textutil/text_utility.h"

#include <array>

namespace zelmora {

namespace {

// Indexed by code. Machine-readable words: the same in every language.
constexpr std::array<std::string_view, 7> encodingNames = {
    "none", "Shift_JIS", "ISO-2022-JP", "EUC-JP", "UTF-8", "UTF-16", "UTF-32"};
constexpr std::array<std::string_view, 3> byteOrderNames = {"none", "little", "big"};
constexpr std::array<std::string_view, 5> lineBreakNames = {"none", "LF", "CR", "CRLF", "LS"};

template<size_t N, typename Code>
std::string_view nameOf(const std::array<std::string_view, N>& names, Code code) {
    return names.at(static_cast<size_t>(code));
}

} // namespace

platform::Result<std::string> detectReportLine(const platform::UserDefaults& defaults,
                                               platform::FileManager& files,
                                               const std::string& path) {
    const auto contents = files.contentsAtPath(path);
    if (!contents.ok())
        return contents.error();
    const auto textUtility = OrvTextUtility::instance();
    auto info = textUtility->encodingInfoOfTextData(*contents);
    info.characterMapping = static_cast<OrvCharacterMapping>(
        settings::codeForKey(defaults, settings::sjisDeviceCharRead));
    const auto text = textUtility->stringWithData(*contents, info);
    const auto lineBreak = text ? textUtility->lineBreakTypeOfString(*text) : OrvLineBreak::none;

    std::string line = platform::terminalPath(path);
    line.append("\t").append(nameOf(encodingNames, info.encoding));
    line.append("\t").append(nameOf(byteOrderNames, info.byteOrder));
    line.append("\t").append(info.hasBOM ? "yes" : "no");
    line.append("\t").append(nameOf(lineBreakNames, lineBreak));
    return line;
}

} // namespace zelmora
