#include "platform/desktop/string_table_translator.h"

namespace zelmora::platform {

QString StringTableTranslator::translate(const char*, const char* sourceText, const char*,
                                         int) const {
    const auto found = _strings.table().find(std::string_view(sourceText));
    return found == _strings.table().end() ? QString() : QString::fromStdString(found->second);
}

} // namespace zelmora::platform
