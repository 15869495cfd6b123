#include "platform/console/terminal_user_interface.h"

#include "platform/text/utf8.h"

#include <algorithm>
#include <cerrno>
#include <sys/ioctl.h>
#include <unistd.h>
#include <utf8proc.h>
#include <utility>

namespace zelmora::platform {

namespace {

constexpr auto redrawInterval = std::chrono::milliseconds(50);
constexpr size_t barWidth = 24; ///< columns
constexpr std::string_view eraseLine = "\r\x1b[K";

/// The beginning of `text` that takes at most `columns` columns; Japanese letters take two.
std::string_view cutToColumns(std::string_view text, size_t columns) {
    size_t offset = 0;
    size_t used = 0;
    while (offset < text.size()) {
        utf8proc_int32_t character = 0;
        const auto length =
            utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()) + offset,
                             static_cast<utf8proc_ssize_t>(text.size() - offset), &character);
        if (length <= 0)
            break;
        used += static_cast<size_t>(std::max(utf8proc_charwidth(character), 0));
        if (used > columns)
            break;
        offset += static_cast<size_t>(length);
    }
    return text.substr(0, offset);
}

std::string drawnBar(double percent) {
    const auto filled = static_cast<size_t>(std::clamp(percent, 0.0, 100.0) / 100.0 * barWidth);
    return "[" + std::string(filled, '#') + std::string(barWidth - filled, '.') + "]";
}

/// A progress window as one line: bar, percentage, label. Nothing is drawn while it is hidden.
/// Cancel has no control here: on a terminal it is Ctrl-C.
class ProgressLine final : public LoadedInterface,
                           private Window,
                           private StaticText,
                           private ProgressIndicator,
                           private Button {
  public:
    explicit ProgressLine(StatusLine& statusLine) : _statusLine(statusLine) {}
    ~ProgressLine() override { close(); }

    Window& window() override { return *this; }
    StaticText& staticText(std::string_view) override { return *this; }
    ProgressIndicator& progressIndicator(std::string_view) override { return *this; }
    Button& button(std::string_view) override { return *this; }

  private:
    [[nodiscard]] bool isVisible() const override { return _isVisible; }
    void show() override {
        _isVisible = true;
        draw();
    }
    void center() override {}
    void close() override {
        if (std::exchange(_isVisible, false))
            _statusLine.clear();
    }
    void setStringValue(const std::string& text) override {
        _label = text;
        draw();
    }
    void setDoubleValue(double percent) override {
        _percent = percent;
        draw();
    }
    void setIndeterminate(bool indeterminate) override {
        _isIndeterminate = indeterminate;
        draw();
    }
    void setUsesThreadedAnimation(bool) override {}
    void startAnimation() override {}
    void setEnabled(bool) override {}
    void setAction(std::function<void()>) override {}

    void draw() {
        if (!_isVisible)
            return;
        if (_isIndeterminate)
            _statusLine.show(_label);
        else
            _statusLine.show(drawnBar(_percent) + " " + std::to_string(static_cast<int>(_percent)) +
                             "% " + _label);
    }

    StatusLine& _statusLine;
    bool _isVisible = false;
    bool _isIndeterminate = false;
    double _percent = 0;
    std::string _label;
};

} // namespace

StatusLine::StatusLine(int descriptor)
    : _descriptor(descriptor), _isTerminal(isatty(descriptor) == 1) {}

void StatusLine::show(std::string text) {
    _text = std::move(text);
    _isPutOff = _isTerminal;
    redrawIfDue();
}

void StatusLine::redrawIfDue() {
    if (!_isShown || std::chrono::steady_clock::now() - _lastShown >= redrawInterval)
        redraw();
}

void StatusLine::redraw() {
    if (!std::exchange(_isPutOff, false))
        return;
    winsize size{};
    const bool isKnown = ioctl(_descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 1;
    // One column stays free: a full line would wrap on some terminals.
    const auto cut = cutToColumns(_text, isKnown ? size.ws_col - 1U : 79U);
    write(std::string(eraseLine).append(cut));
    _isShown = true;
    _lastShown = std::chrono::steady_clock::now();
}

void StatusLine::clear() {
    _isPutOff = false;
    if (std::exchange(_isShown, false))
        write(eraseLine);
}

void StatusLine::printLine(std::string_view text) {
    const bool comesBack = _isShown || _isPutOff;
    clear();
    write(terminalPath(text) + "\n");
    _isPutOff = comesBack;
}

void StatusLine::write(std::string_view text) const {
    while (!text.empty()) {
        const auto written = ::write(_descriptor, text.data(), text.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return; // nobody is left to tell
        text.remove_prefix(static_cast<size_t>(written));
    }
}

TerminalUserInterface::TerminalUserInterface(int descriptor, std::function<void()> terminate)
    : _statusLine(descriptor), _terminate(std::move(terminate)) {}

void TerminalUserInterface::runModal(const Alert& alert) {
    _statusLine.printLine(alert.messageText);
    _statusLine.printLine(alert.informativeText);
}

std::unique_ptr<LoadedInterface> TerminalUserInterface::loadInterface(std::string_view) {
    return std::make_unique<ProgressLine>(_statusLine);
}

std::unique_ptr<ModalSession> TerminalUserInterface::beginModalSessionForWindow(Window&) {
    _statusLine.redraw();
    return std::make_unique<ModalSession>();
}

} // namespace zelmora::platform
