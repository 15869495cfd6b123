// Where in a text something stands, as an editor tells it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace zelmora {

/// Walks a text from its beginning and tells the line and the column it has come to. Both count
/// from 1. A line ends at LF, CR, CRLF or U+2028; a column is a character, so that a surrogate pair
/// is one. All steps together are linear in the text, which must outlive this object.
class TextPosition {
  public:
    explicit TextPosition(std::u16string_view text) : _text(text) {}

    /// Moves on to the unit at `offset`. REQUIRES: not before the last one, nor within a pair.
    void advanceTo(size_t offset);

    [[nodiscard]] uint64_t line() const { return _line; }
    [[nodiscard]] uint64_t column() const { return _column; }

  private:
    std::u16string_view _text;
    size_t _offset = 0;
    uint64_t _line = 1;
    uint64_t _column = 1;
};

} // namespace zelmora
