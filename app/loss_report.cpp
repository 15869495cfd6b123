#include "app/loss_report.h"

#include "platform/text/utf8.h"

namespace zelmora {

platform::Status LossReport::create() {
    return _files.createFileAtPath(_path, {});
}

platform::Status LossReport::add(const LostCharacters& lost) {
    const std::string path = platform::terminalPath(lost.path);
    std::string lines;
    for (const auto& [line, column, codePoint, written] : lost.listed) {
        lines.append(path).append("\t").append(std::to_string(line));
        lines.append("\t")
            .append(std::to_string(column))
            .append("\t")
            .append(codePointName(codePoint));
        lines.append("\t").append(written).append("\n");
    }
    if (lost.count > lost.listed.size())
        lines.append(path)
            .append("\t-\t-\t+")
            .append(std::to_string(lost.count - lost.listed.size()))
            .append("\t\n");
    return _files.appendToFileAtPath(_path, platform::bytesOf(lines));
}

} // namespace zelmora
