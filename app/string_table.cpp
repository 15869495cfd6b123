#include "app/string_table.h"

#include <cstdio>
#include <utility>

namespace zelmora {

platform::LocalizedStrings loadStringTable(const platform::Bundle& bundle,
                                           platform::FileManager& files) {
    auto strings = bundle.localizedStrings(files, platform::preferredLanguage());
    if (strings.ok())
        return std::move(*strings);
    // In the one language left.
    std::fprintf(stderr, "%s\n", strings.error().message.c_str());
    return {};
}

} // namespace zelmora
