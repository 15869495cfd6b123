// Style sheets: reading rules with their places in the text, finding one by its first selector,
// and building "@charset" rules; and the scanner, a cursor over a string.
//
// A sheet is read as a flat sequence of rules, called elements. Selectors, values, quoted strings
// and escapes are not interpreted, and nothing nests: an "@media" block comes as one element for
// its head, the rules inside it, and one element "}". Comments leave nothing in their place; one
// that is not closed reaches to the end, and "/*/" is a whole one.
//
// Offsets and lengths count characters of the library's strings (code points). Of a text of more
// than 2^31 - 1 characters only those are read.
//
// Ownership, threads and failures: orv_base.h. Elements found by the parser and rendered texts are
// temporary objects.
#pragma once

#include "foundation/orv_base.h"

namespace zelmora {

/// OrvCSSParserParseElement met a character other than "{" after a rule's selectors.
inline constexpr int32_t orvCSSErrorNoBlock = -9;

/// A new parser over `text`, retained, which must not change while the parser reads it.
[[nodiscard]] OrvIBase* OrvCSSParserCreate(OrvIBase* text) noexcept;
/// Reads the first rule at or after `offset` (a negative one counts as 0). Spaces before a rule on
/// its line belong to it. Null at the end of the text, after an error and without memory. Each of
/// the last three may be null; all are 0 unless there is something to tell.
[[nodiscard]] OrvIBase* OrvCSSParserParseElement(OrvIBase* parser, int32_t offset, int32_t* start,
                                                 int32_t* length, int32_t* error) noexcept;
/// The first rule at or after `offset` whose first selector is `keyword`, in any letter case;
/// null when there is none. `start` and `length` are set only for a found rule; either may be
/// null. Linear in the text; holds one rule at a time.
[[nodiscard]] OrvIBase* OrvCSSParserFindElement(OrvIBase* parser, const OrvIBase* keyword,
                                                int32_t offset, int32_t* start,
                                                int32_t* length) noexcept;
/// Puts the element's rendered text in place of the given characters of the parser's text.
void OrvCSSParserReplaceElement(OrvIBase* parser, const OrvIBase* element, int32_t start,
                                int32_t length) noexcept;
/// Makes `element` the "@charset" rule for an encoding and a byte order, in the numbering of the
/// encoding record; leaves it as it is when they have no MIME charset name.
void OrvCSSParserUpdateCharsetElement(OrvIBase* parser, OrvIBase* element, int32_t encoding,
                                      int32_t byteOrder) noexcept;
/// A new "@charset" rule; null when the encoding and byte order have no MIME charset name.
[[nodiscard]] OrvIBase* OrvCSSParserCreateCharsetElement(OrvIBase* parser, int32_t encoding,
                                                         int32_t byteOrder) noexcept;

/// A new element without selectors and declarations.
[[nodiscard]] OrvIBase* OrvCSSElementCreate() noexcept;
/// The rule as style-sheet text; null when it has no selectors. A declaration block ends in "}"
/// without a line break after it.
[[nodiscard]] OrvIBase* OrvCSSElementGetText(const OrvIBase* element) noexcept;

/// A new scanner at the start of `string`, retained; null counts as an empty string.
[[nodiscard]] OrvIBase* OrvScannerCreate(OrvIBase* string) noexcept;
/// Takes the characters up to and including the first one that is in `set` (NUL-terminated), or
/// the rest. Answers whether there were any; `token` is then a temporary string of them, else null.
bool OrvScannerScanThroughCharacters(OrvIBase* scanner, const wchar_t* set,
                                     OrvIBase** token) noexcept;

} // namespace zelmora
