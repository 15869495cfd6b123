// Any bytes as a string table: what is read is the same when it is written out and read again, and
// any text can be formatted.
#include "fuzz_input.h"
#include "platform/defaults/localized_strings.h"

using namespace zelmora;
using fuzz::require;
using platform::LocalizedStrings;

namespace {

std::string quoted(std::string_view text) {
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\')
            quoted += '\\';
        quoted += c;
    }
    return quoted + '"';
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const auto strings = LocalizedStrings::parse(fuzz::Input(data, size).restAsString(), "fuzz");
    if (!strings)
        return 0;
    std::string written;
    for (const auto& [key, text] : strings->table()) {
        written += quoted(key) + "=" + quoted(text) + ";";
        require(strings->stringForKey(key) == text);
        require(text.find('%') != text.npos || strings->format(key, {"a"}) == text);
        static_cast<void>(strings->format(key, {"%1$@", "%%"}));
    }
    const auto again = LocalizedStrings::parse(written, "again");
    require(again.ok() && again->table() == strings->table());
    return 0;
}
