// Every cell of every table, in both directions, against the data files as this test reads them.
#include "platform/text/text_encoding.h"

#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <sstream>
#include <string>

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
    for (char c = 0; c >= 0 && c < 0x7F; ++c)
        table.add({c}, {static_cast<char16_t>(c)}, true);
    table.add("\x7F", u"\x7F", true);
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
        const auto written = euc._writes.find(text);
        if (code != "\x0E" && code != "\x0F" && code != "\x1B")
            table.add(iso2022Form(code), text, written->second == code);
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

std::string hexOf(std::string_view bytes) {
    std::ostringstream out;
    for (const char byte : bytes)
        out << std::hex << std::uppercase << (byte & 0xFF) << ' ';
    return out.str();
}

std::optional<std::u16string> decoded(const Code& code, TextEncoding encoding) {
    return decodeText(bytesOf(code), encoding);
}

std::optional<Code> encoded(std::u16string_view text, TextEncoding encoding) {
    const auto bytes = encodeText(text, encoding);
    return bytes ? std::optional<Code>(charsOf(*bytes)) : std::nullopt;
}

struct Case {
    const char* _name;
    TextEncoding _encoding;
    Table (*_table)();
};

class LegacyTables : public testing::TestWithParam<Case> {
  protected:
    const TextEncoding _encoding = GetParam()._encoding;
    const Table _table = GetParam()._table();
};

TEST_P(LegacyTables, everyCodeIsReadAndEveryTextWritten) {
    for (const auto& [code, text] : _table._reads)
        EXPECT_EQ(decoded(code, _encoding), text) << hexOf(code);
    for (const auto& [text, code] : _table._writes)
        EXPECT_EQ(encoded(text, _encoding), code) << hexOf(code);
}

TEST_P(LegacyTables, allOtherUnitsHaveNoCode) {
    for (int unit = 0; unit <= 0xFFFF; ++unit) {
        const std::u16string text{static_cast<char16_t>(unit)};
        const auto written = _table._writes.find(text);
        const auto expected =
            written == _table._writes.end() ? std::nullopt : std::optional<Code>(written->second);
        EXPECT_EQ(encoded(text, _encoding), expected) << std::hex << unit;
    }
}

/// Every two bytes are one code, two codes, or invalid.
TEST_P(LegacyTables, allOtherPairsOfBytesAreInvalid) {
    const auto& reads = _table._reads;
    for (int pair = 0; pair <= 0xFFFF; ++pair) {
        const Code first{static_cast<char>(pair >> 8)};
        const Code second{static_cast<char>(pair)};
        std::optional<std::u16string> expected;
        if (const auto both = reads.find(first + second); both != reads.end())
            expected = both->second;
        else if (reads.contains(first) && reads.contains(second))
            expected = reads.at(first) + reads.at(second);
        EXPECT_EQ(decoded(first + second, _encoding), expected) << std::hex << pair;
    }
}

INSTANTIATE_TEST_SUITE_P(Encodings, LegacyTables,
                         testing::Values(Case{"macJapanese", TextEncoding::macJapanese,
                                              [] { return fileTable("mac_japanese"); }},
                                         Case{"codePage932", TextEncoding::codePage932,
                                              [] { return fileTable("code_page_932"); }},
                                         Case{"macOSRoman", TextEncoding::macOSRoman,
                                              [] { return fileTable("mac_os_roman"); }},
                                         Case{"eucJP", TextEncoding::eucJP, eucTable},
                                         Case{"iso2022JP", TextEncoding::iso2022JP, iso2022Table}),
                         [](const auto& suite) { return suite.param._name; });

/// The two bytes after a prefix: a plane's cell or invalid.
TEST(JISPlanes, allOtherCellsAreInvalid) {
    const Table euc = eucTable();
    const Table iso2022 = iso2022Table();
    for (int row = 0x21; row <= 0xFF; ++row) {
        for (int cell = 0x21; cell <= 0xFF; ++cell) {
            const Code pair{static_cast<char>(row), static_cast<char>(cell)};
            const auto check = [&](const Code& code, const Table& table, TextEncoding encoding) {
                const auto found = table._reads.find(code);
                const auto expected = found == table._reads.end()
                                          ? std::nullopt
                                          : std::optional<std::u16string>(found->second);
                EXPECT_EQ(decoded(code, encoding), expected) << hexOf(code);
            };
            check('\x8F' + pair, euc, TextEncoding::eucJP);
            check("\x1B$B" + pair + "\x1B(B", iso2022, TextEncoding::iso2022JP);
            check("\x1B$(D" + pair + "\x1B(B", iso2022, TextEncoding::iso2022JP);
        }
    }
}

} // namespace
} // namespace zelmora::platform
