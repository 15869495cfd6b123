// The diagnostic line, character for character.
#include "foundation_fixture.h"

#include <ctime>
#include <set>
#include <thread>

namespace zelmora::test {

TEST(LogTest, LinesOfThreadsCarryTheTimeAndNumbersOfTheirOwn) {
    constexpr size_t count = 200;
    const auto write = [] {
        for (size_t i = 0; i < count; ++i)
            OrvLog(L"line %d", 2);
    };
    const std::time_t before = std::time(nullptr);
    const Lines lines = rawLinesOf([&] {
        std::thread other(write);
        write();
        other.join();
    });
    std::set<std::string> stamps;
    for (std::time_t time = before; time <= std::time(nullptr); ++time) {
        char stamp[32];
        std::strftime(stamp, sizeof stamp, "%y/%m/%d %H:%M:%S[", std::localtime(&time));
        stamps.insert(stamp);
    }
    std::set<int> numbers;
    for (const std::string& line : lines) {
        EXPECT_TRUE(line.ends_with("] line 2")) << line;
        EXPECT_TRUE(stamps.contains(line.substr(0, 18))) << line;
        numbers.insert(std::stoi(line.substr(18)));
    }
    ASSERT_EQ(numbers.size(), 2 * count);
    EXPECT_EQ(*numbers.rbegin() - *numbers.begin(), 2 * int{count} - 1);
}

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
