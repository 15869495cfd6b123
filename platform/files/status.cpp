#include "platform/files/status.h"

#include "platform/text/utf8.h"

#include <cstring>

namespace zelmora::platform {

Error Error::fromErrno(int code, std::string_view path, std::string_view operation) {
    // Not strerror: its words follow the locale, in the locale's encoding, and messages are UTF-8.
    const char* description = strerrordesc_np(code);
    std::string message = terminalPath(path);
    message.append(": ").append(operation).append(": ");
    message += description != nullptr ? description : "error " + std::to_string(code);
    return {code, std::move(message)};
}

} // namespace zelmora::platform
