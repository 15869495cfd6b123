#include "platform/defaults/localized_strings.h"

#include "platform/defaults/bundle.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <gtest/gtest.h>

namespace zelmora::platform {
namespace {

TEST(LocalizedStringsTest, ReadsEscapesAndComments) {
    const auto strings = LocalizedStrings::parse("// head \"x\" = \"y\";\n"
                                                 "\"a\\\"b\" = \"1\\n2\\t3\\\\4\\U30ab\";/* ; */\n"
                                                 "\"変換\"/**/=/*=*/\"/* 中 */ // も\" // end\n;"
                                                 "\"empty\"=\"\";\"two lines\"=\"1\n2\";",
                                                 "table");
    ASSERT_TRUE(strings) << strings.error().message;
    EXPECT_EQ(strings->table().size(), 4U);
    EXPECT_EQ(strings->stringForKey("a\"b"), "1\n2\t3\\4カ");
    EXPECT_EQ(strings->stringForKey("変換"), "/* 中 */ // も");
    EXPECT_EQ(strings->stringForKey("empty"), "");
    EXPECT_EQ(strings->stringForKey("two lines"), "1\n2");
    EXPECT_EQ(strings->stringForKey("missing"), "missing");
    for (const char* broken :
         {"\"a\" = \"1\"", "\"a\" = \"never ends;", "/* \n", "\"a\" = \"\\U", "\"a\" = \"\xFF\";"})
        EXPECT_FALSE(LocalizedStrings::parse(broken, "table")) << broken;
}

TEST(LocalizedStringsTest, FillsPlaceholders) {
    const struct {
        std::string_view text;
        std::initializer_list<std::string_view> arguments;
        std::string_view result;
    } cases[] = {
        {"%@->%@", {"%@ %1$@ %%", "y"}, "%@ %1$@ %%->y"},
        {"%2$@ before %1$@", {"a", "b"}, "b before a"},
        {"%@ %@", {"a"}, "a %@"},
        {"100%% of %@%%", {"a"}, "100% of a%"},
        {"%s %0$@ %18446744073709551616$@ %", {"a"}, "%s %0$@ %18446744073709551616$@ %"},
    };
    for (const auto& [text, arguments, result] : cases) {
        const auto strings = LocalizedStrings::parse("\"k\" = \"" + std::string(text) + "\";", "t");
        ASSERT_TRUE(strings) << text;
        EXPECT_EQ(strings->format("k", arguments), result) << text;
    }
}

TEST(LocalizedStringsTest, ShippedTablesAgree) {
    const Bundle bundle(ZELMORA_RESOURCES);
    const auto english = bundle.localizedStrings(FileManager::defaultManager(), "en");
    const auto japanese = bundle.localizedStrings(FileManager::defaultManager(), "ja");
    ASSERT_TRUE(english) << english.error().message;
    ASSERT_TRUE(japanese) << japanese.error().message;
    EXPECT_GT(english->table().size(), 40U);
    EXPECT_EQ(english->table().size(), japanese->table().size());
    for (const auto& [key, value] : english->table()) {
        ASSERT_TRUE(japanese->table().contains(key)) << key;
        for (const char argument : {'\1', '\2', '\3'}) // asked for as often
            EXPECT_EQ(std::ranges::count(english->format(key, {"\1", "\2", "\3"}), argument),
                      std::ranges::count(japanese->format(key, {"\1", "\2", "\3"}), argument))
                << key;
    }
}

TEST(BundleTest, PrefersTheFirstLanguageThatIsSet) {
    const struct {
        std::array<const char*, 3> values; ///< of LC_ALL, LC_MESSAGES, LANG
        std::string_view language;
    } cases[] = {
        {{"ja_JP.UTF-8", "en_US", "en_US"}, "ja"}, {{"C", "ja_JP", "ja_JP"}, "en"},
        {{nullptr, "", "ja_JP.eucJP"}, "ja"}, // as most are set
        {{nullptr, nullptr, nullptr}, "en"},       {{nullptr, "de_DE", "ja_JP"}, "en"},
    };
    for (const auto& [values, language] : cases) {
        for (size_t i = 0; i < values.size(); ++i) {
            const char* const name = std::array{"LC_ALL", "LC_MESSAGES", "LANG"}[i];
            values[i] != nullptr ? setenv(name, values[i], 1) : unsetenv(name);
        }
        EXPECT_EQ(preferredLanguage(), language) << testing::PrintToString(values);
    }
}

} // namespace
} // namespace zelmora::platform
