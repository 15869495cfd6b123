// Any bytes as a path and as a file URL: the pieces of a path put together are the path, a path
// written as a URL is read back, and what is shown of it can do nothing to a terminal.
#include "fuzz_input.h"
#include "platform/text/file_url.h"
#include "platform/text/path_string.h"
#include "platform/text/text_encoding.h"
#include "platform/text/utf8.h"

#include <algorithm>

using namespace zelmora;
using namespace zelmora::platform;
using fuzz::require;

namespace {

void tryURL(const std::string& url) {
    const auto path = pathFromFileURL(url);
    if (!path)
        return;
    require(path->starts_with('/') && path->find('\0') == path->npos);
    require(pathFromFileURL(fileURLFromPath(*path)) == path);
}

void tryPath(const std::string& path) {
    std::string trimmed = path;
    while (trimmed.size() > 1 && trimmed.ends_with('/'))
        trimmed.pop_back();
    const std::string name = lastPathComponent(path);
    require(trimmed == "/" || name == trimmed.substr(trimmed.rfind('/') + 1));
    require(name.empty() == path.empty());
    const std::string folder = deletingLastPathComponent(path);
    require(trimmed.starts_with(folder) && (folder != trimmed || trimmed.size() <= 1));

    const std::string extension = pathExtension(path);
    const std::string base = deletingPathExtension(path);
    require(extension.find_first_of("./") == extension.npos);
    require(base == trimmed || base + "." + extension == trimmed);
    require(extension.empty() || appendingPathExtension(base, extension) == trimmed);
    require(pathExtension(name) == extension);
    if (trimmed != "/" && folder.find("//") == folder.npos)
        require(lastPathComponent(appendingPathComponent(folder, name)) == name);
    require(absolutePath(path).starts_with('/'));
}

std::optional<std::u16string> textOf(std::string_view utf8) {
    return decodeText(bytesOf(utf8), TextEncoding::utf8);
}

void tryShowing(const std::string& path) {
    const std::string shown = displayPath(path);
    require(textOf(shown).has_value());
    if (const auto text = textOf(path))
        require(shown == path && utf8FromUTF16(*text) == path);
    const auto onTerminal = textOf(terminalPath(path));
    require(onTerminal && std::ranges::none_of(*onTerminal, [](char16_t unit) {
                return unit < 0x20 || (unit >= 0x7F && unit < 0xA0);
            }));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text = fuzz::Input(data, size).restAsString();
    tryURL(text);
    tryURL("file:" + text);
    if (text.starts_with('/') && text.find('\0') == text.npos)
        require(pathFromFileURL(fileURLFromPath(text)) == text);
    tryPath(text);
    tryShowing(text);
    return 0;
}
