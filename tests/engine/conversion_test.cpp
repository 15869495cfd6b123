// One file from its bytes to its bytes, its names and HFS codes, and what a late failure leaves.

#include "engine/document_controller.h"
#include "engine/settings.h"
#include "engine_fixture.h"
#include "textutil/text_utility_private.h"

#include <cerrno>
#include <new>
#include <random>
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
    void set(std::string_view key, const char* text) { defaults.setObject(std::string(text), key); }

    ZelDocumentController controller{services()};
};

// "表" is 95 5C in Shift_JIS, E8 A1 A8 in UTF-8.
TEST_F(ConversionTest, ShiftJISMappingsAreChosenForReadingAndWriting) {
    // 81 60 is U+FF5E to Windows and U+301C to the Macintosh; each has a ① of its own.
    for (const int64_t mapping : {0, 1}) {
        set(settings::sjisDeviceCharRead, mapping);
        set(settings::encodingCode, 4);
        const auto path = folder.writeFile("a.txt", "\x81\x60");
        convert(path);
        EXPECT_EQ(readFile(path), mapping == 1 ? "\xef\xbd\x9e" : "\xe3\x80\x9c") << mapping;
        set(settings::sjisDeviceCharRead, 1 - mapping);
        set(settings::sjisDeviceCharWrite, mapping);
        set(settings::encodingCode, 1);
        folder.writeFile("a.txt", "①①");
        convert(path);
        EXPECT_EQ(readFile(path), mapping == 1 ? "\x87\x40\x87\x40" : "\x85\x40\x85\x40");
    }
}

