#include "platform/defaults/user_defaults.h"

#include <gtest/gtest.h>

namespace zelmora::platform {
namespace {

TEST(UserDefaultsTest, WhatIsOfAnotherTypeIsNotGuessed) {
    UserDefaults defaults;
    for (const PropertyListValue& value : {PropertyListValue("12abc"), PropertyListValue(1e19),
                                           PropertyListValue(PropertyListArray{1})}) {
        defaults.setObject(value, "key");
        EXPECT_EQ(defaults.integerForKey("key"), 0);
        EXPECT_EQ(defaults.objectForKey("key"), value);
    }
    EXPECT_EQ(defaults.stringForKey("key"), std::nullopt);
    defaults.setObject("12", "key");
    EXPECT_EQ(defaults.integerForKey("key"), 12);
    EXPECT_EQ(defaults.arrayForKey("key"), std::nullopt);
}

TEST(UserDefaultsTest, ReadsTheFirstLayerThatHasTheKey) {
    UserDefaults defaults;
    defaults.registerDefaults({{"key", 1}, {"other", 10}});
    EXPECT_EQ(defaults.integerForKey("key"), 1);
    defaults.setInteger(2, "key");
    EXPECT_EQ(defaults.integerForKey("key"), 2);
    defaults.registerDefaults({{"key", 9}});
    EXPECT_EQ(defaults.integerForKey("key"), 2);
    defaults.setValueForThisRun(3, "key");
    EXPECT_EQ(defaults.integerForKey("key"), 3);
    defaults.setInteger(4, "key");
    EXPECT_EQ(defaults.integerForKey("key"), 4) << "a write is what the next read sees";
    defaults.removeObjectForKey("key");
    EXPECT_EQ(defaults.integerForKey("key"), 9);
    EXPECT_EQ(defaults.integerForKey("other"), 10) << "registering adds";
}

TEST(UserDefaultsTest, TellsObserversWhatNowReadsDifferently) {
    UserDefaults defaults;
    std::vector<int64_t> seen;
    const auto observer = defaults.addObserver("key", [&](std::string_view key) {
        EXPECT_EQ(key, "key");
        seen.push_back(defaults.integerForKey("key"));
        defaults.setInteger(1, "other"); // would hang if a lock were held
    });
    defaults.registerDefaults({{"key", 1}});
    defaults.setInteger(1, "key"); // reads as before
    defaults.setInteger(2, "key");
    defaults.setInteger(5, "other");
    defaults.setValueForThisRun(3, "key");
    defaults.removeObjectForKey("key");
    EXPECT_EQ(seen, (std::vector<int64_t>{1, 2, 3, 1}));
    defaults.removeObserver(observer);
    defaults.setInteger(7, "key");
    EXPECT_EQ(seen.size(), 4U);
}

} // namespace
} // namespace zelmora::platform
