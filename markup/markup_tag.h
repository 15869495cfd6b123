// The record of one start tag, empty-element tag or XML declaration.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <variant>
#include <vector>

namespace zelmora {

/// Attribute names as written, to values without their quotes.
using OrvMarkupAttributes = std::unordered_map<std::u16string, std::u16string>;

/// Attribute names in the order in which they are written.
using OrvMarkupAttributesOrder = std::vector<std::u16string>;

/// What a parser notes on a tag that it found: an offset or a length, or the tag's source.
using OrvMarkupNote = std::variant<std::size_t, std::u16string>;
using OrvMarkupNotes = std::map<std::u16string, OrvMarkupNote, std::less<>>;

/// A tag as a parser finds it or as a caller builds it. A plain value holder; every field of a new
/// tag is absent (null, nullopt) and its close format is off. Used by one thread at a time.
///
/// Maps and lists are shared, not copied: with the caller that handed them over and with every copy
/// of the tag. Who goes on changing one changes the tag.
class OrvMarkupTag {
  public:
    /// The name as written, without the "<"; "?xml" for an XML declaration.
    void setName(std::optional<std::u16string> name) { _name = std::move(name); }
    [[nodiscard]] const std::optional<std::u16string>& name() const { return _name; }

    void setAttributes(std::shared_ptr<OrvMarkupAttributes> attributes) {
        _attributes = std::move(attributes);
    }
    [[nodiscard]] const std::shared_ptr<OrvMarkupAttributes>& attributes() const {
        return _attributes;
    }

    /// May hold a name more often than once: a tag was written so.
    void setAttributesOrder(std::shared_ptr<OrvMarkupAttributesOrder> order) {
        _attributesOrder = std::move(order);
    }
    [[nodiscard]] const std::shared_ptr<OrvMarkupAttributesOrder>& attributesOrder() const {
        return _attributesOrder;
    }

    /// Whether the tag ends with " /", as an empty element does.
    void setCloseFormat(bool isClose) { _isCloseFormat = isClose; }
    [[nodiscard]] bool isCloseFormat() const { return _isCloseFormat; }

    /// Where the tag stood when it was found, under the finding parser's keys.
    void setParserAdditional(std::shared_ptr<OrvMarkupNotes> notes) {
        _parserAdditional = std::move(notes);
    }
    [[nodiscard]] const std::shared_ptr<OrvMarkupNotes>& parserAdditional() const {
        return _parserAdditional;
    }

    /// Text just before the ">", after everything else; "?" for an XML declaration.
    void setSuffix(std::optional<std::u16string> suffix) { _suffix = std::move(suffix); }
    [[nodiscard]] const std::optional<std::u16string>& suffix() const { return _suffix; }

    /// The tag as text; nullopt without a name or with an empty one. Values are not escaped.
    /// Attributes are written only when map and order hold the same number of names; a name of the
    /// order that the map lacks is left out.
    [[nodiscard]] std::optional<std::u16string> tagString() const;

  private:
    std::optional<std::u16string> _name;
    std::shared_ptr<OrvMarkupAttributes> _attributes;
    std::shared_ptr<OrvMarkupAttributesOrder> _attributesOrder;
    bool _isCloseFormat = false;
    std::shared_ptr<OrvMarkupNotes> _parserAdditional;
    std::optional<std::u16string> _suffix;
};

} // namespace zelmora
