#include "platform/text/file_url.h"

namespace zelmora::platform {

namespace {

std::optional<unsigned> hexDigit(char c) {
    if (c >= '0' && c <= '9')
        return static_cast<unsigned>(c - '0');
    if (c >= 'a' && c <= 'f')
        return static_cast<unsigned>(c - 'a' + 10);
    if (c >= 'A' && c <= 'F')
        return static_cast<unsigned>(c - 'A' + 10);
    return std::nullopt;
}

std::optional<std::string> percentDecoded(std::string_view text) {
    std::string decoded;
    decoded.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            decoded.push_back(text[i]);
            continue;
        }
        if (text.size() - i < 3)
            return std::nullopt;
        const auto high = hexDigit(text[i + 1]);
        const auto low = hexDigit(text[i + 2]);
        if (!high || !low || (*high == 0 && *low == 0))
            return std::nullopt;
        decoded.push_back(static_cast<char>(*high << 4 | *low));
        i += 2;
    }
    return decoded;
}

} // namespace

std::optional<std::string> pathFromFileURL(std::string_view url) {
    constexpr std::string_view scheme = "file:";
    if (!url.starts_with(scheme) || url.find('\0') != url.npos)
        return std::nullopt;
    url.remove_prefix(scheme.size());
    if (url.starts_with("//")) {
        url.remove_prefix(2);
        constexpr std::string_view thisHost = "localhost";
        if (url.starts_with(thisHost))
            url.remove_prefix(thisHost.size());
    }
    if (!url.starts_with('/'))
        return std::nullopt;
    return percentDecoded(url.substr(0, url.find_first_of("?#")));
}

std::string fileURLFromPath(std::string_view path) {
    constexpr std::string_view unescaped =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string url = "file://";
    for (const char c : path) {
        if (unescaped.find(c) != std::string_view::npos) {
            url.push_back(c);
            continue;
        }
        const auto byte = static_cast<unsigned char>(c);
        url.append({'%', digits[byte >> 4], digits[byte & 15]});
    }
    return url;
}

} // namespace zelmora::platform
