#include "platform/events/notification_center.h"

#include <gtest/gtest.h>
#include <string>

namespace zelmora::platform {
namespace {

TEST(NotificationCenter, DeliversByNameInTheOrderOfRegistration) {
    NotificationCenter center;
    std::string heard;
    const auto first = center.addObserver("end", [&] { heard += "1"; });
    center.addObserver("other", [&] { heard += "x"; });
    center.addObserver("end", [&] { heard += "2"; });
    center.post("end");
    center.post("nobody asked for this");
    EXPECT_EQ(heard, "12");

    center.removeObserver(first);
    center.removeObserver(first);
    center.post("end");
    EXPECT_EQ(heard, "122");
}

TEST(NotificationCenter, LetsAHandlerAddAndRemoveObservers) {
    NotificationCenter center;
    std::string heard;
    NotificationCenter::ObserverID once = 0;
    once = center.addObserver("end", [&] {
        heard += "1";
        center.removeObserver(once);
        center.addObserver("end", [&] { heard += "2"; });
    });
    center.post("end");
    EXPECT_EQ(heard, "1") << "added while it was delivered";
    center.post("end");
    EXPECT_EQ(heard, "12");
}

} // namespace
} // namespace zelmora::platform
