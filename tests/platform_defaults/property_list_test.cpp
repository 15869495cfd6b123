#include "platform/defaults/property_list.h"

#include <cerrno>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

namespace zelmora::platform {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

const std::string kHead = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                          "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                          "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                          "<plist version=\"1.0\">\n";
const std::string kTail = "\n</plist>\n";

PropertyListValue nested(int depth) {
    PropertyListValue value = "core";
    for (int i = 0; i < depth; ++i)
        value = PropertyListArray{std::move(value)};
    return value;
}

TEST(PropertyListTest, EveryValueSurvivesWritingAndReading) {
    Bytes everyByte;
    for (int i = 0; i < 256; ++i)
        everyByte.push_back(static_cast<std::byte>(i));
    PropertyListArray longArray;
    for (int64_t i = 0; i < 5000; ++i)
        longArray.emplace_back(i);
    const PropertyListValue values[] = {
        true,
        false,
        0,
        -1,
        std::numeric_limits<int64_t>::max(),
        std::numeric_limits<int64_t>::min(),
        0.1,
        -1e300,
        1.0 / 3,
        "",
        " 前後の空白 \n",
        "<&>\"' ]]> &amp; <key>",
        "𠮷野家\r\n\t髙",
        Bytes{},
        everyByte,
        PropertyListArray{},
        longArray,
        PropertyListDictionary{},
        PropertyListDictionary{{"", false}, {"<日本>&", PropertyListArray{1, "二", 3.5}}},
        nested(60),
    };
    for (const PropertyListValue& value : values) {
        const auto xml = xmlFromPropertyList(value);
        ASSERT_TRUE(xml) << xml.error().message;
        const auto read = propertyListFromXML(*xml, "list");
        ASSERT_TRUE(read) << read.error().message << "\n" << *xml;
        EXPECT_EQ(*read, value) << *xml;
    }
}

TEST(PropertyListTest, ReadsWhatPeopleWrite) {
    const struct {
        std::string body;
        PropertyListValue value;
    } cases[] = {
        {"<!-- <key>gone</key> --><dict><key>a</key> <!-- why --> <integer> +7 </integer></dict>",
         PropertyListDictionary{{"a", 7}}},
        {"<string>&#65;&#x3042;&lt;&apos;</string>", "Aあ<'"},
        {"<string/>", ""},
        {"<array/>", PropertyListArray{}},
        {"<data>\n\tAAEC\n</data>", Bytes{std::byte{0}, std::byte{1}, std::byte{2}}},
    };
    for (const auto& [body, value] : cases) {
        const auto read = propertyListFromXML(kHead + body + kTail, "list");
        ASSERT_TRUE(read) << body << ": " << read.error().message;
        EXPECT_EQ(*read, value) << body;
    }
}

TEST(PropertyListTest, RefusesWhatItCannotReadExactly) {
    const auto repeated = [](int count, std::string_view text) {
        std::string all;
        for (int i = 0; i < count; ++i)
            all += text;
        return all;
    };
    const std::string bodies[] = {
        "",
        "text",
        "<foo/>",
        "<integer>abc</integer>",
        "<integer>12abc</integer>",
        "<integer>0x10</integer>",
        "<integer>+-1</integer>",
        "<integer></integer>",
        "<integer/>",
        "<integer>1<!-- -->2</integer>",
        "<integer>9223372036854775808</integer>",
        "<integer>18446744073709551615</integer>",
        "<integer>-9223372036854775809</integer>",
        "<real>x</real>",
        "<real>1e400</real>",
        "<real>nan</real>",
        "<date>2020-01-01T00:00:00Z</date>",
        "<dict><key>a</key></dict>",
        "<dict><key>a</key><key>b</key><true/></dict>",
        "<dict><key>a</key><true/><key>a</key><false/></dict>",
        "<dict><true/></dict>",
        "<dict><key>a</key><true/></dict><dict><key>b</key><true/></dict>",
        "<array><true/></dict>",
        "<string>a & b</string>",
        "<string>&unknown;</string>",
        "<string>&#1;</string>",
        "<string>\x01</string>",
        "<string>\xFF</string>",
        "<string>\xEF\xBF\xBF</string>",
        std::string("<string>a\0b</string>", 20),
        "<string><![CDATA[x]]></string>",
        "<dict><key>\xFF</key><true/></dict>",
        "<true/></plist><plist><true/>",
        "<!-- no end",
        repeated(100, "<array>") + repeated(100, "</array>"),
        repeated(9000, "<array>") + repeated(9000, "</array>"),
        repeated(200000, "<array>") + repeated(200000, "</array>"),
        repeated(200000, "<dict><key>a</key>"),
    };
    for (const std::string& body : bodies) {
        const auto read = propertyListFromXML(kHead + body + kTail, "settings");
        ASSERT_FALSE(read) << body.substr(0, 100);
        EXPECT_EQ(read.error().code, EINVAL) << body.substr(0, 100);
        EXPECT_THAT(read.error().message, StartsWith("settings: ")) << body.substr(0, 100);
    }
    for (const std::string_view text : {"", "bplist00", "{\"a\":1}", "{a=1;}"})
        EXPECT_FALSE(propertyListFromXML(text, "settings")) << text;
}

TEST(PropertyListTest, RefusesAListCutOffAnywhere) {
    const std::string xml =
        kHead + "<dict><key>a</key><string>あ</string><key>b</key><integer>12</integer></dict>" +
        "</plist>";
    ASSERT_TRUE(propertyListFromXML(xml, "list"));
    for (size_t length = 0; length < xml.size(); ++length)
        EXPECT_FALSE(propertyListFromXML(xml.substr(0, length), "list")) << length;
}

TEST(PropertyListTest, RefusesToWriteWhatXMLCannotHold) {
    const struct {
        PropertyListValue value;
        std::string_view fault;
    } cases[] = {
        {"a\xFF", "a\\xFF"},
        {std::string("a\0b", 3), "characters"},
        {"\x1B[0m", "characters"},
        {PropertyListArray{PropertyListDictionary{{"k\xC0", 1}}}, "k\\xC0"},
        {std::numeric_limits<double>::infinity(), "number"},
    };
    for (const auto& [value, fault] : cases) {
        const auto xml = xmlFromPropertyList(value);
        ASSERT_FALSE(xml) << fault;
        EXPECT_EQ(xml.error().code, EILSEQ) << fault;
        EXPECT_THAT(xml.error().message, HasSubstr(fault));
    }
}

} // namespace
} // namespace zelmora::platform
