#include "app/path_argument.h"

#include "platform/text/path_string.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string_view>

namespace zelmora {

std::string pathFromArgument(const std::string& argument) {
    if (argument.empty())
        return {};
    const auto absolute = platform::absolutePath(argument);
    if ((absolute + "/").find("/../") != std::string::npos) {
        const std::unique_ptr<char, decltype(&std::free)> resolved(
            realpath(absolute.c_str(), nullptr), &std::free);
        return resolved ? std::string(resolved.get()) : absolute;
    }
    std::string path;
    for (size_t start = 0; start < absolute.size();) {
        const auto end = std::min(absolute.find('/', start), absolute.size());
        const auto component = std::string_view(absolute).substr(start, end - start);
        if (!component.empty() && component != ".")
            path.append("/").append(component);
        start = end + 1;
    }
    return path.empty() ? "/" : path;
}

} // namespace zelmora
