// Which files under a path are queued.

#include "engine/settings.h"
#include "engine/target_files.h"
#include "engine_fixture.h"

#include <algorithm>
#include <cerrno>
#include <unistd.h>

namespace zelmora::test {
namespace {

class TargetFilesTest : public EngineTest {
  protected:
    void setExtensions(std::string_view key, const char* list) {
        defaults.setObject(*settings::valueFromText(*settings::keyNamed(key), list), key);
    }
    /// The targets found under `name`, relative to the folder, sorted.
    Items found(const std::string& name) {
        Items names;
        scanned = targets.scan(folder / name, [&](const std::string& target) {
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
        bool answers[4]; ///< with neither switch, with each alone, with both
    } cases[] = {
        {"/x/a.TXT", {true, true, true, true}},
        {"/x/a.htm", {true, true, true, true}},
        {"/x/a.html", {false, false, false, false}},
        {"/x/README", {false, false, true, true}},
        {"/x/.hidden.txt", {false, true, false, true}},
        {"/x/.profile", {false, false, false, true}},
        {"/x/.DS_Store", {false, false, false, false}},
        {"/x/a.", {false, false, true, true}},
        {"/.hidden/a.txt", {true, true, true, true}},
        {"/x.txt/a", {false, false, true, true}},
        {"/x/\xff.txt", {true, true, true, true}},
    };
    for (const auto& [name, answers] : cases) {
        for (const int mode : {0, 1, 2, 3}) {
            defaults.setBool((mode & 1) != 0, settings::allowConvertHiddenFiles);
            defaults.setBool((mode & 2) != 0, settings::allowConvertNoNameExtension);
            EXPECT_EQ(targets.isTarget(name), answers[mode]) << name << " " << mode;
        }
    }
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
        {"/css", false, false, false},   {"", false, false, false},
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
    EXPECT_EQ(found("in"), (Items{"in/.deep/er/c.txt", "in/a.txt", "in/link.txt", "in/sub/b.txt"}));
    EXPECT_TRUE(scanned.ok());
    EXPECT_EQ(found("in/link"), Items()); // a link to a folder is no folder
    EXPECT_EQ(found("in/a.txt"), Items{"in/a.txt"});
    EXPECT_EQ(found("in/folder.txt/d.bin"), Items());
    EXPECT_EQ(found("not there.txt"), Items{"not there.txt"});
    files.failEvery("enumerateAtPath", EACCES);
    EXPECT_EQ(found("in"), Items());
    EXPECT_EQ(scanned.error().code, EACCES);
}

} // namespace
} // namespace zelmora::test
