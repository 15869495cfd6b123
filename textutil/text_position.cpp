#include "textutil/text_position.h"

namespace zelmora {

void TextPosition::advanceTo(size_t offset) {
    for (; _offset < offset; ++_offset) {
        const char16_t unit = _text[_offset];
        const bool isFirstOfPair =
            unit == u'\r' && _offset + 1 < _text.size() && _text[_offset + 1] == u'\n';
        if (unit == u'\n' || unit == u'\u2028' || (unit == u'\r' && !isFirstOfPair)) {
            ++_line;
            _column = 1;
        } else if ((unit & 0xFC00) != 0xDC00) { // the second half of a character adds no column
            ++_column;
        }
    }
}

} // namespace zelmora
