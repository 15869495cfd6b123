// Which files under a path are queued.

#include "engine/settings.h"
#include "engine/target_files.h"
#include "engine_fixture.h"

#include <algorithm>
#include <cerrno>
#include <unistd.h>

namespace zelmora::test {
namespace {

using Items = std::vector<std::string>;

class TargetFilesTest : public EngineTest {
  protected:
    void setExtensions(std::string_view key, const char* list) {
        defaults.setObject(*settings::valueFromText(*settings::keyNamed(key), list), key);
    }
    /// The targets found under `path`, relative to the folder, sorted.
    Items found(const std::string& path) {
        Items names;
        scanned = targets.scan(path, [&](const std::string& target) {
            names.push_back(target.substr(folder.path().size() + 1));
        });
        std::sort(names.begin(), names.end());
        return names;
    }

    TargetFiles targets{defaults, files};
    platform::Status scanned;
};

TEST_F(TargetFilesTest, NameAloneDecides) {
    setExtensions(settings::nameExtensionArray, "txt,HTM");
    const struct {
        const char* name;
        bool plain, hidden, noExtension; ///< with neither switch, with each alone
    } cases[] = {
        {"/x/a.txt", true, true, true},        {"/x/a.TXT", true, true, true},
        {"/x/a.htm", true, true, true},        {"/x/a.html", false, false, false},
        {"/x/README", false, false, true},     {"/x/.hidden.txt", false, true, false},
        {"/x/.profile", false, false, false},  {"/x/.DS_Store", false, false, false},
        {"/x/.ds_store", false, false, false}, {"/x/a.", false, false, true},
        {"/.hidden/a.txt", true, true, true},  {"/x.txt/a", false, false, true},
        {"/x/\xff.txt", true, true, true},
    };
    for (const auto& each : cases) {
        for (const int mode : {0, 1, 2}) {
            defaults.setBool(mode == 1, settings::allowConvertHiddenFiles);
            defaults.setBool(mode == 2, settings::allowConvertNoNameExtension);
            const bool expected[] = {each.plain, each.hidden, each.noExtension};
            EXPECT_EQ(targets.isTarget(each.name), expected[mode]) << each.name << " " << mode;
        }
    }
    defaults.setBool(true, settings::allowConvertHiddenFiles);
    EXPECT_TRUE(targets.isTarget("/x/.profile")); // no extension, and both are allowed
    EXPECT_FALSE(targets.isTarget("/x/.DS_Store"));
}

TEST_F(TargetFilesTest, EmptyListMeansNoFileWithAnExtension) {
    setExtensions(settings::nameExtensionArray, "");
    EXPECT_FALSE(targets.isTarget("a.txt"));
    defaults.setObject(platform::PropertyListArray{std::string("txt")},
                       settings::nameExtensionArray); // entries of another shape are passed over
    EXPECT_FALSE(targets.isTarget("a.txt"));
}

TEST_F(TargetFilesTest, KindsFollowTheirLists) {
    setExtensions(settings::htmlExtensionArray, "html,xhtml");
    setExtensions(settings::xmlExtensionArray, "xml,xhtml");
    const struct {
        const char* path;
        bool html, xml, css;
    } cases[] = {
        {"/a.HTML", true, false, false}, {"/a.xhtml", true, true, false},
        {"/a.xml", false, true, false},  {"/a.CSS", false, false, true},
        {"/a", false, false, false},     {"/css", false, false, false},
        {"", false, false, false},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(targets.isHTMLFile(each.path), each.html) << each.path;
        EXPECT_EQ(targets.isXMLFile(each.path), each.xml) << each.path;
        EXPECT_EQ(targets.isCSSFile(each.path), each.css) << each.path;
    }
}

TEST_F(TargetFilesTest, FolderIsSearchedToItsDepthAndLinksAreNotFollowed) {
    for (const auto* name : {"in/a.txt", "in/.hidden.txt", "in/.DS_Store", "in/sub/b.txt",
                             "in/.deep/er/c.txt", "in/folder.txt/d.bin", "out/e.txt"})
        folder.writeFile(name, "");
    ASSERT_EQ(symlink("../out", (folder / "in/link").c_str()), 0);
    ASSERT_EQ(symlink("../out/e.txt", (folder / "in/link.txt").c_str()), 0);
    ASSERT_EQ(symlink("loop", (folder / "in/loop").c_str()), 0);
    EXPECT_EQ(found(folder / "in"),
              (Items{"in/.deep/er/c.txt", "in/a.txt", "in/link.txt", "in/sub/b.txt"}));
    EXPECT_TRUE(scanned.ok());
    EXPECT_EQ(found(folder / "in/link"), Items()); // a link to a folder is no folder
    EXPECT_EQ(found(folder / "in/a.txt"), Items{"in/a.txt"});
    EXPECT_EQ(found(folder / "in/folder.txt/d.bin"), Items());
    EXPECT_EQ(found(folder / "not there.txt"), Items{"not there.txt"});
}

TEST_F(TargetFilesTest, UnreadableFolderIsAnswered) {
    folder.writeFile("in/a.txt", "");
    files.failEvery("enumerateAtPath", EACCES);
    EXPECT_EQ(found(folder / "in"), Items());
    EXPECT_EQ(scanned.error().code, EACCES);
}

} // namespace
} // namespace zelmora::test
