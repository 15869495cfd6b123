// What stands on a terminal: the status line, its width, and the messages above it.

#include "platform/console/terminal_user_interface.h"

#include <chrono>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <thread>
#include <unistd.h>

namespace zelmora::platform {
namespace {

const std::string eraseLine = "\r\x1b[K";

/// A pseudo terminal: what is written to it can be read back.
class PseudoTerminal {
  public:
    explicit PseudoTerminal(unsigned short columns) {
        termios mode{};
        cfmakeraw(&mode); // or line feeds would come with carriage returns
        const winsize size{.ws_row = 24, .ws_col = columns, .ws_xpixel = 0, .ws_ypixel = 0};
        EXPECT_EQ(openpty(&_control, &_terminal, nullptr, &mode, &size), 0);
    }
    ~PseudoTerminal() {
        close(_terminal);
        close(_control);
    }
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;

    [[nodiscard]] int descriptor() const { return _terminal; }
    /// What has been written since the last call.
    [[nodiscard]] std::string shown() const {
        std::string text;
        char buffer[4096];
        for (pollfd event{_control, POLLIN, 0}; poll(&event, 1, 0) == 1;)
            text.append(buffer, static_cast<size_t>(read(_control, buffer, sizeof buffer)));
        return text;
    }

  private:
    int _control = -1;
    int _terminal = -1;
};

TEST(StatusLine, IsCutToTheTerminalsWidthBetweenCharacters) {
    const struct {
        unsigned short columns;
        std::string text;
        std::string drawn;
    } cases[] = {
        {10, "1234567890", "123456789"},
        {10, "残りのファイル", "残りのフ"}, // eight columns; the next letter takes two
        {10, "ﾊﾟﾝﾊﾟﾝﾊﾟﾝﾊﾟﾝ", "ﾊﾟﾝﾊﾟﾝﾊﾟﾝ"},  // half-width
        {3, "e\u0301\u0301e\u0301e", "e\u0301\u0301e\u0301"},
        {2, "残", ""},
        {10, "bad\xff", "bad"},
    };
    for (const auto& each : cases) {
        const PseudoTerminal terminal(each.columns);
        StatusLine line(terminal.descriptor());
        line.show(each.text);
        EXPECT_EQ(terminal.shown(), eraseLine + each.drawn) << each.text << " in " << each.columns;
    }
}

TEST(StatusLine, IsDrawnWhenItIsTimeAndComesBackBelowAMessage) {
    const PseudoTerminal terminal(80);
    StatusLine line(terminal.descriptor());
    line.show("1");
    line.show("2");
    line.show("3");
    line.redrawIfDue();
    EXPECT_EQ(terminal.shown(), eraseLine + "1");
    std::this_thread::sleep_for(std::chrono::milliseconds(60));
    line.redrawIfDue();
    EXPECT_EQ(terminal.shown(), eraseLine + "3") << "the last of those that came too early";
    line.printLine("a\x1b[2J\nb");
    line.redrawIfDue();
    EXPECT_EQ(terminal.shown(), eraseLine + "a\\x1B[2J\\nb\n" + eraseLine + "3");
    line.show("4");
    line.clear();
    line.redraw();
    EXPECT_EQ(terminal.shown(), eraseLine) << "drawn though it was removed";
}

} // namespace
} // namespace zelmora::platform
