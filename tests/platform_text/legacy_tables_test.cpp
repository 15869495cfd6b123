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

Table fileTable(const char* name) {
    Table table;
    table.addFile(name);
    return table;
}

template<typename Map>
std::optional<typename Map::mapped_type> lookUp(const Map& map, const typename Map::key_type& key) {
    const auto found = map.find(key);
    return found == map.end() ? std::nullopt : std::optional(found->second);
}

TEST(LegacyTables, areReadAndWrittenAndNothingElseIs) {
    using enum TextEncoding;
    const struct {
        TextEncoding encoding;
        Table table;
        std::vector<std::pair<Code, Code>>
            planes; ///< what stands around two bytes of another plane
    } cases[] = {
        {macJapanese, fileTable("mac_japanese"), {}},
        {codePage932, fileTable("code_page_932"), {}},
        {macOSRoman, fileTable("mac_os_roman"), {}},
        {eucJP, eucTable(), {{"\x8F", ""}}},
        {iso2022JP, iso2022Table(), {{"\x1B$B", "\x1B(B"}, {"\x1B$(D", "\x1B(B"}}},
    };
    for (const auto& [encoding, table, planes] : cases) {
        const auto& [reads, writes] = table;
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
            for (const auto& [before, after] : planes) {
                const Code code = before + first + second + after;
                if (value >> 8 > 0x20 && (value & 0xFF) > 0x20) { // no controls
                    EXPECT_EQ(decoded(code, encoding), lookUp(reads, code)) << std::hex << value;
                }
            }
        }
    }
}

} // namespace
} // namespace zelmora::platform
