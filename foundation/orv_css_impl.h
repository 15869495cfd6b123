// The element and the parser of style sheets.
#pragma once

#include "foundation/orv_array_impl.h"
#include "foundation/orv_dictionary_impl.h"
#include "foundation/orv_string_impl.h"

namespace zelmora {

/// One rule. The fields start null; those of a parsed element are all set.
class OrvCCSSElement final : public OrvCBase {
  public:
    static constexpr uint32_t typeID = 0xFFFF;

    [[nodiscard]] uint32_t GetTypeID() const noexcept override { return typeID; }

    /// Strings: the selectors, or an at-keyword, with its "@", and its parameters. The ";" or "}"
    /// that ends a rule without a block is part of the last one.
    [[nodiscard]] OrvArrayImpl* Selectors() const noexcept { return _selectors.get(); }
    void SetSelectors(OrvArrayImpl* selectors) noexcept;
    /// Declared values by name; the last one when a name is declared twice.
    [[nodiscard]] OrvDictionaryImpl* Properties() const noexcept { return _properties.get(); }
    void SetProperties(OrvDictionaryImpl* properties) noexcept;
    /// Declared names in the order of the text, with repetitions.
    [[nodiscard]] OrvArrayImpl* PropertyOrder() const noexcept { return _propertyOrder.get(); }
    void SetPropertyOrder(OrvArrayImpl* propertyOrder) noexcept;

    /// The first selector; empty when there is none.
    [[nodiscard]] std::wstring_view firstSelector() const noexcept;
    /// The rule as text, temporary; null when there is no selector or no memory.
    [[nodiscard]] OrvIBase* Text() const noexcept;

  private:
    // Destroyed from the last to the first: the selectors go first.
    OrvPtr<OrvArrayImpl> _propertyOrder;
    OrvPtr<OrvDictionaryImpl> _properties;
    OrvPtr<OrvArrayImpl> _selectors;
};

/// Reads rules from a text, which must not change while it reads.
class OrvCCSSParser final : public OrvCBase {
  public:
    static constexpr uint32_t typeID = 0xFFFF;

    explicit OrvCCSSParser(OrvStringImpl* text) noexcept
        : _text(OrvPtr<OrvStringImpl>::retaining(text)) {}

    [[nodiscard]] uint32_t GetTypeID() const noexcept override { return typeID; }
    void SetText(OrvStringImpl* text) noexcept;

    // As the functions of the same names in orv_css.h.

    OrvCCSSElement* ParseElement(int32_t offset, int32_t* start, int32_t* length,
                                 int32_t* error) const noexcept;
    OrvCCSSElement* FindElement(std::wstring_view keyword, int32_t offset, int32_t* start,
                                int32_t* length) const noexcept;
    void ReplaceElement(const OrvCCSSElement& element, int32_t start, int32_t length) noexcept;
    void UpdateCharsetElement(OrvCCSSElement& element, int32_t encoding,
                              int32_t byteOrder) const noexcept;
    [[nodiscard]] OrvPtr<OrvCCSSElement> CreateCharsetElement(int32_t encoding,
                                                              int32_t byteOrder) const noexcept;

  private:
    struct Rule;
    [[nodiscard]] Rule readRule(int32_t offset) const;

    OrvPtr<OrvStringImpl> _text;
};

} // namespace zelmora
