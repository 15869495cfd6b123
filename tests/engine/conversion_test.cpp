// One file from its bytes to its bytes, and what every failure on the way leaves behind.

#include "engine/document_controller.h"
#include "engine/settings.h"
#include "engine_fixture.h"
#include "textutil/text_utility_private.h"

#include <cerrno>
#include <random>
#include <sys/stat.h>
#include <unistd.h>

namespace zelmora::test {
namespace {

using Items = std::vector<std::string>;
using namespace std::string_literals;

class ConversionTest : public EngineTest {
  protected:
    /// Converts the file and runs what that has scheduled.
    void convert(const std::string& path) {
        controller.doConvertProcess(path);
        mainLoop.mainQueue().drain();
    }
    void set(std::string_view key, int64_t value) { defaults.setInteger(value, key); }

    ZelDocumentController controller{services()};
};

// "表" is 95 5C in Shift_JIS, C9 BD in EUC-JP, E8 A1 A8 in UTF-8, U+8868.
TEST_F(ConversionTest, SettingsDecideWhatAFileBecomes) {
    const struct {
        const char* what;
        std::string source;
        int64_t encoding, lineBreak;
        bool littleEndian, putBOM, katakana;
        std::string expected;
    } cases[] = {
        {"Shift_JIS to UTF-8", "\x95\x5c\r\nA\r\n", 4, 1, 0, 0, 0, "\xe8\xa1\xa8\nA\n"},
        {"with a mark", "\x95\x5c", 4, 0, 0, 1, 0, "\xef\xbb\xbf\xe8\xa1\xa8"},
        {"to UTF-16BE", "\x95\x5c\n", 5, 3, 0, 1, 0, "\xfe\xff\x88\x68\0\r\0\n"s},
        {"to UTF-16LE", "\x95\x5c\n", 5, 4, 1, 0, 0, "\x68\x88\x28\x20"},
        {"to UTF-32LE", "\x95\x5c", 6, 0, 1, 1, 0, "\xff\xfe\0\0\x68\x88\0\0"s},
        {"to EUC-JP", "\x95\x5c\r", 3, 1, 0, 1, 0, "\xc9\xbd\n"},
        {"to ISO-2022-JP", "\x95\x5c\r\n", 2, 2, 0, 0, 0, "\x1b$BI=\x1b(B\r"},
        {"everything kept", "\xff\xfe\x68\x88\r\0\n\0"s, 0, 0, 0, 0, 0,
         "\xff\xfe\x68\x88\r\0\n\0"s},
        {"kept as UTF-8 with its mark", "\xef\xbb\xbf\xe8\xa1\xa8", 0, 0, 0, 0, 0,
         "\xef\xbb\xbf\xe8\xa1\xa8"},
        {"no line break to convert", "abc", 4, 2, 0, 0, 0, "abc"},
        {"only the first kind of line break", "a\r\nb\n", 4, 2, 0, 0, 0, "a\rb\n"},
        {"half-width katakana", "\x95\x5c\xb6\xde", 1, 0, 0, 0, 1, "\x95\x5c\x83\x4b"},
        {"empty", "", 4, 1, 0, 1, 0, "\xef\xbb\xbf"},
        {"a character Shift_JIS does not have", "\xe8\xa1\xa8\xf0\x9f\x90\xb1", 1, 0, 0, 0, 0,
         "\x95\x5c?"},
    };
    for (const auto& each : cases) {
        set(settings::encodingCode, each.encoding);
        set(settings::lineBreakCode, each.lineBreak);
        defaults.setBool(each.littleEndian, settings::littleEndian);
        defaults.setBool(each.putBOM, settings::putBOM);
        defaults.setBool(each.katakana, settings::halfToFullKatakana);
        const auto path = folder.writeFile("a.txt", each.source);
        convert(path);
        EXPECT_EQ(readFile(path), each.expected) << each.what;
        EXPECT_EQ(folder.items(), Items{"a.txt"}) << each.what;
    }
    EXPECT_EQ(alertTexts(), Items());
}

TEST_F(ConversionTest, ShiftJISMappingsAreChosenForReadingAndWriting) {
    // 81 60 is U+FF5E to Windows and U+301C to the Macintosh; both write their own back.
    for (const int64_t mapping : {0, 1, 2, -1}) {
        set(settings::sjisDeviceCharRead, mapping);
        set(settings::encodingCode, 4);
        const auto path = folder.writeFile("a.txt", "\x81\x60");
        convert(path);
        EXPECT_EQ(readFile(path), mapping == 1 ? "\xef\xbd\x9e" : "\xe3\x80\x9c") << mapping;
        set(settings::sjisDeviceCharWrite, mapping);
        set(settings::encodingCode, 1);
        convert(path);
        EXPECT_EQ(readFile(path), "\x81\x60") << mapping;
    }
}

TEST_F(ConversionTest, FileThatCannotBeConvertedIsReportedAndLeft) {
    const auto bad = folder.writeFile("bad.txt", "\x81\x40 \x81"); // cut in a character
    convert(bad);
    convert(folder / "none.txt");
    ASSERT_EQ(mkfifo((folder / "fifo.txt").c_str(), 0600), 0);
    convert(folder / "fifo.txt");
    folder.writeFile("folder.txt/x", "");
    convert(folder / "folder.txt");
    const auto alertOf = [](const std::string& path, const std::string& why) {
        return "A file could not be converted.|" + path + " was not converted. " + why;
    };
    EXPECT_EQ(alertTexts(),
              (Items{alertOf(bad, "Its bytes are not valid Shift_JIS."),
                     alertOf(folder / "none.txt", "It cannot be read: No such file or directory."),
                     alertOf(folder / "fifo.txt", "It is not a file that holds text."),
                     alertOf(folder / "folder.txt", "It cannot be read: Is a directory.")}));
    EXPECT_EQ(readFile(bad), "\x81\x40 \x81");
    EXPECT_EQ(controller.failedCount(), 4U);
    EXPECT_EQ(folder.items(), (Items{"bad.txt", "fifo.txt", "folder.txt/", "folder.txt/x"}));
}

TEST_F(ConversionTest, FileTooLargeForTheMemoryFailsByItself) {
    const auto large = folder.writeFile("large.txt", "\x95\x5c");
    const auto small = folder.writeFile("small.txt", "\x95\x5c");
    files.setHook([&](const FaultyFileManager::Operation& each) {
        if (each.path == large)
            throw std::bad_alloc();
    });
    convert(large);
    convert(small);
    EXPECT_EQ(alertTexts(), (Items{"A file could not be converted.|" + large +
                                   " was not converted. It cannot be read: Cannot allocate "
                                   "memory."}));
    EXPECT_EQ(readFile(large), "\x95\x5c");
    EXPECT_EQ(readFile(small), "\xe8\xa1\xa8");
}

/// Shift_JIS of more than a few pieces, all lines alike.
std::string largeText() {
    std::string text;
    while (text.size() < 1'500'000)
        text += "\x95\x5c\xb6\xde A\r\n";
    return text;
}

TEST_F(ConversionTest, LargeTextIsConvertedInPiecesAsIfItWereWhole) {
    const OrvTextUtilityPrivate utility;
    for (unsigned seed = 0; seed < 60; ++seed) {
        std::mt19937 random(seed);
        set(settings::encodingCode, random() % 7);
        set(settings::lineBreakCode, random() % 5);
        defaults.setBool(random() % 2 == 0, settings::halfToFullKatakana);
        std::u16string text;
        for (size_t lines = random() % 40; lines > 0; --lines) {
            text.append(random() % (seed % 4 == 0 ? 70'000 : 9'000), u"a漢ｶﾊ"[random() % 4]);
            text += std::u16string_view(u"ﾞ\r\n\uFF9F\n\n\r漢").substr(random() % 7, 2);
        }
        if (seed % 5 == 0)
            text += u"\U0001F600"; // only Unicode holds it
        const OrvEncodingInfo record{.encoding = OrvEncoding::utf8, .hasBOM = true};
        const auto path =
            folder.writeFile("a.txt", platform::charsOf(*utility.dataWithString(text, record)));
        convert(path);

        auto wanted = record;
        if (const auto code = defaults.integerForKey(settings::encodingCode); code != 0)
            wanted = {.encoding = OrvEncoding(code), .byteOrder = OrvByteOrder::littleEndian};
        wanted.characterMapping = OrvCharacterMapping::windows;
        const auto to = OrvLineBreak(defaults.integerForKey(settings::lineBreakCode));
        const auto from = utility.lineBreakTypeOfString(text);
        if (from != OrvLineBreak::none && to != OrvLineBreak::none)
            utility.convertLineBreakOfString(text, from, to);
        if (defaults.boolForKey(settings::halfToFullKatakana))
            utility.convertHalfToFullKatakanaOfString(text);
        const auto expected = *utility.dataWithString(text, wanted);
        EXPECT_TRUE(readFile(path) == platform::charsOf(expected))
            << "seed " << seed << ", encoding " << defaults.integerForKey(settings::encodingCode);
        EXPECT_EQ(folder.items(), Items{"a.txt"}) << "seed " << seed;
    }
    EXPECT_EQ(alertTexts(), Items());
}

TEST_F(ConversionTest, WhatFailsLateInALargeTextLeavesNothingBehind) {
    const std::string text = largeText();
    const struct {
        const char* what;
        std::string source;
        int writeCode;
        std::string why;
    } cases[] = {
        {"cut in its last character", text + "\x81", 0, "Its bytes are not valid Shift_JIS."},
        {"disk full", text, ENOSPC,
         "The converted text cannot be written: No space left on device."},
        // What is wrong with the file itself is told first.
        {"both", text + "\x81", ENOSPC, "Its bytes are not valid Shift_JIS."},
    };
    for (const auto& each : cases) {
        userInterface.alerts.clear();
        files.failEvery("write", each.writeCode);
        const auto path = folder.writeFile("a.txt", each.source);
        convert(path);
        EXPECT_EQ(alertTexts(), (Items{"A file could not be converted.|" + path +
                                       " was not converted. " + each.why}))
            << each.what;
        EXPECT_TRUE(readFile(path) == each.source) << each.what;
        EXPECT_EQ(folder.items(), Items{"a.txt"}) << each.what;
    }
}

TEST_F(ConversionTest, LinkIsReplacedByTheConvertedFileAndItsTargetStays) {
    const auto target = folder.writeFile("target.txt", "\x95\x5c");
    ASSERT_EQ(symlink(target.c_str(), (folder / "link.txt").c_str()), 0);
    convert(folder / "link.txt");
    EXPECT_EQ(readFile(target), "\x95\x5c");
    EXPECT_EQ(folder.items(), (Items{"link.txt", "target.txt"}));
    EXPECT_EQ(readFile(folder / "link.txt"), "\xe8\xa1\xa8");
}

TEST_F(ConversionTest, LogLineIsWrittenBeforeTheAlertAndOnlyWhenAskedFor) {
    defaults.setObject(folder / "log", settings::logFilePath);
    convert(folder / "none.txt");
    EXPECT_EQ(readFile(folder / "log"), "<none>");
    defaults.setBool(true, settings::createLogFile);
    set(settings::lineBreakCode, 1);
    controller.doConvertProcess(folder / "none.txt");
    EXPECT_NE(readFile(folder / "log").find("Conversion Fail File:" + (folder / "none.txt")),
              std::string::npos);
    EXPECT_EQ(userInterface.alerts.size(), 1U);
    mainLoop.mainQueue().drain();
    EXPECT_EQ(userInterface.alerts.size(), 2U);
}

} // namespace
} // namespace zelmora::test
