// Texts before and after their charset declarations are rewritten, as the conversion does it.
#include "markup/html_parser.h"
#include "platform/text/utf8.h"

#include <gtest/gtest.h>

namespace zelmora {
namespace {

constexpr OrvEncodingInfo kUTF8{OrvEncoding::utf8, OrvByteOrder::none, false, {}};

void rewriteMeta(std::u16string& text) {
    OrvHTMLParser parser;
    parser.setMutableHTMLString(text);
    const auto tag = *OrvHTMLParser::newEncodingSpecifierTagWithEncodingInfo(kUTF8);
    if (const auto found = parser.findEncodingSpecifier()) {
        EXPECT_TRUE(parser.replaceMarkupTag(*found, tag));
    } else if (const auto head = parser.findMarkupTagName(u"head", 0)) {
        const auto& notes = *head->parserAdditional();
        const auto offset = notes.find(OrvHTMLParserAdditionalKeyOffset)->second;
        const auto source = notes.find(OrvHTMLParserAdditionalKeyString)->second;
        parser.insertMarkupTag(tag, std::get<std::size_t>(offset) +
                                        std::get<std::u16string>(source).size());
    }
}

void rewriteXML(std::u16string& text) {
    OrvHTMLParser parser;
    parser.setMutableHTMLString(text);
    const auto tag = *OrvHTMLParser::newXMLProcInstTagWithEncodingInfo(kUTF8);
    if (const auto found = parser.findXMLProcInstTag()) {
        EXPECT_TRUE(parser.replaceMarkupTag(*found, tag));
    }
}

TEST(Declarations, NameTheEncoding) {
    constexpr auto kNoOrder = OrvByteOrder::none;
    constexpr auto kLittle = OrvByteOrder::littleEndian;
    constexpr auto kBig = OrvByteOrder::bigEndian;
    const struct {
        OrvEncoding encoding;
        OrvByteOrder byteOrder;
        bool hasBOM;
        std::optional<std::u16string> charset;
    } cases[] = {
        {OrvEncoding::shiftjis, kLittle, true, u"Shift_JIS"},
        {OrvEncoding::jis, kBig, false, u"iso-2022-jp"},
        {OrvEncoding::eucjp, kBig, false, u"euc-jp"},
        {OrvEncoding::utf8, kBig, true, u"UTF-8"},
        {OrvEncoding::utf16, kLittle, true, u"UTF-16"},
        {OrvEncoding::utf16, kBig, false, u"UTF-16BE"},
        {OrvEncoding::utf16, kLittle, false, u"UTF-16LE"},
        {OrvEncoding::utf16, kNoOrder, false, {}},
        {OrvEncoding::utf32, kBig, true, u"UTF-32"},
        {OrvEncoding::utf32, kBig, false, u"UTF-32BE"},
        {OrvEncoding::utf32, kLittle, false, u"UTF-32LE"},
        {OrvEncoding::utf32, kNoOrder, false, {}},
        {OrvEncoding::none, kLittle, true, {}},
        {OrvEncoding{7}, kLittle, true, {}},
    };
    for (const auto& c : cases) {
        const OrvEncodingInfo info{c.encoding, c.byteOrder, c.hasBOM, {}};
        SCOPED_TRACE(testing::Message() << int(c.encoding) << " " << int(c.byteOrder));
        EXPECT_EQ(OrvHTMLParser::encodingAttributeValueForEncodingInfo(info), c.charset);
        EXPECT_EQ(OrvHTMLParser::newEncodingSpecifierTagWithEncodingInfo(info).has_value(),
                  c.charset.has_value());
        EXPECT_EQ(OrvHTMLParser::newXMLProcInstTagWithEncodingInfo(info).has_value(),
                  c.charset.has_value());
    }
}

struct RewritingCase {
    const char* before;
    const char* after; ///< "@" stands for the new declaration; null: unchanged
};

void check(const RewritingCase& c, const std::u16string& declaration,
           void (*rewrite)(std::u16string&)) {
    std::u16string text = platform::utf16FromUTF8(c.before);
    std::u16string expected = platform::utf16FromUTF8(c.after ? c.after : c.before);
    if (const auto at = expected.find(u'@'); at != expected.npos)
        expected.replace(at, 1, declaration);
    rewrite(text);
    EXPECT_EQ(text, expected) << "from " << c.before << "\nto " << platform::utf8FromUTF16(text);
}

#define TYPE "http-equiv=\"Content-Type\""

const RewritingCase kHTML[] = {
    {"<head><meta " TYPE " content=\"text/html; charset=Shift_JIS\"><title>日本語</title>",
     "<head>@<title>日本語</title>"},
    {"😀あ<META HTTP-EQUIV=CONTENT-TYPE CONTENT=\"text/html\">", "😀あ@"},
    {"<meta\r\n\tcontent=\"x\"\r\n" TYPE "\r\n>\r\n", "@\r\n"},
    {"<meta " TYPE " content=\"text/html; charset=EUC-JP\"/>", "@"},
    {"<meta " TYPE " content=\"a>b\">", "@b\">"}, // the tag ends at the first ">"
    {"<meta content=\"a>b\" " TYPE "><head>", "<meta content=\"a>b\" " TYPE "><head>@"},
    {"<meta " TYPE " content=\"x><p>", "@<p>"},               // the quote is never closed
    {"<p a=\"><meta " TYPE "><b c=\">", "<p a=\">@<b c=\">"}, // nor here
    {"<!-- <meta " TYPE "> --><meta " TYPE ">", "<!-- @ --><meta " TYPE ">"},
    {"<script>w('<meta " TYPE ">')</script>", "<script>w('@')</script>"},
    {"if (a < b) <meta " TYPE "><meta " TYPE " a=b>", "if (a < b) @<meta " TYPE " a=b>"},
    {"<meta name=" TYPE "><meta name=\"keywords\"><head>",
     "<meta name=" TYPE "><meta name=\"keywords\"><head>@"},
    {"<meta http-equiv=refresh><HEAD lang=\"ja\"><body>",
     "<meta http-equiv=refresh><HEAD lang=\"ja\">@<body>"},
    {"<header><head\n profile=x/y><head>", "<header><head\n profile=x/y>@<head>"},
    {"</head><head>text", "</head><head>@text"},
    {"<body>" TYPE "</body>", nullptr},
    {"text<meta " TYPE ">", "text@"},
    {"<head><meta " TYPE " content=\"te", "<head>@<meta " TYPE " content=\"te"}, // cut off
    {"<html><head", nullptr},
};

const RewritingCase kXML[] = {
    {"<?xml version=\"1.1\" encoding=\"EUC-JP\" standalone=\"yes\"?>\n<root/>", "@\n<root/>"},
    {"\uFEFF <?XML VERSION='1.0' ENCODING='Shift_JIS' ?><a>", "\uFEFF @<a>"},
    {"<?xml?><a>", nullptr}, // the name is "?xml?"
    {"<?xml ?>", "@"},
    {"<a><!-- <?xml version=1.0?> --><?xml a?>", "<a><!-- @ --><?xml a?>"},
    {"<?xml-stylesheet href=\"a\"?><a/>", nullptr},
    {"<a/><?xml version=\"1.0\"?>", "<a/>@"},
    {"<?xml version=\"1.0\"", nullptr},
    {"<?xml version=\"1.0\" <a>", nullptr},
};

TEST(Declarations, AreRewrittenInPlace) {
    const std::u16string meta = u"<meta " TYPE " content=\"text/html; charset=UTF-8\">";
    const std::u16string xml = u"<?xml version=\"1.0\" encoding=\"UTF-8\"?>";
    for (const RewritingCase& c : kHTML)
        check(c, meta, rewriteMeta);
    for (const RewritingCase& c : kXML)
        check(c, xml, rewriteXML);
    check({"<?xml version=\"1.0\"?>\n<html><head><meta " TYPE " content=\"x\" /></head></html>",
           "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<html><head>@</head></html>"},
          meta, [](std::u16string& text) {
              rewriteMeta(text);
              rewriteXML(text);
          });
}

} // namespace
} // namespace zelmora
