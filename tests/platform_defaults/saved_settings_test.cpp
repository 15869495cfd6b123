#include "platform/defaults/user_defaults.h"
#include "tests/support/faulty_file_manager.h"
#include "tests/support/temporary_directory.h"

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace zelmora::platform {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr SettingKey kKeys[] = {
    {"flag", SettingType::boolean},
    {"code", SettingType::integer},
    {"path", SettingType::string},
    {"list", SettingType::extensionList},
};

std::string dictionary(const std::string& entries) {
    return "<plist version=\"1.0\"><dict>" + entries + "</dict></plist>\n";
}

class SavedSettingsTest : public ::testing::Test {
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
}

TEST_F(SavedSettingsTest, DamagedFileIsReportedAndNeverReplaced) {
    const struct {
        std::string file;
        std::string_view key; ///< named by the message
    } cases[] = {
        {"no property list", ""},
        {"", ""},
        {"<plist><array/></plist>", ""},
        {dictionary("<key>flag</key><integer>1</integer><key>code</key><integer>7</integer>"),
         "flag"},
        {dictionary("<key>flag</key><string>YES</string><key>code</key><integer>7</integer>"),
         "flag"},
        {dictionary("<key>path</key><true/><key>code</key><integer>7</integer>"), "path"},
        {dictionary("<key>list</key><array><string>txt</string></array>"
                    "<key>code</key><integer>7</integer>"),
         "list"},
        {dictionary("<key>list</key><array><dict><key>name</key><string>txt</string></dict></array>"
                    "<key>code</key><integer>7</integer>"),
         "list"},
    };
    for (const auto& [file, key] : cases) {
        writeFile(file);
        UserDefaults defaults(kKeys);
        defaults.registerDefaults({{"flag", true}, {"path", "~"}, {"list", PropertyListArray{}}});
        const auto problems = defaults.load(_files, _path);
        ASSERT_EQ(problems.size(), 1U) << file;
        EXPECT_THAT(problems.front(), AllOf(StartsWith(_path), HasSubstr(key))) << file;
        EXPECT_TRUE(defaults.boolForKey("flag")) << file;
        EXPECT_EQ(defaults.stringForKey("path"), "~") << file;
        EXPECT_EQ(defaults.arrayForKey("list"), PropertyListArray{}) << file;
        EXPECT_EQ(defaults.integerForKey("code"), key.empty() ? 0 : 7) << file;
        defaults.setInteger(1, "code");
        EXPECT_FALSE(defaults.save(_files)) << file;
        EXPECT_EQ(test::readFile(_path), file);
    }
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

TEST_F(SavedSettingsTest, WhatCouldNotBeLoadedAgainIsNotSaved) {
    const std::pair<std::string_view, PropertyListValue> cases[] = {
        {"code", "4"}, {"unknown", "/\xFF"}, {"list", PropertyListArray{"txt"}}};
    for (const auto& [key, value] : cases) {
        UserDefaults defaults(kKeys);
        ASSERT_TRUE(defaults.load(_files, _path).empty());
        defaults.setObject(value, key);
        const auto status = defaults.save(_files);
        ASSERT_FALSE(status) << key;
        EXPECT_THAT(status.error().message, StartsWith(_path)) << key;
        EXPECT_FALSE(std::filesystem::exists(_path)) << key;
    }
}

TEST_F(SavedSettingsTest, StringsThatAreNoTextSurvive) {
    for (const std::string path : {"/\x82\xA0", "/\x1B", "", "/あ"}) {
        UserDefaults defaults(kKeys);
        ASSERT_TRUE(defaults.load(_files, _path).empty());
        defaults.setObject(path, "path");
        const auto status = defaults.save(_files);
        ASSERT_TRUE(status) << status.error().message;
        EXPECT_EQ(defaults.stringForKey("path"), path);
        UserDefaults later(kKeys);
        EXPECT_TRUE(later.load(_files, _path).empty());
        EXPECT_EQ(later.stringForKey("path"), path);
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
    constexpr int kWriters = 4;
    constexpr int kSaves = 10;
    std::vector<std::thread> writers;
    for (int writer = 0; writer < kWriters; ++writer) {
        writers.emplace_back([this, writer] {
            UserDefaults defaults;
            EXPECT_TRUE(defaults.load(_files, _path).empty());
            for (int i = 0; i < kSaves; ++i) {
                defaults.setInteger(i, std::to_string(writer) + "-" + std::to_string(i));
                const auto status = defaults.save(_files);
                EXPECT_TRUE(status) << status.error().message;
            }
        });
    }
    for (auto& thread : writers)
        thread.join();
    EXPECT_EQ(saved().as<PropertyListDictionary>()->size(), size_t{kWriters * kSaves});
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

TEST_F(SavedSettingsTest, LockOfAKilledProgramDoesNotStand) {
    writeFile(dictionary(""));
    int ready[2] = {};
    ASSERT_EQ(pipe(ready), 0);
    const pid_t child = fork();
    if (child == 0) {
        const int file = open((_path + ".lock").c_str(), O_RDWR | O_CREAT, 0600);
        if (flock(file, LOCK_EX) == 0 && write(ready[1], "x", 1) == 1)
            pause();
        _exit(1);
    }
    char byte = 0;
    ASSERT_EQ(read(ready[0], &byte, 1), 1);
    UserDefaults defaults(kKeys);
    ASSERT_TRUE(defaults.load(_files, _path).empty());
    defaults.setInteger(1, "code");
    std::thread killer([child] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        kill(child, SIGKILL);
    });
    const auto start = std::chrono::steady_clock::now();
    const auto status = defaults.save(_files);
    EXPECT_TRUE(status) << status.error().message;
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(40))
        << "a lock that is held is waited for";
    killer.join();
    waitpid(child, nullptr, 0);
    close(ready[0]);
    close(ready[1]);
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

TEST_F(SavedSettingsTest, FileThatCannotBeReadIsReportedAndNeverReplaced) {
    writeFile(dictionary("<key>code</key><integer>7</integer>"));
    _files.failEvery("contentsAtPath", EACCES);
    UserDefaults defaults(kKeys);
    EXPECT_EQ(defaults.load(_files, _path).size(), 1U);
    _files.failEvery("contentsAtPath", 0);
    defaults.setInteger(1, "code");
    EXPECT_FALSE(defaults.save(_files));
    EXPECT_EQ(saved(), (PropertyListDictionary{{"code", 7}}));
}

} // namespace
} // namespace zelmora::platform