TEST_F(ConversionTest, EverySettingAndLengthInPiecesAsIfItWereWhole) {
    const OrvTextUtilityPrivate utility;
    const OrvEncodingInfo records[] = {
        {OrvEncoding::utf8, OrvByteOrder::none, true},
        {OrvEncoding::utf16, OrvByteOrder::littleEndian, true},
        {OrvEncoding::utf32, OrvByteOrder::bigEndian, true},
        {OrvEncoding::shiftjis, OrvByteOrder::none, false, OrvCharacterMapping::windows},
        {OrvEncoding::eucjp},
        {OrvEncoding::jis},
    };
    for (unsigned seed = 0; seed < 180; ++seed) {
        std::mt19937 random(seed);
        set(settings::encodingCode, random() % 7);
        set(settings::lineBreakCode, random() % 5);
        for (const auto key :
             {settings::halfToFullKatakana, settings::littleEndian, settings::putBOM})
            defaults.setBool(random() % 2 == 0, key);
        const OrvEncodingInfo record = records[seed % std::size(records)];
        std::u16string text = u"漢\n";
        for (size_t lines = random() % 40; lines > 0; --lines) {
            text.append(random() % (seed % 4 == 0 ? 70'000 : 9'000), u"a漢ｶﾊ"[random() % 4]);
            text += std::u16string_view(u"ﾞ\r\n\uFF9F\n\n\r漢").substr(random() % 7, 2);
        }
        if (seed % 5 == 0 && record.hasBOM)
            text += u"\U0001F600"; // only Unicode holds it
        const auto bytes = *utility.dataWithString(text, record);
        std::string source(platform::charsOf(bytes));
        // In ISO-2022-JP, a line may also end before what it has switched to is switched off.
        if (const std::string_view off = "\x1B(B\n"; record.encoding == OrvEncoding::jis)
            for (size_t at = 0; (at = source.find(off, at)) != std::string::npos;)
                source.replace(at, off.size(), random() % 2 == 0 ? "\n\x1B(B" : off);
        const auto path = folder.writeFile("a.txt", source);
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

// What its beginning says of the encoding is not the last word.
TEST_F(ConversionTest, TheEncodingIsToldByAllOfALargeText) {
    const auto large = [](std::string_view line, int times) {
        std::string text;
        for (; times > 0; --times)
            text += line;
        return text;
    };
    const std::string ascii = large("plain text\n", 60'000);
    const struct {
        const char* what;
        std::string source;
        std::string converted; ///< to UTF-8
    } cases[] = {
        {"nothing, then Shift_JIS", ascii + "\x95\x5c", ascii + "\xe8\xa1\xa8"},
        {"nothing, then UTF-8", ascii + "\xe3\x81\x82", ascii + "\xe3\x81\x82"},
        // Half-width katakana, \xB1 and \xB2, which EUC-JP reads as one kanji.
        {"EUC-JP, then Shift_JIS", large("\xb1\xb2\n", 200'000) + "\x95\x5c",
         large("\xef\xbd\xb1\xef\xbd\xb2\n", 200'000) + "\xe8\xa1\xa8"},
        {"Shift_JIS, then a zero byte", large("\x95\x5c\n", 200'000) + '\0', "<as it was>"},
    };
    for (const auto& each : cases) {
        const auto path = folder.writeFile("a.txt", each.source);
        convert(path);
        const auto& expected = each.converted == "<as it was>" ? each.source : each.converted;
        EXPECT_TRUE(readFile(path) == expected) << each.what;
    }
    EXPECT_EQ(alertTexts(), Items{alertOf(folder / "a.txt", "Its bytes are not valid UTF-16.")});
}

TEST_F(ConversionTest, WhatFailsLateInALargeTextLeavesNothingBehind) {
    std::string text; // of more than a few pieces
    while (text.size() < 1'500'000)
        text += "\x95\x5c\xb6\xde A\r\n";
    const struct {
        const char* what;
        std::string source;
        bool isMemoryFull;
        std::string why;
    } cases[] = {
        {"memory full", text, true, "It cannot be read: Cannot allocate memory."},
        {"cut in its last character", text + "\x81", false, "Its bytes are not valid Shift_JIS."},
    };
    for (const auto& each : cases) {
        userInterface.alerts.clear();
        files.setHook([&](const auto&) {
            if (each.isMemoryFull)
                throw std::bad_alloc();
        });
        const auto path = folder.writeFile("a.txt", each.source);
        convert(path);
        EXPECT_EQ(alertTexts(), Items{alertOf(path, each.why)}) << each.what;
        EXPECT_TRUE(readFile(path) == each.source) << each.what;
        EXPECT_EQ(folder.items(), Items{"a.txt"}) << each.what;
    }
}

TEST_F(ConversionTest, HFSCodesFollowTheSettings) {
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
        set(settings::actionForCreator, each.creatorAction);
        set(settings::creatorCode, each.creator);
        set(settings::actionForFileType, each.typeAction);
        set(settings::fileType, each.type);
        ASSERT_TRUE(controller.doConvertProcessPostDstPath(converted, source).ok());
        EXPECT_EQ(disk.hfsCodesOfItemAtPath(source).value(), each.expected) << each.creator;
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

TEST_F(ConversionTest, TemporaryNameIsFirstFreeSibling) {
    for (const auto* name : {"b#0.txt", "b#2.txt"})
        folder.writeFile(name, "");
    const std::pair<const char*, const char*> cases[] = {
        {"a.txt", "a#0.txt"},       {"b.txt", "b#1.txt"},       {"README", "README#0"},
        {".profile", ".profile#0"}, {"a.tar.gz", "a.tar#0.gz"},
    };
    for (const auto& [source, expected] : cases)
        EXPECT_EQ(controller.dstPathForSrcPath(folder / source), folder / expected) << source;
}

TEST_F(ConversionTest, FinalNameFollowsTheExtensionSettings) {
    const struct {
        const char* source;
        int64_t convert;
        const char* extension;
        int64_t adding;
        Items expected;
        const char* taken = nullptr; ///< a name taken beforehand
    } cases[] = {
        {"a.txt", 1, "html", 1, {"a.txt.html"}},
        {"a.txt", 1, "html", 2, {"a.html"}},
        {"a.txt", 1, "html", 0, {"a.txt"}},
        {"a.txt", 1, "html", 2, {"a#0.html", "a.html"}, "a.html"},
        {"README", 1, "html", 0, {"README.html"}},
        {"a.txt", 1, "x/../../b", 2, {"a.txt"}},
        {"a.txt", 2, "", 0, {"a"}},
        {"a.txt", 2, "", 0, {"a", "a#0"}, "a"},
    };
    for (const auto& each : cases) {
        const TemporaryDirectory place;
        if (each.taken != nullptr)
            place.writeFile(each.taken, "other");
        const auto source = place.writeFile(each.source, "old");
        const auto converted = place.writeFile("converted", "new");
        set(settings::convertExtension, each.convert);
        set(settings::extensionOfDstFiles, each.extension);
        set(settings::actionForAddingExtension, each.adding);
        EXPECT_TRUE(controller.doConvertProcessPostDstPath(converted, source).ok());
        EXPECT_EQ(place.items(), each.expected) << each.source << " " << each.extension;
        EXPECT_TRUE(each.taken == nullptr || readFile(place / each.taken) == "other");
    }
}

} // namespace
} // namespace zelmora::test
