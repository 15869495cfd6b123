// The texts of interface descriptions in the user's language.
#pragma once

#include "platform/defaults/localized_strings.h"

#include <QTranslator>

namespace zelmora::platform {

/// Serves the application's string table to Qt: every text in an interface description is a key of
/// it. Install it (QCoreApplication::installTranslator) before an interface is loaded. A text that
/// is no key is left to the other translators, and in the end stands as it is.
class StringTableTranslator final : public QTranslator {
  public:
    /// `strings` is borrowed and must outlive the translator.
    explicit StringTableTranslator(const LocalizedStrings& strings) : _strings(strings) {}

    [[nodiscard]] QString translate(const char* context, const char* sourceText,
                                    const char* disambiguation, int count) const override;
    /// Qt does not install a translator that says it is empty.
    [[nodiscard]] bool isEmpty() const override { return false; }

  private:
    const LocalizedStrings& _strings;
};

} // namespace zelmora::platform
