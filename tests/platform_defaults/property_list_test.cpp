#include "platform/defaults/property_list.h"

#include <cerrno>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

namespace zelmora::platform {
namespace {

using ::testing::StartsWith;

/// A whole list around `body`.
std::string listOf(const std::string& body) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
           "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
           "<plist version=\"1.0\">\n" +
           body + "\n</plist>";
}

TEST(PropertyListTest, EveryValueSurvivesWritingAndReading) {
    Bytes everyByte;
    for (int i = 0; i < 256; ++i)
        everyByte.push_back(static_cast<std::byte>(i));
    PropertyListValue deep = "core";
    for (int i = 0; i < 60; ++i)
        deep = PropertyListArray{std::move(deep)};
    using Integers = std::numeric_limits<int64_t>;
    PropertyListArray all = {
        true,
        -1,
        Integers::max(),
        Integers::min(),
        1.0 / 3,
        -1e300,
        "",
        " 前後の空白 \n",
        "<&>\"' ]]> &amp; <key>",
        "𠮷野家\r\n\t髙",
        Bytes{},
        everyByte,
        deep,
        PropertyListArray{},
        PropertyListDictionary{{"", false}, {"<日本>&", PropertyListArray{1, "二"}}}};
    const auto xml = xmlFromPropertyList(all);
    ASSERT_TRUE(xml) << xml.error().message;
    const auto read = propertyListFromXML(*xml, "list");
    ASSERT_TRUE(read) << read.error().message << "\n" << *xml;
    EXPECT_EQ(*read, PropertyListValue(all)) << *xml;
}

TEST(PropertyListTest, ReadsWhatPeopleWrite) {
    const struct {
        std::string body;
        PropertyListValue value;
    } cases[] = {
        {"<!-- <key>gone</key> --><dict><key>a</key> <!-- why --> <integer> +7 </integer></dict>",
         PropertyListDictionary{{"a", 7}}},
        {"<string>&#65;&#x3042;&lt;&apos;</string>", "Aあ<'"},
        {"<data>\n\tAAEC\n</data>", Bytes{std::byte{0}, std::byte{1}, std::byte{2}}},
    };
    for (const auto& [body, value] : cases) {
        const auto read = propertyListFromXML(listOf(body), "list");
        ASSERT_TRUE(read) << body << ": " << read.error().message;
        EXPECT_EQ(*read, value) << body;
    }
}

TEST(PropertyListTest, RefusesWhatItCannotReadExactly) {
    const std::pair<std::string, std::vector<std::string>> contents[] = {
        {"integer",
         {"", "+-1", "12abc", "1<!-- -->2", "9223372036854775808", "-9223372036854775809"}},
        {"real", {"x", "1e400", "nan"}},
        {"date", {"2020-01-01T00:00:00Z"}},
        {"dict",
         {"<true/>", "<key>a</key>", "<key>a</key><key>b</key><true/>", "<key>\xFF</key><true/>",
          "<key>a</key><true/><key>a</key><false/>"}},
        {"string",
         {"a & b", "&unknown;", "&#1;", "\x01", "\xFF", "\xEF\xBF\xBF", std::string("a\0b", 3),
          "<![CDATA[x]]>"}},
    };
    std::vector<std::string> bodies = {
        "", "<array><true/></dict>",
        "<dict><key>a</key><true/></dict><dict><key>b</key><true/></dict>", "<!-- no end"};
    for (const int depth : {100, 200000}) { // as deep as the stack is not
        std::string& body = bodies.emplace_back();
        for (int i = 0; i < depth; ++i)
            body += "<array>";
        for (int i = 0; i < depth; ++i)
            body += "</array>";
    }
    for (const auto& [element, texts] : contents) {
        for (const std::string& text : texts)
            bodies.push_back("<" + element + ">" + text + "</" + element + ">");
    }
    for (const std::string& body : bodies) {
        SCOPED_TRACE(body.substr(0, 100));
        const auto read = propertyListFromXML(listOf(body), "settings");
        ASSERT_FALSE(read);
        EXPECT_EQ(read.error().code, EINVAL);
        EXPECT_THAT(read.error().message, StartsWith("settings: "));
    }
}

TEST(PropertyListTest, RefusesAListCutOffAnywhere) {
    const std::string xml =
        listOf("<dict><key>a</key><string>あ</string><key>b</key><integer>12</integer></dict>");
    ASSERT_TRUE(propertyListFromXML(xml, "list"));
    for (size_t length = 0; length < xml.size(); ++length)
        EXPECT_FALSE(propertyListFromXML(xml.substr(0, length), "list")) << length;
}

TEST(PropertyListTest, RefusesToWriteWhatXMLCannotHold) {
    const PropertyListValue values[] = {"a\xFF", std::string("a\0b", 3), "\x1B[0m",
                                        PropertyListArray{PropertyListDictionary{{"k\xC0", 1}}},
                                        std::numeric_limits<double>::infinity()};
    for (const PropertyListValue& value : values) {
        const auto xml = xmlFromPropertyList(value);
        ASSERT_FALSE(xml) << &value - values;
        EXPECT_EQ(xml.error().code, EILSEQ) << xml.error().message;
    }
}

} // namespace
} // namespace zelmora::platform
