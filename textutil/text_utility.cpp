#include "textutil/text_utility.h"

#include "platform/events/notification_center.h"
#include "platform/threads/mutex.h"
#include "textutil/text_utility_private.h"

namespace zelmora {
namespace {

struct SharedUtility {
    platform::Mutex mutex;
    std::shared_ptr<OrvTextUtility> utility GUARDED_BY(mutex);
    platform::NotificationCenter::ObserverID observer GUARDED_BY(mutex) = 0;
};

SharedUtility& shared() {
    static SharedUtility shared;
    return shared;
}

} // namespace

std::shared_ptr<OrvTextUtility> OrvTextUtility::instance() {
    SharedUtility& holder = shared();
    const platform::MutexLock lock(holder.mutex);
    if (!holder.utility) {
        holder.utility = std::make_shared<OrvTextUtilityPrivate>();
        holder.observer = platform::NotificationCenter::defaultCenter().addObserver(
            platform::applicationWillTerminateNotification, callRelease);
    }
    return holder.utility;
}

void OrvTextUtility::callRelease() {
    SharedUtility& holder = shared();
    const platform::MutexLock lock(holder.mutex);
    if (holder.utility)
        platform::NotificationCenter::defaultCenter().removeObserver(holder.observer);
    holder.utility.reset();
}

OrvLineBreak OrvTextUtility::lineBreakTypeOfString(std::u16string_view) const {
    return OrvLineBreak::none;
}

OrvEncodingInfo OrvTextUtility::encodingInfoOfTextData(std::optional<platform::ByteView>) const {
    return {};
}

std::optional<std::u16string> OrvTextUtility::stringWithData(std::optional<platform::ByteView>,
                                                             OrvEncodingInfo) const {
    return std::nullopt;
}

void OrvTextUtility::convertLineBreakOfString(std::u16string&, OrvLineBreak, OrvLineBreak) const {}

std::optional<platform::Bytes> OrvTextUtility::dataWithString(std::optional<std::u16string_view>,
                                                              OrvEncodingInfo) const {
    return std::nullopt;
}

std::optional<platform::Bytes> OrvTextUtility::dataWithString(std::optional<std::u16string_view>,
                                                              OrvEncodingInfo,
                                                              platform::Alterations&) const {
    return std::nullopt;
}

void OrvTextUtility::convertHalfToFullKatakanaOfString(std::u16string&) const {}

} // namespace zelmora
