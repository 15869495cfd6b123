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

TEST_F(ConversionLogTest, LinesTellEachItemBehindDateAndTime) {
    using enum OrvLineBreak;
    const std::pair<ConversionLogEntry, std::string> cases[] = {
        {{true, "/a b", crlf, lf, record(1), record(4, 1, true), true, true, false},
         "Success File:/a b LineBreak:CRLF->LF Encoding:Shift_JIS->UTF-8 "
         "BOM:Unavailable->Available Katakana:Yes HTML:Yes XML:No"},
        {{true, "/\xff\xe3\x81\x82", lf, OrvLineBreak::none, record(5, 1, true), record(5, 2)},
         "Success File:/\\xFF\xe3\x81\x82 LineBreak:NotConverted Encoding:UTF-16->UTF-16 "
         "ByteOrder:LittleEndian->BigEndian BOM:Available->Unavailable "
         "Katakana:No HTML:No XML:No"},
        {{true, "/a", ls, cr, record(4, 0, true), record(0, 1, true), false, false, true},
         "Success File:/a LineBreak:LS->CR Encoding:UTF-8->NotConverted "
         "BOM:Available->Unavailable Katakana:No HTML:No XML:Yes"},
        {{false, "/a", OrvLineBreak::none, crlf, record(0), record(6, 0)},
         "Fail File:/a LineBreak:NotConverted Encoding:NotConverted "
         "ByteOrder:Unknown->Unknown BOM:Unavailable->Unavailable Katakana:No HTML:No XML:No"},
        {{true, "/a", cr, ls, record(2), record(3)},
         "Success File:/a LineBreak:CR->LS Encoding:ISO-2022-JP->EUC-JP "
         "Katakana:No HTML:No XML:No"},
        {{true, "/a", cr, OrvLineBreak{9}, record(7), record(-1)},
         "Success File:/a LineBreak:NotConverted Encoding:NotConverted "
         "Katakana:No HTML:No XML:No"},
    };
    std::string expected;
    for (const auto& [entry, line] : cases) {
        log.logConversionActionWithResult(entry);
        expected += "Conversion " + line + "\n";
    }
    log.logBackupActionWithResult(false, "/a.txt", "/b c/a.txt");
    expected += "Backup Fail Source:/a.txt Copy:/b c/a.txt\n";
    std::istringstream lines(logText());
    std::string text;
    for (std::string line; std::getline(lines, line);) {
        EXPECT_THAT(line, MatchesRegex("[0-9]{4}/[01][0-9]/[0-3][0-9] [0-9:]{8} .*"));
        text += line.substr(20) + "\n";
    }
    EXPECT_EQ(text, expected);
}

TEST_F(ConversionLogTest, WhatCannotBeWrittenIsSilentAndWhatStoodThereStays) {
    const auto path = folder.writeFile("logs/deep/log", "earlier\n");
    defaults.setObject(std::string(), settings::logFilePath);
    log.logWithAction("A", true, "d");
    EXPECT_TRUE(files.operations().empty());
    defaults.setObject(path, settings::logFilePath);
    files.failEvery("appendToFileAtPath", ENOSPC);
    log.logWithAction("A", true, "d");
    files.failEvery("appendToFileAtPath", 0);
    defaults.setObject(path + "/below a file/log", settings::logFilePath);
    log.logWithAction("A", true, "d");
    EXPECT_EQ(readFile(path), "earlier\n");
    EXPECT_FALSE(MakeDirectoryPath(files, path));
    EXPECT_FALSE(MakeDirectoryPath(files, ""));
}

TEST_F(ConversionLogTest, AFileMadeMeanwhileIsContinued) {
    files.setHook([&](const FaultyFileManager::Operation& each) {
        if (each.name == "createFileAtPath")
            folder.writeFile("logs/deep/log", "theirs\n");
    });
    log.logWithAction("A", true, "d");
    EXPECT_THAT(logText(), MatchesRegex("theirs\n.{20}A Success d\n"));
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

    const std::weak_ptr<ZelLog> shared = ZelLog::sharedLog(services());
    platform::NotificationCenter::defaultCenter().post(
        platform::applicationWillTerminateNotification);
    EXPECT_TRUE(shared.expired());
}

} // namespace
} // namespace zelmora::test
