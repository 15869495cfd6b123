#include "platform/defaults/user_defaults.h"

#include <atomic>
#include <gtest/gtest.h>
#include <limits>
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
        {false, 0, false, "0"},
        {4, 4, true, "4"},
        {-1, -1, true, "-1"},
        {0, 0, false, "0"},
        {std::numeric_limits<int64_t>::min(), std::numeric_limits<int64_t>::min(), true,
         "-9223372036854775808"},
        {2.75, 2, true, "2.75"},
        {0.5, 0, true, "0.5"},
        {1e19, 0, true, "1e+19"},
        {"1", 1, true, "1"},
        {"+12", 12, true, "+12"},
        {"0", 0, false, "0"},
        {"YES", 0, true, "YES"},
        {"true", 0, true, "true"},
        {"NO", 0, false, "NO"},
        {"12abc", 0, false, "12abc"},
        {"99999999999999999999", 0, false, "99999999999999999999"},
        {"", 0, false, ""},
        {"/\xFF", 0, false, "/\xFF"},
        {Bytes{std::byte{1}}, 0, false, std::nullopt},
        {PropertyListArray{1}, 0, false, std::nullopt},
    };
    for (const auto& [value, integer, boolean, string] : cases) {
        UserDefaults defaults;
        defaults.setObject(value, "key");
        const std::string label = string.value_or("(none)");
        EXPECT_EQ(defaults.integerForKey("key"), integer) << label;
        EXPECT_EQ(defaults.boolForKey("key"), boolean) << label;
        EXPECT_EQ(defaults.stringForKey("key"), string) << label;
        EXPECT_EQ(defaults.arrayForKey("key").has_value(), value.as<PropertyListArray>() != nullptr)
            << label;
        EXPECT_EQ(defaults.objectForKey("key"), value) << label;
    }
}

TEST(UserDefaultsTest, MissingKeyReadsAsNothing) {
    const UserDefaults defaults;
    EXPECT_EQ(defaults.integerForKey("key"), 0);
    EXPECT_FALSE(defaults.boolForKey("key"));
    EXPECT_EQ(defaults.stringForKey("key"), std::nullopt);
    EXPECT_EQ(defaults.arrayForKey("key"), std::nullopt);
    EXPECT_EQ(defaults.objectForKey("key"), std::nullopt);
    EXPECT_EQ(defaults.sharedObjectForKey("key"), nullptr);
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

TEST(UserDefaultsTest, ObserverRemovedDuringDeliveryIsNotCalled) {
    UserDefaults defaults;
    UserDefaults::ObserverID second = 0;
    int calls = 0;
    defaults.addObserver("key", [&](std::string_view) { defaults.removeObserver(second); });
    second = defaults.addObserver("key", [&](std::string_view) { ++calls; });
    defaults.setBool(true, "key");
    EXPECT_EQ(calls, 0);
}

TEST(UserDefaultsTest, ReadersSeeTheOldOrTheNewValueWhileOneWrites) {
    const PropertyListArray lists[] = {{"txt", "html"}, {"css", "xml", "text"}};
    UserDefaults defaults;
    defaults.setObject(lists[0], "list");
    defaults.setInteger(1, "number");
    std::atomic<bool> isDone = false;
    std::atomic<int> notified = 0;
    defaults.addObserver("list", [&](std::string_view) { ++notified; });
    const auto reader = [&] {
        int torn = 0;
        while (!isDone) {
            const auto list = defaults.arrayForKey("list");
            torn += !list || (*list != lists[0] && *list != lists[1]);
            const int64_t number = defaults.integerForKey("number");
            torn += number != 1 && number != -1;
        }
        EXPECT_EQ(torn, 0);
    };
    std::thread readers[] = {std::thread(reader), std::thread(reader)};
    for (int i = 1; i <= 500; ++i) {
        defaults.setObject(lists[i % 2], "list");
        defaults.setInteger(i % 2 == 0 ? 1 : -1, "number");
    }
    isDone = true;
    for (auto& thread : readers)
        thread.join();
    EXPECT_EQ(notified, 500);
}

} // namespace
} // namespace zelmora::platform
