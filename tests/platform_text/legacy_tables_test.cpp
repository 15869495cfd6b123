// Every cell of every table, in both directions, against the data files as this test reads them.
#include "codec_helpers.h"

#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <sstream>

namespace zelmora::platform {
namespace {

using Code = std::string;

/// What each code reads as, and what each character or sequence is written as.
struct Table {
    std::map<Code, std::u16string> _reads;
    std::map<std::u16string, Code> _writes;

    void add(const Code& code, const std::u16string& text, bool isWritten) {
        _reads[code] = text;
        if (isWritten) {
            EXPECT_TRUE(_writes.emplace(text, code).second) << "written in two ways: " << code;
        }
    }

    void addFile(const std::string& name) {
        std::ifstream file(std::string(ZELMORA_TEXT_DATA) + "/" + name + ".txt");
        EXPECT_TRUE(file) << name;
        for (std::string line; std::getline(file, line);) {
            std::istringstream fields(line);
            std::string hex, points, mark;
            fields >> hex >> points >> mark;
            if (hex == "#")
                continue;
            Code code;
            for (size_t i = 0; i < hex.size(); i += 2)
                code += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
            std::u16string text;
            for (size_t at = 0; at < points.size(); at += 7) // U+XXXX+
                text += static_cast<char16_t>(std::stoi(points.substr(at + 2, 4), nullptr, 16));
            add(code, text, mark.empty());
        }
    }
};

Table eucTable() {
    Table table;
    for (const char* name : {"jis_x_0208", "jis_x_0212", "jis_extensions"})
        table.addFile(name);
    for (int ascii = 0; ascii < 0x80; ++ascii)
        table.add({static_cast<char>(ascii)}, {static_cast<char16_t>(ascii)}, true);
    for (int katakana = 0; katakana < 63; ++katakana)
        table.add({'\x8E', static_cast<char>(0xA1 + katakana)},
                  {static_cast<char16_t>(0xFF61 + katakana)}, true);
    return table;
}

/// The EUC-JP code as a text of its own in ISO-2022-JP, which ends in ASCII.
Code iso2022Form(const Code& euc) {
    if (euc.size() == 1)
        return euc;
    const bool isKatakana = euc[0] == '\x8E';
    Code code = isKatakana ? "\x1B(I" : euc.size() == 2 ? "\x1B$B" : "\x1B$(D";
    for (const char byte : euc.substr(isKatakana || euc.size() == 3 ? 1 : 0))
        code += static_cast<char>(byte & 0x7F);
    return code + "\x1B(B";
}

Table iso2022Table() {
    const Table euc = eucTable();
    Table table;
    for (const auto& [code, text] : euc._reads) {
        if (code != "\x0E" && code != "\x0F" && code != "\x1B")
            table.add(iso2022Form(code), text, euc._writes.at(text) == code);
    }
    table.add("\x1B(J\\\x1B(B", u"\u00A5", true);
    table.add("\x1B(J~\x1B(B", u"\u203E", true);
    return table;
}

template<const char* name>
Table fileTable() {
    Table table;
    table.addFile(name);
    return table;
}

constexpr char kMacJapanese[] = "mac_japanese";
constexpr char kCodePage932[] = "code_page_932";
constexpr char kMacOSRoman[] = "mac_os_roman";

template<typename Map>
std::optional<typename Map::mapped_type> lookUp(const Map& map, const typename Map::key_type& key) {
    const auto found = map.find(key);
    return found == map.end() ? std::nullopt : std::optional(found->second);
}

class LegacyTables : public testing::TestWithParam<std::pair<TextEncoding, Table (*)()>> {};

TEST_P(LegacyTables, areReadAndWrittenAndNothingElseIs) {
    const TextEncoding encoding = GetParam().first;
    const auto [reads, writes] = GetParam().second();
    for (const auto& [code, text] : reads)
        EXPECT_EQ(decoded(code, encoding), text) << testing::PrintToString(code);
    for (const auto& [text, code] : writes)
        EXPECT_EQ(encoded(text, encoding), code) << testing::PrintToString(code);
    for (int value = 0; value <= 0xFFFF; ++value) {
        const std::u16string unit{static_cast<char16_t>(value)};
        EXPECT_EQ(encoded(unit, encoding), lookUp(writes, unit)) << std::hex << value;

        // Two bytes are one code, two codes, or invalid.
        const Code first{static_cast<char>(value >> 8)}, second{static_cast<char>(value)};
        auto expected = lookUp(reads, first + second);
        if (!expected && reads.contains(first) && reads.contains(second))
            expected = reads.at(first) + reads.at(second);
        EXPECT_EQ(decoded(first + second, encoding), expected) << std::hex << value;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Encodings, LegacyTables,
    testing::Values(std::pair(TextEncoding::macJapanese, &fileTable<kMacJapanese>),
                    std::pair(TextEncoding::codePage932, &fileTable<kCodePage932>),
                    std::pair(TextEncoding::macOSRoman, &fileTable<kMacOSRoman>),
                    std::pair(TextEncoding::eucJP, &eucTable),
                    std::pair(TextEncoding::iso2022JP, &iso2022Table)));

/// The two bytes after a prefix: a plane's cell or invalid.
TEST(JISPlanes, allOtherCellsAreInvalid) {
    const Table euc = eucTable(), iso2022 = iso2022Table();
    const auto check = [](const Code& code, const Table& table, TextEncoding encoding) {
        EXPECT_EQ(decoded(code, encoding), lookUp(table._reads, code))
            << testing::PrintToString(code);
    };
    for (int row = 0x21; row <= 0xFF; ++row) {
        for (int cell = 0x21; cell <= 0xFF; ++cell) {
            const Code pair{static_cast<char>(row), static_cast<char>(cell)};
            check('\x8F' + pair, euc, TextEncoding::eucJP);
            check("\x1B$B" + pair + "\x1B(B", iso2022, TextEncoding::iso2022JP);
            check("\x1B$(D" + pair + "\x1B(B", iso2022, TextEncoding::iso2022JP);
        }
    }
}

} // namespace
} // namespace zelmora::platform
