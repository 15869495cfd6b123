// Charset declarations in HTML, XML and CSS texts, before and after.

#include "engine/document_controller.h"
#include "engine/settings.h"
#include "engine_fixture.h"
#include "foundation/orv_ptr.h"

namespace zelmora::test {
namespace {

class DeclarationsTest : public EngineTest {
  protected:
    void switchTo(bool replaces, bool inserts) {
        using namespace settings;
        for (const auto key : {replaceMETA, replaceXMLProc, replaceCSSCharSet})
            defaults.setBool(replaces, key);
        for (const auto key : {exportMETA, exportCSSCharSet})
            defaults.setBool(inserts, key);
    }
    std::u16string inMarkup(std::u16string text, OrvEncodingInfo source = kSource) const {
        controller.doConvertProcessMETAElement(text, source);
        controller.doConvertProcessXMLProcInstruction(text, source);
        controller.doConvertProcessLinkElement(text, source);
        return text;
    }
    std::u16string inCSS(std::u16string text, OrvEncodingInfo source = kSource,
                         OrvLineBreak lineBreak = OrvLineBreak::lf) const {
        controller.doConvertProcessCSSElement(text, source, lineBreak);
        return text;
    }
    static constexpr OrvEncodingInfo kSource{OrvEncoding::eucjp, OrvByteOrder::littleEndian};

    OrvPtr<> pool{OrvTemporaryObjectsPoolCreate()};
    ZelDocumentController controller{services()};
};

TEST_F(DeclarationsTest, AreReplacedOrInserted) {
    defaults.setInteger(4, settings::encodingCode);
    defaults.setBool(true, settings::replaceLink); // which are left as they are
    struct Case {
        bool replaces, inserts;
        std::u16string before, after;
    };
    const std::u16string old = u"<META HTTP-EQUIV=content-type CONTENT='text/html; charset=x' />";
    const std::u16string meta =
        u"<meta http-equiv=\"Content-Type\" content=\"text/html; charset=UTF-8\">";
    const std::u16string xml = u"<?xml version=\"1.0\" encoding=\"UTF-8\"?>";
    const std::u16string links = u"<link charset=a><LINK rel=b><link";
    for (const auto& [replaces, inserts, before, after] : {
             Case{true, false, u"<head>\n" + old + u"x", u"<head>\n" + meta + u"x"},
             Case{true, true, old + old, meta + old},
             Case{false, true, u"<HEAD lang=\"ja\"> ", u"<HEAD lang=\"ja\">" + meta + u" "},
             Case{false, true, u"<head>" + old + u"<?xml?>", u"<head>" + old + u"<?xml?>"},
             Case{true, true, u"<body>", u"<body>"},
             Case{true, true, u" <!-- c --> <?XML encoding=x ?>", u" <!-- c --> " + xml},
             Case{false, false, u"<?xml?><head>" + old, u"<?xml?><head>" + old},
         }) {
        switchTo(replaces, inserts);
        EXPECT_EQ(inMarkup(before + links), after + links);
    }
    const std::u16string rule = u"@charset \"UTF-8\";";
    const std::u16string pairs = u"/*\U0002000B\U0002000B*/\n";
    for (const auto& [replaces, inserts, before, after] : {
             Case{true, true, u"  @charset \"x\"; /* note */", rule + u" /* note */"},
             Case{true, true, pairs + u"@charset \"x\";" + pairs, pairs + rule + pairs},
             Case{true, true, u"/* @charset \"x\"; */", rule + u"\n/* @charset \"x\"; */"},
             Case{false, true, u"@charset \"x\";", u"@charset \"x\";"},
         }) {
        switchTo(replaces, inserts);
        EXPECT_EQ(inCSS(before), after);
    }
}

TEST_F(DeclarationsTest, NameFollowsTheTarget) {
    const struct {
        int64_t encoding;
        bool littleEndian, hasBOM;
        std::u16string name, cssName;
    } cases[] = {
        {0, true, true, u"euc-jp", u"EUC-JP"},    {1, false, false, u"Shift_JIS", u"Shift_JIS"},
        {5, true, true, u"UTF-16", u"UTF-16LE"},  {5, true, false, u"UTF-16LE", u"UTF-16LE"},
        {6, false, true, u"UTF-32", u"UTF-32BE"}, {7, false, false, u"", u"a"},
    };
    const std::u16string before = u"<?xml version=\"1.1\" encoding='a' standalone=\"yes\"?>"
                                  u"<meta http-equiv=\"Content-Type\" content=\"c\">";
    switchTo(true, false);
    for (const auto& each : cases) {
        defaults.setInteger(each.encoding, settings::encodingCode);
        defaults.setBool(each.littleEndian, settings::littleEndian);
        defaults.setBool(each.hasBOM, settings::putBOM);
        const auto declared = u"<?xml version=\"1.0\" encoding=\"" + each.name +
                              u"\"?><meta http-equiv=\"Content-Type\" "
                              u"content=\"text/html; charset=" +
                              each.name + u"\">";
        EXPECT_EQ(inMarkup(before), each.name.empty() ? before : declared);
        EXPECT_EQ(inCSS(u"@charset \"a\";"), u"@charset \"" + each.cssName + u"\";");
    }
    // Nothing is declared where nothing is known.
    defaults.setInteger(0, settings::encodingCode);
    switchTo(true, true);
    EXPECT_EQ(inMarkup(before + u"<head>", {}), before + u"<head>");
    EXPECT_EQ(inCSS(u"@charset \"a\";", {}), u"@charset \"a\";");
}

TEST_F(DeclarationsTest, KindOfFileDecidesTheSteps) {
    defaults.setInteger(4, settings::encodingCode);
    switchTo(true, false);
    const std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";
    const std::string meta =
        "<meta http-equiv=\"Content-Type\" content=\"text/html; charset=UTF-8\">";
    const std::string oldXML = "<?xml encoding='x'?>";
    const std::string oldMeta = "<meta http-equiv=Content-Type>";
    const std::string oldRule = "\n@charset \"x\";";
    const struct {
        const char* name;
        std::string before, after;
    } cases[] = {
        {"a.html", oldXML + oldMeta + oldRule, oldXML + meta + oldRule},
        {"a.XML", oldXML + oldMeta + oldRule, xml + oldMeta + oldRule},
        {"a.xhtml", oldXML + oldMeta + oldRule, xml + meta + oldRule},
        {"a.txt", oldXML + oldMeta + oldRule, oldXML + oldMeta + oldRule},
        {"a.CSS", "@charset \"x\";", "@charset \"UTF-8\";"},
    };
    for (const auto& each : cases) {
        const auto path = folder.writeFile(each.name, each.before + "\x8e\xb1\xa4\xa2");
        controller.doConvertProcess(path);
        EXPECT_EQ(readFile(path), each.after + "\xef\xbd\xb1\xe3\x81\x82") << each.name;
    }
}

} // namespace
} // namespace zelmora::test
