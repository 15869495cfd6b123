// One table for both parsers: what the token rules make of a tag in text and in bytes.
#include "markup/html_parser.h"
#include "markup/markup_parser.h"
#include "tag_summary.h"

#include <gtest/gtest.h>

#include <string_view>

namespace zelmora {
namespace {

using namespace std::string_view_literals;

struct ReadingCase {
    std::string_view source;
    const char* inText;
    const char* inBytes = nullptr; // as in text
};

const ReadingCase kReading[] = {
    {"", "-"},
    {"<", "-"},
    {"<>", "-"},
    {"< \t\r\n\f\v>", "-"},
    {"<p>", "p"},
    {"<p", "p"}, // cut off
    {"< p >", "p"},
    {"<\"p q\" a=1>", "p q a=[1]"},
    {"<br/>", "br/"},
    {"<br />", "br /"},
    {"<br / >", "br /"},
    {"</p>", "/p"},
    {"<a=b c=d>", "a=b c=[d]"},
    {"<p a=1 B=\"2\">", "p a=[1] B=[2]"},
    {"<p a='1 2'>", "p a=['1] ~2'", "p a=['1] 2'=[]"},
    {"<p a=\" x  y \">", "p a=[x  y ]", "p a=[ x  y ]"},
    {"<p a=\"/=\">", "p a=[/=]"},
    {"<p \"a=b\">", "p a=[b\"]", "p a=[b]"}, // "=" ends a name between quotes too
    {"<p \"a b\"=1>", "p a b=[=1]"},
    {"<p a = b>", "p a=[=] ~b", "p a=[=] b=[]"},
    {"<p a b=c>", "p a=[b=c]"},
    {"<p a=b\"c d\"e=f>", "p a=[b\"c d] e=[f]", "p a=[bc d] e=[f]"},
    {"<p a=\"b\"c\"d\">", "p a=[b] ~c\"d", "p a=[b] cd=[]"},
    {"<p a=\"\" b=\"x\">", "p a=[b=\"x]", "p a=[b=x]"},
    {"<p a=\"b>", "p a=[b]"},
    {"<p a=1 b=2 a=3>", "p a=[3] b=[2] a=[3]"},
    {"<p a=1 b=2 a>", "p b=[2] ~a", "p a=[] b=[2] a=[]"},
    {"<p a=1 a b=2>", "p a=[b=2] a=[b=2]"},
    {"<input checked>", "input ~checked", "input checked=[]"},
    {"<a href=dir/page.html>", "a href=[dir] / ~page.html", "a href=[dir] page.html=[] /"},
    {"<?xml version=\"1.0\" encoding=\"EUC-JP\"?>", "?xml version=[1.0] encoding=[EUC-JP] ~?",
     "?xml version=[1.0] encoding=[EUC-JP] ?=[]"},
    {"<a b>c d=e>", "a b=[c] d=[e]"}, // more than one tag handed over as one
};

platform::ByteView bytes(std::string_view text) {
    return platform::bytesOf(text);
}

TEST(TagReading, FollowsTheTokenRules) {
    for (const ReadingCase& c : kReading) {
        EXPECT_EQ(summary(OrvHTMLParser::parseTagString(platform::utf16FromUTF8(c.source))),
                  c.inText)
            << c.source;
        EXPECT_EQ(summary(OrvMarkupParser::parseMarkupTagData(bytes(c.source))),
                  c.inBytes ? c.inBytes : c.inText)
            << c.source;
    }
}

TEST(TagReading, BytesAreMacintoshRomanWithoutZeroBytes) {
    const struct {
        std::string_view source;
        const char* tag;
    } cases[] = {
        {"<me\0ta a\0=\0\" \0x\0\"\0>"sv, "meta a=[ x]"},
        {"<\0>"sv, "-"},
        {"<p \0\0>"sv, "p"},
        {"<p a=\x82\xA0\xCA\xA0>", "p a=[\u00C7\u2020\u00A0\u2020]"}, // CA is no white space
    };
    for (const auto& c : cases)
        EXPECT_EQ(summary(OrvMarkupParser::parseMarkupTagData(bytes(c.source))), c.tag) << c.source;
}

TEST(TagReading, TextKeepsZeroUnitsAndWideSpaces) {
    EXPECT_EQ(OrvHTMLParser::parseTagString(u"<p\0q>"sv).name(), u"p\0q"sv);
    EXPECT_EQ(OrvHTMLParser::parseTagString(u"<p\u3000q\u00A0r \u0130>").name(),
              u"p\u3000q\u00A0r");
}

} // namespace
} // namespace zelmora
