#include "platform/text/diagnostic_log.h"

#include <cstdio>
#include <string>

namespace zelmora::platform {

void platformLog(std::string_view message) {
    const std::string line = std::string(message) + '\n';
    std::fwrite(line.data(), 1, line.size(), stderr); // one call: the stream locks itself
}

} // namespace zelmora::platform
