// Every piece of a rule is read the same way: run up to one of a few characters that end it, and
// copy the runs between comments. Quotes, parentheses and escapes mean nothing here, so a "}" in a
// quoted string ends its block; the rules are still found in order, and each place is exact.
#include "foundation/css_reader.h"
#include "foundation/wide_text.h"

#include <algorithm>

namespace zelmora {

namespace {

/// What separates selectors, also from an at-keyword. Not all white space: U+000B and U+000C are
/// part of a token unless they are at its ends.
constexpr std::wstring_view selectorSeparators = L" ,\t\r\n";

constexpr bool isPrintable(wchar_t character) {
    return character >= L' ' && character <= L'~';
}

} // namespace

bool CSSReader::isAtComment() const noexcept {
    return _text.substr(_position, 2) == L"/*";
}

void CSSReader::skipComment() noexcept {
    // From the opening "/": the "*" of the opener can be that of the closer, as in "/*/".
    const size_t end = _text.find(L"*/", _position);
    _position = end == _text.npos ? _text.size() : end + 2;
}

bool CSSReader::skipToRule() noexcept {
    while (!isAtEnd()) {
        if (!isPrintable(_text[_position]))
            ++_position;
        else if (isAtComment())
            skipComment();
        else
            return true;
    }
    return false;
}

template<wchar_t... stops>
wchar_t CSSReader::readUntil(std::wstring& piece) {
    piece.clear();
    while (!isAtEnd()) {
        const size_t runStart = _position;
        wchar_t character = L'\0';
        const auto isOver = [&] {
            character = _text[_position];
            return ((character == stops) || ...) || (character == L'/' && isAtComment());
        };
        while (!isAtEnd() && !isOver())
            ++_position;
        piece.append(_text, runStart, _position - runStart);
        if (isAtEnd())
            break;
        // A "/" that is no comment does not end a run.
        if (character != L'/')
            return character;
        skipComment();
    }
    return L'\0';
}

CSSReader::SelectorEnd CSSReader::readSelectors(std::wstring& selectors) {
    const wchar_t stop = readUntil<L'{', L'}', L';'>(selectors);
    if (stop == L'\0' || stop == L'{')
        return SelectorEnd::block;
    selectors.push_back(stop);
    ++_position;
    return SelectorEnd::rule;
}

CSSReader::Opening CSSReader::openBlock() noexcept {
    while (!isAtEnd()) {
        if (_text[_position] == L'{') {
            ++_position;
            return Opening::block;
        }
        if (isSpace(_text[_position]))
            ++_position;
        else if (isAtComment())
            skipComment();
        else
            return Opening::otherCharacter;
    }
    return Opening::endOfText;
}

CSSReader::DeclarationEnd CSSReader::readDeclaration(std::wstring& name, std::wstring& value) {
    const wchar_t nameStop = readUntil<L':', L'}'>(name);
    if (nameStop == L'\0')
        return DeclarationEnd::none;
    ++_position;
    if (nameStop == L'}')
        return DeclarationEnd::none;
    const wchar_t valueStop = readUntil<L';', L'}'>(value);
    if (valueStop == L'\0')
        return DeclarationEnd::none;
    ++_position;
    return valueStop == L';' ? DeclarationEnd::declaration : DeclarationEnd::lastDeclaration;
}

std::wstring_view takeSelectorToken(std::wstring_view& rest) noexcept {
    while (!rest.empty()) {
        const size_t end = std::min(rest.find_first_of(selectorSeparators), rest.size());
        const std::wstring_view token = trimmed(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
        if (!token.empty())
            return token;
    }
    return {};
}

} // namespace zelmora
