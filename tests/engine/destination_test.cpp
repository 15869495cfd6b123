// The converted file's names and HFS codes, and what a failure at each step leaves behind.

#include "engine/document_controller.h"
#include "engine/settings.h"
#include "engine_fixture.h"

#include <cerrno>

namespace zelmora::test {
namespace {

class DestinationTest : public EngineTest {
  protected:
    void set(std::string_view key, const char* text) { defaults.setObject(std::string(text), key); }

    ZelDocumentController controller{services()};
};

TEST_F(DestinationTest, TemporaryNameIsFirstFreeSibling) {
    for (const auto* name : {"b#0.txt", "b#2.txt"})
        folder.writeFile(name, "");
    const std::pair<const char*, const char*> cases[] = {
        {"a.txt", "a#0.txt"},   {"b.txt", "b#1.txt"},
        {"README", "README#0"}, {".profile", ".profile#0"},
        {".a.txt", ".a#0.txt"}, {"a.tar.gz", "a.tar#0.gz"},
        {"a.", "a#0"},          {"\xff\xfe.txt", "\xff\xfe#0.txt"},
    };
    for (const auto& [source, expected] : cases)
        EXPECT_EQ(controller.dstPathForSrcPath(folder / source), folder / expected) << source;
}

TEST_F(DestinationTest, FinalNameFollowsTheExtensionSettings) {
    const struct {
        const char* source;
        int64_t convert;
        const char* extension;
        int64_t adding;
        Items expected;
        const char* taken = nullptr; ///< a name taken beforehand
    } cases[] = {
        {"a.txt", 0, "html", 2, {"a.txt"}},
        {"a.txt", 1, "html", 1, {"a.txt.html"}},
        {"a.txt", 1, "html", 2, {"a.html"}},
        {"a.txt", 1, "html", 0, {"a.txt"}},
        {"a.txt", 1, "html", 2, {"a#0.html", "a.html"}, "a.html"},
        {"a.HTML", 1, "html", 2, {"a.HTML"}},
        {"README", 1, "html", 0, {"README.html"}},
        {"a.txt", 1, "", 2, {"a.txt"}},
        {"a.txt", 1, "x/../../b", 2, {"a.txt"}},
        {"a.txt", 2, "", 0, {"a"}},
        {"a.txt", 2, "", 0, {"a", "a#0"}, "a"},
        {".profile", 2, "", 0, {".profile"}},
    };
    for (const auto& each : cases) {
        const TemporaryDirectory place;
        if (each.taken != nullptr)
            place.writeFile(each.taken, "other");
        const auto source = place.writeFile(each.source, "old");
        const auto converted = place.writeFile("converted", "new");
        defaults.setInteger(each.convert, settings::convertExtension);
        set(settings::extensionOfDstFiles, each.extension);
        defaults.setInteger(each.adding, settings::actionForAddingExtension);
        EXPECT_TRUE(controller.doConvertProcessPostDstPath(converted, source).ok());
        EXPECT_EQ(place.items(), each.expected) << each.source << " " << each.extension;
        if (each.taken != nullptr) {
            EXPECT_EQ(readFile(place / each.taken), "other") << each.source;
        }
    }
}

TEST_F(DestinationTest, NameTakenAtTheLastMomentIsLeftAlone) {
    const auto source = folder.writeFile("a.txt", "old");
    const auto converted = folder.writeFile("a#0.txt", "new");
    files.setHook([&](const FaultyFileManager::Operation& each) {
        if (each.name == "moveItemAtPath")
            folder.writeFile("a.txt", "another's");
    });
    EXPECT_TRUE(controller.doConvertProcessPostDstPath(converted, source).ok());
    EXPECT_EQ(folder.items(), (Items{"a#1.txt", "a.txt"}));
    EXPECT_EQ(readFile(source), "another's");
}

TEST_F(DestinationTest, HFSCodesFollowTheSettings) {
    auto& disk = platform::FileManager::defaultManager();
    const platform::HFSCodes sourceCodes{.type = 0x54455854, .creator = 0x74747874};
    const struct {
        int64_t creatorAction;
        const char* creator;
        int64_t typeAction;
        const char* type;
        platform::HFSCodes expected;
    } cases[] = {
        {0, "ab", 0, "cd", sourceCodes},
        {1, "ab", 2, "TEXT", {.type = 0, .creator = 0x61622020}},
        {2, "", 1, "TEXTURE", {.type = 0x54455854, .creator = 0}},
        {1, "", 1, "\xe3\x81\x82", {.type = 0x42202020, .creator = 0}}, // U+3042: its low byte
    };
    for (const auto& each : cases) {
        const auto source = folder.writeFile("a.txt", "old");
        const auto converted = folder.writeFile("a#0.txt", "new");
        ASSERT_TRUE(disk.setHFSCodes(sourceCodes, source).ok());
        defaults.setInteger(each.creatorAction, settings::actionForCreator);
        set(settings::creatorCode, each.creator);
        defaults.setInteger(each.typeAction, settings::actionForFileType);
        set(settings::fileType, each.type);
        ASSERT_TRUE(controller.doConvertProcessPostDstPath(converted, source).ok());
        EXPECT_EQ(disk.hfsCodesOfItemAtPath(source).value(), each.expected) << each.creator;
    }
    EXPECT_EQ(FourCharCodeFromString(std::nullopt), 0U);
    EXPECT_EQ(StringFromFourCharCode(0), u"");
    EXPECT_EQ(StringFromFourCharCode(0xFF000041), std::u16string(u"\u00ff\0\0A", 4));
}

TEST_F(DestinationTest, FailedStepLeavesOneWholeFile) {
    const std::pair<const char*, Items> cases[] = {
        {"hfsCodesOfItemAtPath", {"a#0.txt", "a.txt"}},
        {"setHFSCodes", {"a#0.txt", "a.txt"}},
        {"removeFileAtPath", {"a#0.txt", "a.txt"}},
        {"moveItemAtPath", {"a#0.txt"}},
    };
    defaults.setInteger(1, settings::actionForCreator); // or there are none to set
    set(settings::creatorCode, "ab");
    for (const auto& [operation, expected] : cases) {
        SCOPED_TRACE(operation);
        const TemporaryDirectory place;
        const auto source = place.writeFile("a.txt", "old");
        const auto converted = place.writeFile("a#0.txt", "new");
        files.failEvery(operation, EIO);
        const auto status = controller.doConvertProcessPostDstPath(converted, source);
        files.failEvery(operation, 0);
        ASSERT_FALSE(status.ok());
        EXPECT_EQ(status.error().code, EIO);
        EXPECT_EQ(place.items(), expected);
        EXPECT_EQ(readFile(converted), "new");
    }
}

} // namespace
} // namespace zelmora::test
