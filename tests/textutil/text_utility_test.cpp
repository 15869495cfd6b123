#include "platform/events/notification_center.h"
#include "textutil/text_utility_private.h"

#include <gtest/gtest.h>

#include <array>
#include <thread>

namespace zelmora {
namespace {

TEST(TextUtility, OneObjectFromFirstUseToTermination) {
    std::array<std::shared_ptr<OrvTextUtility>, 4> seen;
    {
        std::vector<std::jthread> threads;
        for (auto& utility : seen)
            threads.emplace_back([&utility] { utility = OrvTextUtility::instance(); });
    }
    for (const auto& utility : seen)
        EXPECT_EQ(utility, seen[0]);
    const std::weak_ptr<OrvTextUtility> watcher = seen[0];
    seen.fill(nullptr);
    EXPECT_FALSE(watcher.expired());
    auto& center = platform::NotificationCenter::defaultCenter();
    center.post(platform::applicationWillTerminateNotification);
    EXPECT_TRUE(watcher.expired());
    center.post(platform::applicationWillTerminateNotification); // nobody is left to be told
    EXPECT_NE(OrvTextUtility::instance(), nullptr);
    OrvTextUtility::callRelease();
}

TEST(TextUtility, TheBaseDoesNothing) {
    const OrvTextUtility base;
    const platform::ByteView data = platform::bytesOf("\x81");
    std::u16string text = u"ｱ\n";
    base.convertLineBreakOfString(text, OrvLineBreak::lf, OrvLineBreak::cr);
    base.convertHalfToFullKatakanaOfString(text);
    EXPECT_EQ(text, u"ｱ\n");
    EXPECT_EQ(base.lineBreakTypeOfString(text), OrvLineBreak::none);
    EXPECT_EQ(base.encodingInfoOfTextData(data), OrvEncodingInfo{});
    EXPECT_EQ(base.stringWithData(data, {}), std::nullopt);
    EXPECT_EQ(base.dataWithString(text, {}), std::nullopt);
}

} // namespace
} // namespace zelmora
