// Finds tags in a decoded text and edits the text in place: the work on charset declarations.
#pragma once

#include "markup/markup_tag.h"
#include "textutil/encoding_info.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace zelmora {

struct TagRange;

/// Keys of a found tag's parserAdditional.
/// The offset of the tag's "<" in the text; a std::size_t.
inline constexpr std::u16string_view OrvHTMLParserAdditionalKeyOffset =
    u"OrvHTMLParserAdditionalKeyOffset";
/// The tag's source, from its "<" to its ">" inclusive; a text as long as the tag.
inline constexpr std::u16string_view OrvHTMLParserAdditionalKeyString =
    u"OrvHTMLParserAdditionalKeyString";

/// The tags of one text. Knows start tags and attributes only: what looks like a tag in a comment
/// or a script is one, and a ">" between quotes ends a tag. Offsets and lengths count UTF-16 units.
/// Every operation is linear in the text whatever it holds. Without a text the parser works on an
/// empty one. Used by one thread at a time.
class OrvHTMLParser {
  public:
    OrvHTMLParser() = default;
    OrvHTMLParser(const OrvHTMLParser&) = delete;
    OrvHTMLParser& operator=(const OrvHTMLParser&) = delete;

    /// Works on a text of the parser's own.
    void setHTMLString(std::u16string text);
    /// Works on the caller's text, which must outlive the parser's use of it; edits change it.
    void setMutableHTMLString(std::u16string& text) { _htmlString = &text; }
    [[nodiscard]] const std::u16string& htmlString() const { return *_htmlString; }

    // Finding. A found tag carries its offset and source in parserAdditional; edits do not move the
    // offset. An offset beyond the text finds nothing.

    /// The source of the tag that begins at `offset`; nullopt when none does.
    [[nodiscard]] std::optional<std::u16string> markupTagStringFromOffset(std::size_t offset) const;

    /// A tag of the source `text`, which begins with "<" and ends with ">". Never fails; a text of
    /// less than two units gives a tag without a name. An attribute name left without a value at
    /// the end of the tag becomes its suffix, as the "?" of an XML declaration does.
    [[nodiscard]] static OrvMarkupTag parseTagString(std::u16string_view text);

    /// The first tag whose "<" lies at or after `offset`.
    [[nodiscard]] std::optional<OrvMarkupTag> findNextMarkupTagFromOffset(std::size_t offset) const;

    /// The first such tag named `name`, ASCII letters without regard to case. A tag without a name
    /// matches nothing.
    [[nodiscard]] std::optional<OrvMarkupTag> findMarkupTagName(std::u16string_view name,
                                                                std::size_t startOffset) const;

    /// The HTML encoding declaration: the first "meta" tag with an attribute "http-equiv" of the
    /// value "Content-Type", all three in any letter case.
    [[nodiscard]] std::optional<OrvMarkupTag> findEncodingSpecifier() const;

    /// The XML declaration: the first tag named "?xml".
    [[nodiscard]] std::optional<OrvMarkupTag> findXMLProcInstTag() const;

    // Editing. The boolean tells whether the text was changed: not so when the range does not lie
    // in the text, or when the tag writes nothing.

    bool replaceFromOffset(std::size_t offset, std::size_t length, std::u16string_view withString);
    bool replaceFromOffset(std::size_t offset, std::size_t length,
                           const OrvMarkupTag& withMarkupTag);

    /// Replaces the whole of a tag that this parser found, if the text before its end is unchanged
    /// since; a tag that was not found by a parser replaces nothing.
    bool replaceMarkupTag(const OrvMarkupTag& foundTag, const OrvMarkupTag& withMarkupTag);

    /// Inserts before the unit at `atOffset`, or at the end. Beyond the text nothing is inserted.
    void insertString(std::u16string_view text, std::size_t atOffset);
    void insertMarkupTag(const OrvMarkupTag& tag, std::size_t atOffset);

    // Building. nullopt when `info` has no charset name: an encoding outside the named ones, or
    // UTF-16 or UTF-32 with neither a mark nor a byte order.

    /// The charset name that a declaration gives for `info`.
    [[nodiscard]] static std::optional<std::u16string>
    encodingAttributeValueForEncodingInfo(OrvEncodingInfo info);

    /// <meta http-equiv="Content-Type" content="text/html; charset=NAME">
    [[nodiscard]] static std::optional<OrvMarkupTag>
    newEncodingSpecifierTagWithEncodingInfo(OrvEncodingInfo info);

    /// <?xml version="1.0" encoding="NAME"?>
    [[nodiscard]] static std::optional<OrvMarkupTag>
    newXMLProcInstTagWithEncodingInfo(OrvEncodingInfo info);

  private:
    [[nodiscard]] OrvMarkupTag tagAt(const TagRange& range) const;

    std::u16string _ownString;
    std::u16string* _htmlString = &_ownString; ///< _ownString or the caller's
};

} // namespace zelmora
