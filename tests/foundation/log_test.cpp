// The diagnostic line, character for character.
#include "foundation_fixture.h"

#include <ctime>
#include <set>
#include <thread>

namespace zelmora::test {

namespace {

int numberOf(const std::string& line) {
    const size_t bracket = line.find('[');
    return bracket == line.npos ? -1 : std::stoi(line.substr(bracket + 1));
}

} // namespace

TEST(LogTest, WritesDateTimeAndRunningNumber) {
    const std::time_t before = std::time(nullptr);
    const Lines lines = rawLinesOf([] {
        OrvLog(L"first");
        OrvLog(L"second %d", 2);
    });
    const std::time_t after = std::time(nullptr);
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(numberOf(lines[1]), numberOf(lines[0]) + 1);

    bool matches = false;
    for (std::time_t time = before; time <= after; ++time) {
        char stamp[32];
        std::strftime(stamp, sizeof stamp, "%y/%m/%d %H:%M:%S", std::localtime(&time));
        const std::string number = std::to_string(numberOf(lines[1]));
        matches |= lines[1] == std::string(stamp) + "[" + number + "] second 2";
    }
    EXPECT_TRUE(matches) << lines[1];
}

TEST(LogTest, CutsAndNeverFormatsTwice) {
    const std::wstring longText(600, L'あ');
    std::string cut;
    for (int i = 0; i < 511; ++i)
        cut += "あ";
    const struct {
        std::wstring argument;
        std::string line;
    } cases[] = {
        {L"%d %ls %n 100%", "%d %ls %n 100%"},
        {L"é\u2028𠮷", "é\u2028𠮷"},
        {longText, cut},
        {std::wstring(1, wchar_t(0xD800)), "\uFFFD"},
    };
    for (const auto& test : cases)
        EXPECT_EQ(linesOf([&] { OrvLog(L"%ls", test.argument.c_str()); }), Lines{test.line});
}

TEST(LogTest, LinesOfThreadsStayWholeAndNumberedApart) {
    constexpr int count = 200;
    const auto write = [] {
        for (int i = 0; i < count; ++i)
            OrvLog(L"line");
    };
    const Lines lines = rawLinesOf([&] {
        std::thread other(write);
        write();
        other.join();
    });
    std::set<int> numbers;
    for (const std::string& line : lines) {
        EXPECT_TRUE(line.ends_with("] line")) << line;
        numbers.insert(numberOf(line));
    }
    EXPECT_EQ(numbers.size(), 2U * count);
}

} // namespace zelmora::test
