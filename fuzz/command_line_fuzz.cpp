// Any arguments, a NUL after each: they are refused with a message, or give settings of the types
// that their keys have and paths as they were written.
#include "app/console_options.h"
#include "engine/settings.h"
#include "fuzz_input.h"

#include <algorithm>

using namespace zelmora;
using fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string written = fuzz::Input(data, size).restAsString();
    std::vector<const char*> arguments;
    for (size_t at = 0; at < written.size(); at = std::min(written.find('\0', at), size) + 1)
        arguments.push_back(written.c_str() + at);
    const auto parsed = parseConsoleOptions(arguments, platform::LocalizedStrings());
    if (const auto* error = std::get_if<UsageError>(&parsed)) {
        require(!error->message.empty());
        return 0;
    }
    const auto& options = std::get<ConsoleOptions>(parsed);
    for (const auto& [name, value] : options.settings) {
        const auto* key = settings::keyNamed(name);
        require(key != nullptr && platform::isValueOfType(value, key->type));
    }
    auto argument = arguments.begin();
    for (const auto& path : options.paths) { // in their order
        argument = std::find(argument, arguments.end(), path);
        require(argument != arguments.end());
        ++argument;
    }
    return 0;
}
