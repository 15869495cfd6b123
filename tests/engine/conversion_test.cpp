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

class ConversionTest : public EngineTest {
  protected:
    /// Converts the file and runs what that has scheduled.
    void convert(const std::string& path) {
        controller.doConvertProcess(path);
        mainLoop.mainQueue().drain();
    }
    static std::string alertOf(const std::string& path, const std::string& why) {
        return "A file could not be converted.|" + path + " was not converted. " + why;
    }
    void set(std::string_view key, int64_t value) { defaults.setInteger(value, key); }

    ZelDocumentController controller{services()};
};

// "表" is 95 5C in Shift_JIS, E8 A1 A8 in UTF-8.
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
    const auto large = folder.writeFile("large.txt", "\x95\x5c");
    folder.writeFile("folder.txt/x", "");
    const auto good = folder.writeFile("good.txt", "\x95\x5c");
    ASSERT_EQ(mkfifo((folder / "fifo.txt").c_str(), 0600), 0);
    files.setHook([&](const FaultyFileManager::Operation& each) {
        if (each.path == large)
            throw std::bad_alloc();
    });
    Items expected;
    for (const auto& [name, why] : {
             std::pair{"bad.txt", "Its bytes are not valid Shift_JIS."},
             {"none.txt", "It cannot be read: No such file or directory."},
             {"fifo.txt", "It is not a file that holds text."},
             {"folder.txt", "It cannot be read: Is a directory."},
             {"large.txt", "It cannot be read: Cannot allocate memory."},
         }) {
        convert(folder / name);
        expected.push_back(alertOf(folder / name, why));
    }
    convert(good);
    EXPECT_EQ(alertTexts(), expected);
    EXPECT_EQ(controller.failedCount(), 5U);
    EXPECT_EQ(readFile(bad), "\x81\x40 \x81");
    EXPECT_EQ(readFile(large), "\x95\x5c");
    EXPECT_EQ(readFile(good), "\xe8\xa1\xa8");
    EXPECT_EQ(folder.items(), (Items{"bad.txt", "fifo.txt", "folder.txt/", "folder.txt/x",
                                     "good.txt", "large.txt"}));
}

TEST_F(ConversionTest, EverySettingAndLengthInPiecesAsIfItWereWhole) {
    const OrvTextUtilityPrivate utility;
    for (unsigned seed = 0; seed < 90; ++seed) {
        std::mt19937 random(seed);
        set(settings::encodingCode, random() % 7);
        set(settings::lineBreakCode, random() % 5);
        for (const auto key :
             {settings::halfToFullKatakana, settings::littleEndian, settings::putBOM})
            defaults.setBool(random() % 2 == 0, key);
        std::u16string text;
        for (size_t lines = random() % 40; lines > 0; --lines) {
            text.append(random() % (seed % 4 == 0 ? 70'000 : 9'000), u"a漢ｶﾊ"[random() % 4]);
            text += std::u16string_view(u"ﾞ\r\n\uFF9F\n\n\r漢").substr(random() % 7, 2);
        }
        if (seed % 5 == 0)
            text += u"\U0001F600"; // only Unicode holds it
        const OrvEncodingInfo record{seed % 2 == 0 ? OrvEncoding::utf8 : OrvEncoding::utf16,
                                     OrvByteOrder(seed % 2), true};
        const auto path =
            folder.writeFile("a.txt", platform::charsOf(*utility.dataWithString(text, record)));
        convert(path);

        auto wanted = record;
        if (const auto code = defaults.integerForKey(settings::encodingCode); code != 0)
            wanted = {OrvEncoding(code),
                      defaults.boolForKey(settings::littleEndian) ? OrvByteOrder::littleEndian
                                                                  : OrvByteOrder::bigEndian,
                      defaults.boolForKey(settings::putBOM)};
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
    std::string text; // of more than a few pieces
    while (text.size() < 1'500'000)
        text += "\x95\x5c\xb6\xde A\r\n";
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
        EXPECT_EQ(alertTexts(), Items{alertOf(path, each.why)}) << each.what;
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

} // namespace
} // namespace zelmora::test
