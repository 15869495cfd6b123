// The grammar of style sheets as this library reads it, on plain text.
#pragma once

#include <string>
#include <string_view>

namespace zelmora {

/// A cursor over a style sheet that takes one piece of a rule after the other. Every call moves
/// forward or stands at the end; all together are linear in the text. Those that fill a piece
/// throw std::bad_alloc.
class CSSReader {
  public:
    /// Reads `text`, which must outlive the reader, from `position`, at most its length.
    CSSReader(std::wstring_view text, size_t position) : _text(text), _position(position) {}

    [[nodiscard]] size_t position() const noexcept { return _position; }

    /// Moves to where the next rule begins, past comments and what is not printable ASCII. False
    /// when there is none.
    bool skipToRule() noexcept;

    /// How a rule's selectors end.
    enum class SelectorEnd { block, rule };
    /// Reads up to "{" or the end of the text (block), or through "}" or ";", which are part of
    /// the selectors (rule).
    SelectorEnd readSelectors(std::wstring& selectors);

    /// What stands where a block should begin. endOfText counts as a block with nothing in it.
    enum class Opening { block, endOfText, otherCharacter };
    /// Skips white space and comments, and the "{" if it is there.
    Opening openBlock() noexcept;

    /// How reading a declaration ends. The block is over after lastDeclaration and after none,
    /// which also stands for a declaration that the end of the text cuts off.
    enum class DeclarationEnd { declaration, lastDeclaration, none };
    /// Reads a name up to ":" and a value up to ";" or "}", all consumed.
    DeclarationEnd readDeclaration(std::wstring& name, std::wstring& value);

  private:
    [[nodiscard]] bool isAtEnd() const noexcept { return _position >= _text.size(); }
    [[nodiscard]] bool isAtComment() const noexcept;
    void skipComment() noexcept;
    /// Puts what stands before the first of `stops`, or before the end, into `piece`, without
    /// comments. Answers the stop, not consumed, or NUL at the end.
    template<wchar_t... stops>
    wchar_t readUntil(std::wstring& piece);

    std::wstring_view _text;
    size_t _position;
};

/// Takes the next selector token off the front of `rest`: what stands between separators, trimmed
/// of white space, unless that is nothing. Empty when there is none left.
[[nodiscard]] std::wstring_view takeSelectorToken(std::wstring_view& rest) noexcept;

} // namespace zelmora
