#include "platform/defaults/user_defaults.h"
#include "tests/support/faulty_file_manager.h"
#include "tests/support/temporary_directory.h"

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

namespace zelmora::platform {
namespace {

using namespace ::testing;

constexpr SettingKey kKeys[] = {
    {"flag", SettingType::boolean},
    {"code", SettingType::integer},
    {"path", SettingType::string},
    {"list", SettingType::extensionList},
};

std::string dictionary(const std::string& entries) {
    return "<plist version=\"1.0\"><dict>" + entries + "</dict></plist>\n";
}

const std::string kSeven = "<key>code</key><integer>7</integer>";

class SavedSettingsTest : public Test {
  protected:
    void writeFile(const std::string& contents) const {
        _directory.writeFile("config/zelmora/zelmora.plist", contents);
    }
    /// What a program started now would find saved.
    [[nodiscard]] PropertyListValue saved() const {
        return propertyListFromXML(test::readFile(_path), _path).value();
    }

    const test::TemporaryDirectory _directory;
    const std::string _path = _directory / "config/zelmora/zelmora.plist";
    test::FaultyFileManager _files{FileManager::defaultManager()};
};

TEST_F(SavedSettingsTest, MissingFileIsEmptyAndIsMadeWithItsFolder) {
    UserDefaults defaults(kKeys);
    defaults.registerDefaults({{"code", 4}});
    EXPECT_TRUE(defaults.load(_files, _path).empty());
    ASSERT_TRUE(defaults.save(_files));
    EXPECT_FALSE(std::filesystem::exists(_path)) << "nothing to save";
    defaults.setValueForThisRun("/this/run", "path");
    defaults.setBool(true, "flag");
    const auto status = defaults.save(_files);
    ASSERT_TRUE(status) << status.error().message;
    EXPECT_EQ(saved(), (PropertyListDictionary{{"flag", true}}));
    // The lock of a program that is no more does not stand.
    EXPECT_TRUE(std::filesystem::exists(_path + ".lock"));
    defaults.setBool(false, "flag");
    EXPECT_TRUE(defaults.save(_files));
}

TEST_F(SavedSettingsTest, DamagedFileIsReportedAndNeverReplaced) {
    const std::pair<std::string, std::string> cases[] = {
        // the message names the key
        {"no property list", ""},
        {"<plist><array/></plist>", ""},
        {dictionary("<key>flag</key><integer>1</integer>" + kSeven), "flag"},
        {dictionary("<key>list</key><array><string>txt</string></array>" + kSeven), "list"},
    };
    for (const auto& [file, key] : cases) {
        SCOPED_TRACE(file);
        writeFile(file);
        UserDefaults defaults(kKeys);
        defaults.registerDefaults({{"flag", true}, {"path", "~"}, {"list", PropertyListArray{}}});
        EXPECT_THAT(defaults.load(_files, _path),
                    ElementsAre(AllOf(StartsWith(_path), HasSubstr(key))));
        EXPECT_TRUE(defaults.boolForKey("flag"));
        EXPECT_EQ(defaults.stringForKey("path"), "~");
        EXPECT_EQ(defaults.arrayForKey("list"), PropertyListArray{});
        EXPECT_EQ(defaults.integerForKey("code"), key.empty() ? 0 : 7);
        defaults.setInteger(1, "code");
        EXPECT_FALSE(defaults.save(_files));
        EXPECT_EQ(test::readFile(_path), file);
    }
    writeFile(dictionary(kSeven)); // and one that cannot be read
    _files.failEvery("contentsAtPath", EACCES);
    UserDefaults defaults(kKeys);
    EXPECT_EQ(defaults.load(_files, _path).size(), 1U);
    _files.failEvery("contentsAtPath", 0);
    defaults.setInteger(1, "code");
    EXPECT_FALSE(defaults.save(_files));
    EXPECT_EQ(test::readFile(_path), dictionary(kSeven));
}

TEST_F(SavedSettingsTest, FileDamagedSinceLoadIsNotReplaced) {
    UserDefaults defaults(kKeys);
    ASSERT_TRUE(defaults.load(_files, _path).empty());
    writeFile("half a fi");
    defaults.setInteger(1, "code");
    EXPECT_FALSE(defaults.save(_files));
    EXPECT_EQ(test::readFile(_path), "half a fi");
    std::filesystem::remove(_path);
    EXPECT_TRUE(defaults.save(_files)) << "the change was not forgotten";
    EXPECT_EQ(saved(), (PropertyListDictionary{{"code", 1}}));
}

TEST_F(SavedSettingsTest, OnlyWhatCanBeLoadedAgainIsSaved) {
    const std::tuple<std::string_view, PropertyListValue, bool> cases[] = {
        {"code", "4", false},
        {"list", PropertyListArray{"txt"}, false},
        {"path", "/\x82\xA0", true},
        {"path", "", true}};
    for (const auto& [key, value, isSaved] : cases) {
        SCOPED_TRACE(Message() << key << (isSaved ? " saved" : " refused"));
        UserDefaults defaults(kKeys);
        ASSERT_TRUE(defaults.load(_files, _path).empty());
        defaults.setObject(value, key);
        const auto status = defaults.save(_files);
        ASSERT_EQ(status.ok(), isSaved);
        EXPECT_EQ(std::filesystem::exists(_path), isSaved);
        EXPECT_EQ(defaults.objectForKey(key), value);
        UserDefaults later(kKeys);
        EXPECT_TRUE(later.load(_files, _path).empty());
        EXPECT_TRUE(isSaved ? later.objectForKey(key) == value
                            : status.error().message.starts_with(_path));
    }
}

TEST_F(SavedSettingsTest, ChangesOfAnotherProgramSurvive) {
    writeFile(dictionary("<key>code</key><integer>1</integer><key>path</key><string>old</string>"
                         "<key>unknown</key><array><real>1.5</real></array>"));
    UserDefaults first(kKeys);
    UserDefaults second(kKeys);
    ASSERT_TRUE(first.load(_files, _path).empty());
    ASSERT_TRUE(second.load(_files, _path).empty());
    int64_t seen = 0;
    second.addObserver("code", [&](std::string_view key) { seen = second.integerForKey(key); });
    first.setInteger(2, "code");
    ASSERT_TRUE(first.save(_files));
    second.removeObjectForKey("path");
    second.setBool(true, "flag");
    ASSERT_TRUE(second.save(_files));
    EXPECT_EQ(saved(), (PropertyListDictionary{
                           {"code", 2}, {"flag", true}, {"unknown", PropertyListArray{1.5}}}));
    EXPECT_EQ(seen, 2) << "a save also takes over what the other has changed";
    second.setInteger(3, "code");
    first.setBool(false, "flag");
    ASSERT_TRUE(second.save(_files));
    ASSERT_TRUE(first.save(_files));
    EXPECT_EQ(first.integerForKey("code"), 3) << "saved changes are not written twice";
}

TEST_F(SavedSettingsTest, ManySaveAtOnceAndNoneIsLost) {
    constexpr size_t kSaves = 10;
    std::vector<std::thread> writers;
    for (const std::string writer : {"a", "b", "c", "d"}) {
        writers.emplace_back([this, writer] {
            UserDefaults defaults;
            EXPECT_TRUE(defaults.load(_files, _path).empty());
            for (size_t i = 0; i < kSaves; ++i) {
                defaults.setInteger(1, writer + std::to_string(i));
                EXPECT_TRUE(defaults.save(_files));
            }
        });
    }
    for (auto& thread : writers)
        thread.join();
    EXPECT_EQ(saved().as<PropertyListDictionary>()->size(), 4 * kSaves);
}

TEST_F(SavedSettingsTest, ChangeMadeDuringASaveIsNotLost) {
    UserDefaults defaults(kKeys);
    ASSERT_TRUE(defaults.load(_files, _path).empty());
    std::atomic<bool> isDone = false;
    std::thread saver([&] {
        while (!isDone)
            EXPECT_TRUE(defaults.save(_files));
    });
    constexpr int64_t kLast = 300;
    for (int64_t i = 1; i <= kLast; ++i) {
        defaults.setInteger(i, "code");
        int64_t differing = 0;
        for (int read = 0; read < 1000; ++read)
            differing += defaults.integerForKey("code") != i;
        EXPECT_EQ(differing, 0) << i;
    }
    isDone = true;
    saver.join();
    EXPECT_TRUE(defaults.save(_files));
    EXPECT_EQ(saved(), (PropertyListDictionary{{"code", kLast}}));
}

TEST_F(SavedSettingsTest, FailedSaveKeepsTheFileAndTheChanges) {
    for (const std::string operation :
         {"createDirectoryAtPath", "contentsAtPath", "replaceFileAtPath"}) {
        writeFile(dictionary(""));
        UserDefaults defaults(kKeys);
        ASSERT_TRUE(defaults.load(_files, _path).empty());
        defaults.setInteger(1, "code");
        _files.failEvery(operation, EIO);
        EXPECT_FALSE(defaults.save(_files)) << operation;
        EXPECT_EQ(test::readFile(_path), dictionary("")) << operation;
        EXPECT_EQ(defaults.integerForKey("code"), 1) << operation;
        _files.failEvery(operation, 0);
        EXPECT_TRUE(defaults.save(_files)) << operation;
        EXPECT_EQ(saved(), (PropertyListDictionary{{"code", 1}})) << operation;
    }
}

} // namespace
} // namespace zelmora::platform
