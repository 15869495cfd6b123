// The diagnostic line.
#include "foundation_fixture.h"

namespace zelmora::test {

TEST(LogTest, CutsAndNeverFormatsTwice) {
    std::string cut;
    for (int i = 0; i < 511; ++i)
        cut += "あ";
    const std::pair<std::wstring, std::string> cases[] = {
        {L"%d %ls %n 100%", "%d %ls %n 100%"},
        {L"é\u2028𠮷", "é\u2028𠮷"},
        {std::wstring(600, L'あ'), cut},
        {std::wstring(1, wchar_t(0xD800)), "\uFFFD"},
    };
    for (const auto& [argument, line] : cases)
        EXPECT_EQ(linesOf([&text = argument] { OrvLog(L"%ls", text.c_str()); }), Lines{line});
}

} // namespace zelmora::test
