#include "platform/defaults/localized_strings.h"

#include "platform/text/text_encoding.h"
#include "platform/text/unicode_codecs.h"
#include "platform/text/utf8.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <optional>

namespace zelmora::platform {

namespace {

/// Reads entries until the end of the text or the first fault.
class Parser {
  public:
    explicit Parser(std::string_view text) : _text(text) {}

    using Table = std::map<std::string, std::string, std::less<>>;

    /// Nullopt, with fault() set, when the text is not a table.
    std::optional<Table> table() {
        Table table;
        for (;;) {
            if (!skipSpaceAndComments())
                return std::nullopt;
            if (_position == _text.size())
                return table;
            auto entry = this->entry();
            if (!entry)
                return std::nullopt;
            if (!table.insert(std::move(*entry)).second) {
                fail("this key stands twice");
                return std::nullopt;
            }
        }
    }

    [[nodiscard]] const char* fault() const { return _fault; }

    /// The line of the fault, from 1: that on which the faulty piece begins.
    [[nodiscard]] size_t line() const {
        size_t line = 1;
        for (const char c : _text.substr(0, _pieceStart))
            line += c == '\n';
        return line;
    }

  private:
    bool fail(const char* fault) {
        _fault = fault;
        return false;
    }

    std::optional<std::pair<std::string, std::string>> entry() {
        std::pair<std::string, std::string> entry;
        if (!quoted(entry.first) || !mark('=') || !quoted(entry.second) || !mark(';'))
            return std::nullopt;
        return entry;
    }

    /// Takes `expected` if it comes next. A fault is laid to the piece before it: a missing
    /// semicolon belongs to the line that lacks it.
    bool mark(char expected) {
        if (!skipSpaceAndComments())
            return false;
        if (_position == _text.size() || _text[_position] != expected)
            return fail(expected == '=' ? "\"=\" expected after this"
                                        : "\";\" expected after this");
        ++_position;
        return true;
    }

    bool skipSpaceAndComments() {
        for (;;) {
            _position = std::min(_text.find_first_not_of(" \t\r\n", _position), _text.size());
            const std::string_view rest = _text.substr(_position);
            if (rest.starts_with("//")) {
                _position = std::min(_text.find('\n', _position), _text.size());
            } else if (rest.starts_with("/*")) {
                const size_t end = _text.find("*/", _position + 2);
                if (end == std::string_view::npos) {
                    _pieceStart = _position;
                    return fail("this comment has no end");
                }
                _position = end + 2;
            } else {
                return true;
            }
        }
    }

    bool quoted(std::string& into) {
        if (!skipSpaceAndComments())
            return false;
        _pieceStart = _position;
        if (_position == _text.size() || _text[_position] != '"')
            return fail("a quoted string expected");
        ++_position;
        for (;;) {
            const std::string_view rest = _text.substr(_position);
            const auto end =
                std::ranges::find_if(rest, [](char c) { return c == '"' || c == '\\'; });
            into.append(rest.begin(), end);
            if (end == rest.end())
                return fail("this string has no end");
            _position += static_cast<size_t>(end - rest.begin()) + 1;
            if (*end == '"')
                return true;
            if (!escape(into))
                return fail("an escape other than \\\" \\\\ \\n \\t \\UXXXX");
        }
    }

    bool escape(std::string& into) {
        if (_position == _text.size())
            return false;
        const char c = _text[_position++];
        if (c == 'U')
            return codeEscape(into);
        constexpr std::string_view kLetters = "\"\\nt";
        constexpr std::string_view kMeanings = "\"\\\n\t";
        const size_t index = kLetters.find(c);
        if (index == std::string_view::npos)
            return false;
        into += kMeanings[index];
        return true;
    }

    bool codeEscape(std::string& into) {
        const std::string_view digits = _text.substr(_position, 4);
        uint16_t code = 0;
        const auto [end, error] =
            std::from_chars(digits.data(), digits.data() + digits.size(), code, 16);
        if (error != std::errc{} || end != digits.data() + 4 || isSurrogate(code))
            return false;
        _position += 4;
        into += utf8FromUTF16(std::u16string(1, code));
        return true;
    }

    std::string_view _text;
    size_t _position = 0;
    size_t _pieceStart = 0; ///< where the string or comment in hand begins
    const char* _fault = "";
};

/// A placeholder at the start of a text.
struct Placeholder {
    size_t length;               ///< in bytes
    std::optional<size_t> index; ///< from 0, of a numbered placeholder
};

/// The placeholder with which `text` begins: "%@", "%u", "%d" or one of them numbered from 1.
std::optional<Placeholder> placeholderAtStart(std::string_view text) {
    size_t length = 1;
    size_t number = 0;
    const char* const digits = text.data() + 1;
    const auto [end, error] = std::from_chars(digits, text.data() + text.size(), number);
    const bool isNumbered = error == std::errc{};
    if (isNumbered) {
        length += static_cast<size_t>(end - digits) + 1;
        if (number == 0 || length > text.size() || text[length - 1] != '$')
            return std::nullopt;
    }
    if (length >= text.size() || std::string_view("@ud").find(text[length]) == std::string::npos)
        return std::nullopt;
    return Placeholder{length + 1, isNumbered ? std::optional(number - 1) : std::nullopt};
}

} // namespace

Result<LocalizedStrings> LocalizedStrings::parse(std::string_view text, std::string_view name) {
    if (!decodeText(bytesOf(text), TextEncoding::utf8))
        return Error{EINVAL, std::string(name) + ": not UTF-8"};
    Parser parser(text);
    auto table = parser.table();
    if (!table) {
        return Error{EINVAL, std::string(name) + ":" + std::to_string(parser.line()) + ": " +
                                 parser.fault()};
    }
    LocalizedStrings strings;
    strings._table = std::move(*table);
    return strings;
}

std::string LocalizedStrings::stringForKey(std::string_view key) const {
    const auto found = _table.find(key);
    return found == _table.end() ? std::string(key) : found->second;
}

std::string LocalizedStrings::format(std::string_view key,
                                     std::initializer_list<std::string_view> arguments) const {
    const std::string text = stringForKey(key);
    std::string_view rest = text;
    std::string result;
    size_t nextIndex = 0;
    for (size_t percent; (percent = rest.find('%')) != std::string_view::npos;) {
        result += rest.substr(0, percent);
        rest.remove_prefix(percent);
        if (rest.starts_with("%%")) {
            result += '%';
            rest.remove_prefix(2);
            continue;
        }
        const auto placeholder = placeholderAtStart(rest);
        const size_t length = placeholder ? placeholder->length : 1;
        const size_t index = !placeholder         ? arguments.size()
                             : placeholder->index ? *placeholder->index
                                                  : nextIndex++;
        result += index < arguments.size() ? arguments.begin()[index] : rest.substr(0, length);
        rest.remove_prefix(length);
    }
    return result.append(rest);
}

} // namespace zelmora::platform
