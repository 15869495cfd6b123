#include "app/settings_summary.h"

#include "engine/conversion_log.h"
#include "engine/settings.h"

#include <array>
#include <string_view>
#include <utility>

namespace zelmora {

namespace {

constexpr std::array<std::string_view, 3> summaryKeys{
    settings::encodingCode, settings::lineBreakCode, settings::autoBackup};

// By the setting's value; the third letter of the last key is the table's own.
constexpr std::array<std::string_view, 5> lineBreakKeys{
    "SummaryLineBreaksKept", "LineBreakLF", "LineBreakCR", "LineBreakCRLF", "LIneBreakLS"};

} // namespace

std::string settingsSummary(const platform::UserDefaults& defaults,
                            const platform::LocalizedStrings& strings) {
    const auto encodingKey = encodingNameKey(
        static_cast<OrvEncoding>(settings::codeForKey(defaults, settings::encodingCode)));
    const auto encoding = encodingKey.empty() ? strings.stringForKey("SummaryEncodingKept")
                                              : strings.format("SummaryEncoding",
                                                               {strings.stringForKey(encodingKey)});
    const auto lineBreak =
        static_cast<uint32_t>(settings::codeForKey(defaults, settings::lineBreakCode));
    const auto separator = strings.stringForKey("SummarySeparator");
    return encoding + separator +
           strings.stringForKey(lineBreakKeys[lineBreak < lineBreakKeys.size() ? lineBreak : 0]) +
           separator +
           strings.stringForKey(defaults.boolForKey(settings::autoBackup) ? "SummaryBackupOn"
                                                                          : "SummaryBackupOff");
}

SettingsSummary::SettingsSummary(platform::UserDefaults& defaults,
                                 const platform::LocalizedStrings& strings,
                                 platform::RunLoop& mainLoop, Show show)
    : _defaults(defaults), _update(std::make_shared<std::function<void()>>(
                               [&defaults, &strings, tell = std::move(show)] {
                                   tell(settingsSummary(defaults, strings));
                               })) {
    // The change may come from any thread, and from the middle of other work.
    const auto updateLater = [&mainLoop, update = std::weak_ptr(_update)](std::string_view) {
        mainLoop.mainQueue().async([update] {
            if (const auto current = update.lock())
                (*current)();
        });
    };
    for (const auto key : summaryKeys)
        _observers.push_back(defaults.addObserver(key, updateLater));
    (*_update)();
}

SettingsSummary::~SettingsSummary() {
    for (const auto observer : _observers)
        _defaults.removeObserver(observer);
}

} // namespace zelmora
