// The lines of the log and where they go.

#include "engine/conversion_log.h"
#include "engine/settings.h"
#include "engine_fixture.h"
#include "platform/events/notification_center.h"

#include <cerrno>
#include <gmock/gmock.h>
#include <sstream>
#include <thread>

namespace zelmora::test {
namespace {

using ::testing::MatchesRegex;

class ConversionLogTest : public EngineTest {
  protected:
    ConversionLogTest() { defaults.setObject(folder / "logs/deep/log", settings::logFilePath); }

    [[nodiscard]] std::string logText() const { return readFile(folder / "logs/deep/log"); }

    ZelLog log{services()};
};

constexpr OrvEncodingInfo record(int encoding, int byteOrder = 0, bool hasBOM = false) {
    return {static_cast<OrvEncoding>(encoding), static_cast<OrvByteOrder>(byteOrder), hasBOM};
}

TEST_F(ConversionLogTest, ConversionLineTellsEachItem) {
    const struct {
        ConversionLogEntry entry;
        const char* expected; ///< after the date and time
    } cases[] = {
        {{true, "/a b.txt", OrvLineBreak::crlf, OrvLineBreak::lf, record(1), record(4, 1, true),
          true, true, false},
         "Conversion Success File:/a b.txt LineBreak:CRLF->LF Encoding:Shift_JIS->UTF-8 "
         "BOM:Unavailable->Available Katakana:Yes HTML:Yes XML:No\n"},
        {{true, "/a", OrvLineBreak::lf, OrvLineBreak::none, record(5, 1, true), record(5, 2)},
         "Conversion Success File:/a LineBreak:NotConverted Encoding:UTF-16->UTF-16 "
         "ByteOrder:LittleEndian->BigEndian BOM:Available->Unavailable "
         "Katakana:No HTML:No XML:No\n"},
        {{true, "/a", OrvLineBreak::ls, OrvLineBreak::cr, record(4, 0, true), record(0, 1, true)},
         "Conversion Success File:/a LineBreak:LS->CR Encoding:UTF-8->NotConverted "
         "BOM:Available->Unavailable Katakana:No HTML:No XML:No\n"},
        {{false, "/a", OrvLineBreak::none, OrvLineBreak::crlf, record(0), record(6, 0)},
         "Conversion Fail File:/a LineBreak:NotConverted Encoding:NotConverted "
         "ByteOrder:Unknown->Unknown BOM:Unavailable->Unavailable Katakana:No HTML:No XML:No\n"},
        {{true, "/a", OrvLineBreak::cr, OrvLineBreak::ls, record(2), record(3)},
         "Conversion Success File:/a LineBreak:CR->LS Encoding:ISO-2022-JP->EUC-JP "
         "Katakana:No HTML:No XML:No\n"},
        {{true, "/a", OrvLineBreak::cr, static_cast<OrvLineBreak>(9), record(7), record(-1)},
         "Conversion Success File:/a LineBreak:NotConverted Encoding:NotConverted "
         "Katakana:No HTML:No XML:No\n"},
        {{true, "/\xff\xe3\x81\x82", {}, {}, {}, {}},
         "Conversion Success File:/\\xFF\xe3\x81\x82 LineBreak:NotConverted "
         "Encoding:NotConverted Katakana:No HTML:No XML:No\n"},
    };
    std::string before = logText() == "<none>" ? "" : logText();
    for (const auto& each : cases) {
        log.logConversionActionWithResult(each.entry);
        const auto text = logText();
        ASSERT_TRUE(text.starts_with(before)) << each.expected;
        const auto line = text.substr(before.size());
        constexpr size_t stampLength = 20; // "2024/03/05 09:07:02 "
        ASSERT_GT(line.size(), stampLength) << each.expected;
        EXPECT_THAT(line.substr(0, stampLength),
                    MatchesRegex("[0-9]{4}/[0-9]{2}/[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2} "));
        EXPECT_EQ(line.substr(stampLength), each.expected);
        before = text;
    }
}

TEST_F(ConversionLogTest, BackupLineNamesSourceAndCopy) {
    log.logBackupActionWithResult(false, "/a.txt", "/b c/a.txt");
    EXPECT_TRUE(logText().ends_with(" Backup Fail Source:/a.txt Copy:/b c/a.txt\n")) << logText();
}

TEST_F(ConversionLogTest, WithoutPathNothingIsWritten) {
    defaults.setObject(std::string(), settings::logFilePath);
    log.logWithAction("A", true, "d");
    EXPECT_TRUE(files.operations().empty());
}

TEST_F(ConversionLogTest, UnwritableLogIsSilentAndWhatStoodThereStays) {
    const auto path = folder.writeFile("logs/deep/log", "earlier\n");
    files.failEvery("appendToFileAtPath", ENOSPC);
    log.logWithAction("A", true, "d");
    files.failEvery("appendToFileAtPath", 0);
    defaults.setObject(path + "/below a file/log", settings::logFilePath);
    log.logWithAction("A", true, "d");
    EXPECT_EQ(readFile(path), "earlier\n");
}

TEST_F(ConversionLogTest, LinesOfTwoThreadsDoNotMix) {
    constexpr int linesEach = 200;
    const auto write = [&](const char* action) {
        for (int i = 0; i < linesEach; ++i)
            ZelLog::sharedLog(services())->logWithAction(action, true, std::string(300, action[0]));
    };
    std::thread other([&] { write("B"); });
    write("A");
    other.join();
    std::istringstream lines(logText());
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count)
        EXPECT_THAT(line, MatchesRegex(".{20}(A Success A{300}|B Success B{300})"));
    EXPECT_EQ(count, 2 * linesEach);
}

TEST_F(ConversionLogTest, SharedLogEndsWithTheApplication) {
    const std::weak_ptr<ZelLog> shared = ZelLog::sharedLog(services());
    EXPECT_EQ(ZelLog::sharedLog(services()), shared.lock());
    platform::NotificationCenter::defaultCenter().post(
        platform::applicationWillTerminateNotification);
    EXPECT_TRUE(shared.expired());
}

TEST_F(ConversionLogTest, MakeDirectoryPathMakesEveryLevelOrSaysNo) {
    folder.writeFile("file", "");
    EXPECT_TRUE(MakeDirectoryPath(files, folder / "a/b/c"));
    EXPECT_TRUE(MakeDirectoryPath(files, folder / "a/b/c"));
    EXPECT_FALSE(MakeDirectoryPath(files, folder / "file"));
    EXPECT_FALSE(MakeDirectoryPath(files, folder / "file/below"));
    EXPECT_FALSE(MakeDirectoryPath(files, ""));
    EXPECT_EQ(folder.items(), (std::vector<std::string>{"a/", "a/b/", "a/b/c/", "file"}));
}

} // namespace
} // namespace zelmora::test
