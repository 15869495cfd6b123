// What the token rules make of a tag in text and in bytes, and how tags are written.
#include "markup/html_parser.h"
#include "markup/markup_parser.h"
#include "platform/text/utf8.h"

#include <gtest/gtest.h>

#include <string_view>

namespace zelmora {
namespace {

using namespace std::string_view_literals;

/// `name a=[1] b=[2] / ~suffix`: the order with its values, then what is set of close format and
/// suffix; "-" for no name. Names that only the map knows are counted: "+N".
std::string summary(const OrvMarkupTag& tag) {
    using platform::utf8FromUTF16;
    std::string line = utf8FromUTF16(tag.name().value_or(u"-"));
    OrvMarkupAttributes unwritten = *tag.attributes();
    for (const std::u16string& name : *tag.attributesOrder()) {
        line += " " + utf8FromUTF16(name + u"=[" + (*tag.attributes())[name] + u"]");
        unwritten.erase(name);
    }
    if (!unwritten.empty())
        line += " +" + std::to_string(unwritten.size());
    return line + (tag.isCloseFormat() ? " /" : "") +
           (tag.suffix() ? " ~" + utf8FromUTF16(*tag.suffix()) : "");
}

std::string readFromText(std::u16string_view source) {
    return summary(OrvHTMLParser::parseTagString(source));
}

std::string readFromBytes(std::string_view source) {
    return summary(OrvMarkupParser::parseMarkupTagData(platform::bytesOf(source)));
}

TEST(Tags, AreReadByTheTokenRules) {
    const struct {
        std::string_view source;
        const char* inText;
        const char* inBytes = nullptr; // as in text
    } cases[] = {
        {"", "-"},
        {"< \t\r\n\f\v>", "-"},
        {"<p", "p"}, // cut off
        {"< p >", "p"},
        {"<\"p q\" a=1>", "p q a=[1]"},
        {"<br/>", "br/"},
        {"<br />", "br /"},
        {"<a=b c=d>", "a=b c=[d]"},
        {"<p a=1 B=\"2\">", "p a=[1] B=[2]"},
        {"<p a=\" x  y \">", "p a=[x  y ]", "p a=[ x  y ]"},
        {"<p \"a=b\">", "p a=[b\"]", "p a=[b]"}, // "=" ends a name between quotes too
        {"<p a = b>", "p a=[=] ~b", "p a=[=] b=[]"},
        {"<p a=b\"c d\"e=f>", "p a=[b\"c d] e=[f]", "p a=[bc d] e=[f]"},
        {"<p a=\"b\"c\"d\">", "p a=[b] ~c\"d", "p a=[b] cd=[]"},
        {"<p a=\"\" b=\"x\">", "p a=[b=\"x]", "p a=[b=x]"},
        {"<p a=\"b>", "p a=[b]"},
        {"<p a=1 b=2 a=3>", "p a=[3] b=[2] a=[3]"},
        {"<p a=1 b=2 a>", "p b=[2] ~a", "p a=[] b=[2] a=[]"},
        {"<input checked>", "input ~checked", "input checked=[]"},
        {"<a href=dir/page.html>", "a href=[dir] / ~page.html", "a href=[dir] page.html=[] /"},
        {"<?xml version=\"1.0\" encoding=\"EUC-JP\"?>", "?xml version=[1.0] encoding=[EUC-JP] ~?",
         "?xml version=[1.0] encoding=[EUC-JP] ?=[]"},
    };
    for (const auto& [source, inText, inBytes] : cases) {
        EXPECT_EQ(readFromText(platform::utf16FromUTF8(source)), inText) << source;
        EXPECT_EQ(readFromBytes(source), inBytes ? inBytes : inText) << source;
    }
    // Bytes are Macintosh Roman without zero bytes; CA is no white space.
    EXPECT_EQ(readFromBytes("<me\0ta a\0=\0\" \0x\0\"\0>"sv), "meta a=[ x]");
    EXPECT_EQ(readFromBytes("<\0>"sv), "-");
    EXPECT_EQ(readFromBytes("<p \0\0>"sv), "p");
    EXPECT_EQ(readFromBytes("<p a=\x82\xA0\xCA\xA0>"), "p a=[\u00C7\u2020\u00A0\u2020]");
    EXPECT_EQ(readFromText(u"<p\0q>"sv), "p\0q"sv);
    EXPECT_EQ(readFromText(u"<p\u3000q\u00A0r \u0130>"), "p\u3000q\u00A0r ~\u0130");
}

TEST(Tags, WriteThemselves) {
    const std::pair<std::u16string, std::u16string> cases[] = {
        {u"<br\t/>", u"<br />"},
        {u"<p B=<& a=\"x\">", u"<p B=\"<&\" a=\"x\">"},
        {u"<p a=1 b=2 a=3>", u"<p>"}, // more in the order than in the map
        {u"<?xml version=1.0 ?>", u"<?xml version=\"1.0\"?>"},
        {u"<a href=dir/page>", u"<a href=\"dir\" /page>"},
        {u"<>", u"nothing"},
    };
    for (const auto& [source, written] : cases)
        EXPECT_EQ(OrvHTMLParser::parseTagString(source).tagString().value_or(u"nothing"), written);
}

TEST(Tags, NameTheEncoding) {
    using Text = std::optional<std::u16string>;
    const Text names[][4] = {
        // with a mark; without one, by byte order: none, little, big
        {{}, {}, {}, {}},
        {u"Shift_JIS", u"Shift_JIS", u"Shift_JIS", u"Shift_JIS"},
        {u"iso-2022-jp", u"iso-2022-jp", u"iso-2022-jp", u"iso-2022-jp"},
        {u"euc-jp", u"euc-jp", u"euc-jp", u"euc-jp"},
        {u"UTF-8", u"UTF-8", u"UTF-8", u"UTF-8"},
        {u"UTF-16", {}, u"UTF-16LE", u"UTF-16BE"},
        {u"UTF-32", {}, u"UTF-32LE", u"UTF-32BE"},
        {{}, {}, {}, {}},
    };
    const auto textOf = [](const std::optional<OrvMarkupTag>& tag) {
        return tag ? tag->tagString() : std::nullopt;
    };
    for (int i = 0; i < 8 * 6; ++i) {
        const OrvEncodingInfo info{OrvEncoding{i / 6}, OrvByteOrder{i % 3}, i % 6 < 3, {}};
        const Text& name = names[i / 6][info.hasBOM ? 0 : 1 + i % 3];
        EXPECT_EQ(OrvHTMLParser::encodingAttributeValueForEncodingInfo(info), name) << i;
        EXPECT_EQ(textOf(OrvHTMLParser::newEncodingSpecifierTagWithEncodingInfo(info)),
                  name ? Text(u"<meta http-equiv=\"Content-Type\" content=\"text/html; charset=" +
                              *name + u"\">")
                       : Text());
        EXPECT_EQ(textOf(OrvHTMLParser::newXMLProcInstTagWithEncodingInfo(info)),
                  name ? Text(u"<?xml version=\"1.0\" encoding=\"" + *name + u"\"?>") : Text());
    }
}

} // namespace
} // namespace zelmora
