// Charset declarations in HTML, XML and CSS texts, before and after.

#include "engine/document_controller.h"
#include "engine/settings.h"
#include "engine_fixture.h"
#include "foundation/orv_ptr.h"

namespace zelmora::test {
namespace {

class DeclarationsTest : public EngineTest {
  protected:
    void set(std::string_view key, int64_t value) { defaults.setInteger(value, key); }
    void setSwitches(std::string_view replaceKey, bool replaces, std::string_view insertKey,
                     bool inserts) {
        defaults.setBool(replaces, replaceKey);
        defaults.setBool(inserts, insertKey);
    }
    /// Sets the target; a text's own encoding is EUC-JP in every case.
    void setTarget(int64_t encoding, bool littleEndian = false, bool hasBOM = false) {
        set(settings::encodingCode, encoding);
        defaults.setBool(littleEndian, settings::littleEndian);
        defaults.setBool(hasBOM, settings::putBOM);
    }

    const OrvEncodingInfo source{.encoding = OrvEncoding::eucjp};
    OrvPtr<> pool{OrvTemporaryObjectsPoolCreate()};
    ZelDocumentController controller{services()};
};

const std::u16string utf8Meta =
    u"<meta http-equiv=\"Content-Type\" content=\"text/html; charset=UTF-8\">";

TEST_F(DeclarationsTest, METAIsReplacedOrInserted) {
    const struct {
        const char* what;
        bool replaces, inserts;
        std::u16string before, after;
    } cases[] = {
        {"replaced where it stands", true, false,
         u"<head>\n<META HTTP-EQUIV=content-type CONTENT='text/html; charset=x-sjis' />x",
         u"<head>\n" + utf8Meta + u"x"},
        {"only the first", true, true,
         u"<meta http-equiv=Content-Type content=a><meta http-equiv=Content-Type content=b>",
         utf8Meta + u"<meta http-equiv=Content-Type content=b>"},
        {"neither switch", false, false, u"<head><meta http-equiv=Content-Type>",
         u"<head><meta http-equiv=Content-Type>"},
        {"there is one, and only insertion", false, true,
         u"<head><meta http-equiv=Content-Type content=a>",
         u"<head><meta http-equiv=Content-Type content=a>"},
        {"inserted behind the head tag", false, true, u"<HTML><HEAD lang=\"ja\"> <title>",
         u"<HTML><HEAD lang=\"ja\">" + utf8Meta + u" <title>"},
        {"no head", true, true, u"<body>", u"<body>"},
        {"none, and only replacement", true, false, u"<head>", u"<head>"},
        {"behind a character of two units", true, false,
         u"\U0002000B<meta http-equiv=Content-Type>", u"\U0002000B" + utf8Meta},
        {"cut in the tag", true, true, u"<head><meta http-equiv=Content-Type",
         u"<head>" + utf8Meta + u"<meta http-equiv=Content-Type"},
        {"empty", true, true, u"", u""},
    };
    setTarget(4);
    for (const auto& each : cases) {
        setSwitches(settings::replaceMETA, each.replaces, settings::exportMETA, each.inserts);
        auto text = each.before;
        controller.doConvertProcessMETAElement(text, source);
        EXPECT_EQ(text, each.after) << each.what;
    }
}

TEST_F(DeclarationsTest, NameFollowsTheTarget) {
    const struct {
        int64_t encoding;
        bool littleEndian, hasBOM;
        const char16_t* name; ///< in the META and XML declarations
        const char16_t* cssName;
    } cases[] = {
        {0, true, true, u"euc-jp", u"EUC-JP"},
        {1, false, false, u"Shift_JIS", u"Shift_JIS"},
        {2, false, false, u"iso-2022-jp", u"ISO-2022-JP"},
        {4, true, true, u"UTF-8", u"UTF-8"},
        {5, true, true, u"UTF-16", u"UTF-16LE"},
        {5, true, false, u"UTF-16LE", u"UTF-16LE"},
        {5, false, false, u"UTF-16BE", u"UTF-16BE"},
        {6, false, true, u"UTF-32", u"UTF-32BE"},
        {7, false, false, nullptr, nullptr},
    };
    defaults.setBool(true, settings::replaceMETA);
    defaults.setBool(true, settings::replaceXMLProc);
    defaults.setBool(true, settings::replaceCSSCharSet);
    for (const auto& each : cases) {
        setTarget(each.encoding, each.littleEndian, each.hasBOM);
        const std::u16string meta = u"<meta http-equiv=\"Content-Type\" content=\"c\">";
        const std::u16string xml = u"<?xml version=\"1.1\" encoding='a' standalone=\"yes\"?>";
        const std::u16string css = u"@charset \"a\";";
        auto text = meta;
        controller.doConvertProcessMETAElement(text, source);
        const std::u16string name = each.name != nullptr ? each.name : u"";
        EXPECT_EQ(text, name.empty() ? meta
                                     : u"<meta http-equiv=\"Content-Type\" "
                                       u"content=\"text/html; charset=" +
                                           name + u"\">");
        text = xml;
        controller.doConvertProcessXMLProcInstruction(text, source);
        EXPECT_EQ(text, name.empty() ? xml : u"<?xml version=\"1.0\" encoding=\"" + name + u"\"?>");
        text = css;
        OrvEncodingInfo little = source;
        little.byteOrder = OrvByteOrder::littleEndian;
        controller.doConvertProcessCSSElement(text, little, OrvLineBreak::lf);
        EXPECT_EQ(text, each.cssName == nullptr
                            ? css
                            : u"@charset \"" + std::u16string(each.cssName) + u"\";");
    }
}

TEST_F(DeclarationsTest, NothingIsDeclaredWhenNothingIsKnown) {
    setTarget(0);
    for (const auto key : {settings::replaceMETA, settings::exportMETA, settings::replaceXMLProc,
                           settings::replaceCSSCharSet, settings::exportCSSCharSet})
        defaults.setBool(true, key);
    const std::u16string before = u"<?xml?><head>@charset \"x\";";
    auto text = before;
    controller.doConvertProcessMETAElement(text, {});
    controller.doConvertProcessXMLProcInstruction(text, {});
    controller.doConvertProcessCSSElement(text, {}, OrvLineBreak::none);
    EXPECT_EQ(text, before);
}

TEST_F(DeclarationsTest, XMLDeclarationIsReplacedButNeverAdded) {
    setTarget(4);
    const std::u16string after = u"<?xml version=\"1.0\" encoding=\"UTF-8\"?>";
    const struct {
        bool replaces;
        std::u16string before, after;
    } cases[] = {
        {true, u"<?xml version='1.0'?><a/>", after + u"<a/>"},
        {true, u"<a/>", u"<a/>"},
        {true, u" <!-- c --> <?XML encoding=x ?>", u" <!-- c --> " + after},
        {false, u"<?xml version='1.0'?>", u"<?xml version='1.0'?>"},
    };
    for (const auto& each : cases) {
        defaults.setBool(each.replaces, settings::replaceXMLProc);
        auto text = each.before;
        controller.doConvertProcessXMLProcInstruction(text, source);
        EXPECT_EQ(text, each.after);
    }
}

TEST_F(DeclarationsTest, CharsetRuleIsReplacedOrInserted) {
    const struct {
        const char* what;
        bool replaces, inserts;
        int64_t lineBreak;
        OrvLineBreak sourceLineBreak;
        std::u16string before, after;
    } cases[] = {
        {"replaced with the spaces ahead of it, a comment stays", true, false, 0, OrvLineBreak::lf,
         u"  @charset \"x\"; /* note */", u"@charset \"UTF-8\"; /* note */"},
        {"replaced where it stands", true, true, 0, OrvLineBreak::lf,
         u"h1 { a: b }\n@charset \"x\";\np { }", u"h1 { a: b }\n@charset \"UTF-8\";\np { }"},
        {"there is one, and only insertion", false, true, 0, OrvLineBreak::lf, u"@charset \"x\";",
         u"@charset \"x\";"},
        {"none, and only replacement", true, false, 0, OrvLineBreak::lf, u"p { }", u"p { }"},
        {"inserted with the setting's line break", false, true, 3, OrvLineBreak::lf, u"p { }",
         u"@charset \"UTF-8\";\r\np { }"},
        {"inserted with the source's", false, true, 0, OrvLineBreak::ls, u"p { }",
         u"@charset \"UTF-8\";\u2028p { }"},
        {"inserted with LF for want of any", false, true, 0, OrvLineBreak::none, u"",
         u"@charset \"UTF-8\";\n"},
        {"in a comment it is none", true, true, 1, OrvLineBreak::lf, u"/* @charset \"x\"; */",
         u"@charset \"UTF-8\";\n/* @charset \"x\"; */"},
        {"characters of two units ahead and behind", true, false, 0, OrvLineBreak::lf,
         u"/*\U0002000B\U0002000B*/\n@charset \"x\";\U0002000B",
         u"/*\U0002000B\U0002000B*/\n@charset \"UTF-8\";\U0002000B"},
    };
    setTarget(4);
    for (const auto& each : cases) {
        setSwitches(settings::replaceCSSCharSet, each.replaces, settings::exportCSSCharSet,
                    each.inserts);
        set(settings::lineBreakCode, each.lineBreak);
        auto text = each.before;
        controller.doConvertProcessCSSElement(text, source, each.sourceLineBreak);
        EXPECT_EQ(text, each.after) << each.what;
    }
}

TEST_F(DeclarationsTest, LinksAreLeftAsTheyAre) {
    defaults.setBool(true, settings::replaceLink);
    setTarget(4);
    const std::u16string before = u"<link charset=a><LINK rel=b><link";
    auto text = before;
    controller.doConvertProcessLinkElement(text, source);
    EXPECT_EQ(text, before);
}

TEST_F(DeclarationsTest, KindOfFileDecidesTheSteps) {
    setTarget(4);
    defaults.setBool(true, settings::replaceMETA);
    defaults.setBool(true, settings::replaceXMLProc);
    defaults.setBool(true, settings::replaceCSSCharSet);
    const std::string before =
        "<?xml encoding='x'?><meta http-equiv=Content-Type>\n@charset \"x\";\x8e\xb1\xa4\xa2";
    const std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";
    const std::string meta =
        "<meta http-equiv=\"Content-Type\" content=\"text/html; charset=UTF-8\">";
    const std::string oldXML = "<?xml encoding='x'?>";
    const std::string oldMeta = "<meta http-equiv=Content-Type>";
    const std::string tail = "\xef\xbd\xb1\xe3\x81\x82";
    const struct {
        const char* name;
        std::string after;
    } cases[] = {
        {"a.html", oldXML + meta + "\n@charset \"x\";" + tail},
        {"a.XML", xml + oldMeta + "\n@charset \"x\";" + tail},
        {"a.xhtml", xml + meta + "\n@charset \"x\";" + tail},
        {"a.txt", oldXML + oldMeta + "\n@charset \"x\";" + tail},
    };
    for (const auto& each : cases) {
        const auto path = folder.writeFile(each.name, before);
        controller.doConvertProcess(path);
        EXPECT_EQ(readFile(path), each.after) << each.name;
    }
    const auto path = folder.writeFile("a.CSS", "@charset \"x\";\x8e\xb1\xa4\xa2");
    controller.doConvertProcess(path);
    EXPECT_EQ(readFile(path), "@charset \"UTF-8\";" + tail);
}

} // namespace
} // namespace zelmora::test
