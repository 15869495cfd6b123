// Finds a tag by its name in bytes whose encoding is not known yet.
#pragma once

#include "markup/markup_tag.h"
#include "platform/text/bytes.h"

#include <cstddef>
#include <optional>
#include <string_view>

namespace zelmora {

/// Keys of a found tag's parserAdditional, both of type std::size_t, in bytes.
/// The offset of the tag's "<" in the data.
inline constexpr std::u16string_view OrvMarkupParserAdditionalKeyByteOffset =
    u"OrvMarkupParserAdditionalKeyByteOffset";
/// The tag's length, from its "<" to its ">" inclusive.
inline constexpr std::u16string_view OrvMarkupParserAdditionalKeyByteLength =
    u"OrvMarkupParserAdditionalKeyByteLength";

/// The tags of undecoded bytes; "<", ">", "=", "/", the double quote and white space are read as
/// ASCII bytes, tokens as Macintosh Roman, byte for character. Tags are read by OrvHTMLParser's
/// rules but for these: quotes never belong to a token and all white space between them does, zero
/// bytes are passed over, and a last attribute name without a value stays one, with an empty value.
/// Only reads its data; every operation is linear in it. Used by one thread at a time.
class OrvMarkupParser {
  public:
    /// Borrows `data`, which must not change during a search.
    void setRawData(platform::ByteView data) { _rawData = data; }
    [[nodiscard]] platform::ByteView rawData() const { return _rawData; }

    /// The first tag at or after the byte offset that is named `name`, ASCII letters without regard
    /// to case. A tag without a name matches nothing; an offset beyond the data finds nothing.
    [[nodiscard]] std::optional<OrvMarkupTag> findMarkupTagName(std::u16string_view name,
                                                                std::size_t startOffset) const;

    /// The tag with which `bytes` begin, as a buffer of its own; nullopt when the next "<" or the
    /// end comes before a ">". REQUIRES: the first byte, if any, is "<".
    [[nodiscard]] static std::optional<platform::Bytes>
    markupTagDataFromBytes(platform::ByteView bytes);

    /// A tag of the bytes `data`, from its "<" to its ">". Never fails.
    [[nodiscard]] static OrvMarkupTag parseMarkupTagData(platform::ByteView data);

  private:
    platform::ByteView _rawData;
};

} // namespace zelmora
