// The lines of the log and where they go.

#include "engine/conversion_log.h"
#include "engine/settings.h"
#include "engine_fixture.h"

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
        {{false, "/a", ls, cr, record(2), record(3), false, false, true},
         "Fail File:/a LineBreak:LS->CR Encoding:ISO-2022-JP->EUC-JP "
         "Katakana:No HTML:No XML:Yes"},
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

} // namespace
} // namespace zelmora::test
