#include "platform/defaults/user_defaults.h"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>

namespace zelmora::platform {
namespace {

TEST(UserDefaultsTest, TurnsValuesIntoTheTypeAskedFor) {
    const struct {
        PropertyListValue value;
        int64_t integer;
        bool boolean;
        std::optional<std::string> string;
    } cases[] = {
        {true, 1, true, "1"},
        {2.75, 2, true, "2.75"},
        {1e19, 0, true, "1e+19"},
        {"+12", 12, true, "+12"},
        {"YES", 0, true, "YES"},
        {"12abc", 0, false, "12abc"},
        {"99999999999999999999", 0, false, "99999999999999999999"},
        {PropertyListArray{1}, 0, false, std::nullopt},
    };
    UserDefaults defaults;
    EXPECT_EQ(defaults.integerForKey("missing"), 0);
    for (const auto& [value, integer, boolean, string] : cases) {
        SCOPED_TRACE(string.value_or("(none)"));
        defaults.setObject(value, "key");
        EXPECT_EQ(defaults.integerForKey("key"), integer);
        EXPECT_EQ(defaults.boolForKey("key"), boolean);
        EXPECT_EQ(defaults.stringForKey("key"), string);
        EXPECT_EQ(defaults.arrayForKey("key").has_value(),
                  value.as<PropertyListArray>() != nullptr);
        EXPECT_EQ(defaults.objectForKey("key"), value);
    }
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

TEST(UserDefaultsTest, ReadersSeeTheOldOrTheNewValueWhileOneWrites) {
    const PropertyListArray lists[] = {{"txt", "html"}, {"css", "xml", "text"}};
    UserDefaults defaults;
    defaults.setObject(lists[0], "list");
    std::atomic<bool> isDone = false;
    std::atomic<int> notified = 0;
    defaults.addObserver("list", [&](std::string_view) { ++notified; });
    std::thread reader([&] {
        int torn = 0;
        while (!isDone) {
            const auto list = defaults.arrayForKey("list");
            torn += list != lists[0] && list != lists[1];
        }
        EXPECT_EQ(torn, 0);
    });
    for (int i = 1; i <= 500; ++i)
        defaults.setObject(lists[i % 2], "list");
    isDone = true;
    reader.join();
    EXPECT_EQ(notified, 500);
}

} // namespace
} // namespace zelmora::platform
