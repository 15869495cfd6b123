#include "markup/markup_tag.h"

#include <gtest/gtest.h>

namespace zelmora {
namespace {

using Text = std::optional<std::u16string>;

struct WritingCase {
    Text name;
    Text order; ///< a name for each letter
    Text map;   ///< letters that have the value "1"
    bool isCloseFormat;
    Text suffix;
    Text written;
};

const WritingCase kWriting[] = {
    {{}, u"a", u"a", true, u"?", {}},
    {u"", {}, {}, false, {}, {}},
    {u"br", {}, {}, true, {}, u"<br />"},
    {u"p", u"Ba", u"aB", false, {}, u"<p B=\"1\" a=\"1\">"},
    {u"p", u"aa", u"a", false, {}, u"<p>"}, // the counts differ
    {u"p", u"aa", u"ab", false, {}, u"<p a=\"1\" a=\"1\">"},
    {u"p", u"xa", u"ab", false, {}, u"<p a=\"1\">"},
    {u"p", u"a", {}, false, {}, u"<p>"},
    {u"p", {}, u"a", false, {}, u"<p>"},
    {u"p", u"a", u"a", true, u"?", u"<p a=\"1\" /?>"},
    {u"p", u"", u"", false, u"", u"<p>"},
};

TEST(MarkupTag, WritesItself) {
    for (const WritingCase& c : kWriting) {
        OrvMarkupTag tag;
        tag.setName(c.name);
        if (c.order)
            tag.setAttributesOrder(std::make_shared<OrvMarkupAttributesOrder>());
        if (c.map)
            tag.setAttributes(std::make_shared<OrvMarkupAttributes>());
        for (const char16_t letter : c.order.value_or(u""))
            tag.attributesOrder()->push_back({letter}); // reaches the tag: the list is shared
        for (const char16_t letter : c.map.value_or(u""))
            tag.attributes()->emplace(std::u16string{letter}, u"1");
        tag.setCloseFormat(c.isCloseFormat);
        tag.setSuffix(c.suffix);
        EXPECT_EQ(tag.tagString(), c.written) << "case " << &c - kWriting;
    }
}

TEST(MarkupTag, WritesValuesAsTheyAre) {
    OrvMarkupTag tag;
    tag.setName(u"p");
    const OrvMarkupAttributes map = {{u"a", u"\"<&"}, {u"B", u""}};
    tag.setAttributes(std::make_shared<OrvMarkupAttributes>(map));
    tag.setAttributesOrder(
        std::make_shared<OrvMarkupAttributesOrder>(OrvMarkupAttributesOrder{u"a", u"B"}));
    EXPECT_EQ(tag.tagString(), u"<p a=\"\"<&\" B=\"\">");
}

} // namespace
} // namespace zelmora
