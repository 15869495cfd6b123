// What stands on a terminal: the status line, its width, and the messages above it.

#include "platform/console/terminal_user_interface.h"

#include <array>
#include <chrono>
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <thread>
#include <unistd.h>

namespace zelmora::platform {
namespace {

const std::string eraseLine = "\r\x1b[K";

/// A pseudo terminal: what is written to it can be read back.
class PseudoTerminal {
  public:
    explicit PseudoTerminal(unsigned short columns) : _control(posix_openpt(O_RDWR | O_NOCTTY)) {
        grantpt(_control);
        unlockpt(_control);
        _terminal = open(ptsname(_control), O_RDWR | O_NOCTTY);
        termios mode{};
        tcgetattr(_terminal, &mode);
        cfmakeraw(&mode); // or line feeds would come with carriage returns
        tcsetattr(_terminal, TCSANOW, &mode);
        const winsize size{.ws_row = 24, .ws_col = columns, .ws_xpixel = 0, .ws_ypixel = 0};
        ioctl(_terminal, TIOCSWINSZ, &size);
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
        std::array<char, 4096> buffer{};
        pollfd event{_control, POLLIN, 0};
        while (poll(&event, 1, 0) == 1) {
            const auto count = read(_control, buffer.data(), buffer.size());
            if (count <= 0)
                break;
            text.append(buffer.data(), static_cast<size_t>(count));
        }
        return text;
    }

  private:
    int _control;
    int _terminal = -1;
};

TEST(StatusLine, IsCutToTheTerminalsWidthBetweenCharacters) {
    const struct {
        unsigned short columns; ///< 0: unknown, taken as 80
        std::string text;
        std::string drawn;
    } cases[] = {
        {10, "123456789", "123456789"},
        {10, "1234567890", "123456789"},
        {10, "残りのファイル", "残りのフ"}, // eight columns; the next letter takes two
        {11, "残りのファイル", "残りのファ"},
        {10, "1残りのファイル", "1残りのフ"},
        {10, "ﾊﾟﾝﾊﾟﾝﾊﾟﾝﾊﾟﾝ", "ﾊﾟﾝﾊﾟﾝﾊﾟﾝ"}, // half-width
        {3, "e\u0301\u0301e\u0301e", "e\u0301\u0301e\u0301"},
        {2, "残", ""},
        {0, std::string(100, 'x'), std::string(79, 'x')},
        {10, "bad\xff", "bad"},
    };
    for (const auto& each : cases) {
        const PseudoTerminal terminal(each.columns);
        StatusLine line(terminal.descriptor());
        line.show(each.text);
        EXPECT_EQ(terminal.shown(), eraseLine + each.drawn) << each.text << " in " << each.columns;
    }
}

TEST(StatusLine, PutsOffWhatComesTooEarlyAndDrawsTheLastOfIt) {
    const PseudoTerminal terminal(80);
    StatusLine line(terminal.descriptor());
    line.show("1");
    line.show("2");
    line.show("3");
    line.redrawIfDue();
    EXPECT_EQ(terminal.shown(), eraseLine + "1");
    std::this_thread::sleep_for(std::chrono::milliseconds(60));
    line.redrawIfDue();
    EXPECT_EQ(terminal.shown(), eraseLine + "3");
    line.redrawIfDue();
    line.redraw();
    EXPECT_EQ(terminal.shown(), "") << "drawn though nothing has changed";
    line.show("4");
    line.redraw();
    EXPECT_EQ(terminal.shown(), eraseLine + "4");
    line.show("5");
    line.clear();
    line.redraw();
    EXPECT_EQ(terminal.shown(), eraseLine) << "drawn though it was removed";
}

TEST(StatusLine, ComesBackBelowAMessage) {
    const PseudoTerminal terminal(80);
    StatusLine line(terminal.descriptor());
    line.show("1");
    line.printLine("a\x1b[2J\nb");
    line.redrawIfDue();
    EXPECT_EQ(terminal.shown(), eraseLine + "1" + eraseLine + "a\\x1B[2J\\nb\n" + eraseLine + "1");
    line.clear();
    line.printLine("end");
    line.redraw();
    EXPECT_EQ(terminal.shown(), eraseLine + "end\n");
}

TEST(TerminalUserInterface, DrawsBarCountAndLabelWhileTheWindowIsOpen) {
    const PseudoTerminal terminal(80);
    TerminalUserInterface userInterface(terminal.descriptor(), [] {});
    const auto interface = userInterface.loadInterface("Progress");
    auto& window = interface->window();
    auto& bar = interface->progressIndicator("progressBar");
    bar.setDoubleValue(50);
    interface->staticText("staticLabel").setStringValue("残り: 3");
    EXPECT_EQ(terminal.shown(), "") << "drawn while it is hidden";
    const std::string half = eraseLine + "[############............] 50% 残り: 3";
    window.show();
    EXPECT_EQ(terminal.shown(), half);

    userInterface.runModal({"one", "two"});
    EXPECT_EQ(terminal.shown(), eraseLine + "one\ntwo\n");
    userInterface.redraw();
    EXPECT_EQ(terminal.shown(), half);

    interface->staticText("staticLabel").setStringValue("busy");
    bar.setIndeterminate(true);
    const auto session = userInterface.beginModalSessionForWindow(window);
    EXPECT_EQ(terminal.shown(), eraseLine + "busy") << "the main thread is busy from now on";
    window.close();
    EXPECT_EQ(terminal.shown(), eraseLine);
}

} // namespace
} // namespace zelmora::platform
