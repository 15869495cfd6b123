#include "foundation/css_reader.h"
#include "foundation/orv_css.h"
#include "foundation/orv_css_impl.h"
#include "foundation/orv_string.h"
#include "foundation/wide_text.h"

#include <algorithm>
#include <limits>
#include <new>

namespace zelmora {

namespace {

/// Collects what belongs to a rule. Creation and insertion have written their diagnostic line when
/// they fail; from there on it is the caller's business that memory ran out.
class ElementBuilder {
  public:
    ElementBuilder()
        : _selectors(required(OrvArrayImpl::create(0))),
          _properties(required(OrvDictionaryImpl::create())),
          _order(required(OrvArrayImpl::create(0))) {}

    void addSelectors(std::wstring_view selectors) {
        for (auto token = takeSelectorToken(selectors); !token.empty();
             token = takeSelectorToken(selectors))
            require(_selectors->add(required(makeString(token)).get()));
    }

    void addDeclaration(std::wstring_view name, std::wstring_view value) {
        const auto nameString = required(makeString(trimmed(name)));
        const auto valueString = required(makeString(trimmed(value)));
        require(_properties->setValue(valueString.get(), nameString->characters().c_str()));
        require(_order->add(nameString.get()));
    }

    [[nodiscard]] OrvPtr<OrvCCSSElement> element() const {
        auto element = required(makeObject<OrvCCSSElement>());
        element->SetSelectors(_selectors.get());
        element->SetProperties(_properties.get());
        element->SetPropertyOrder(_order.get());
        return element;
    }

    [[nodiscard]] bool isMedia() const {
        return _selectors->count() > 0 &&
               compareCaseInsensitive(textOf(_selectors->at(0)), L"@media") == 0;
    }

  private:
    static void require(bool success) {
        if (!success)
            throw std::bad_alloc();
    }

    template<typename T>
    static OrvPtr<T> required(OrvPtr<T> object) {
        require(static_cast<bool>(object));
        return object;
    }

    OrvPtr<OrvArrayImpl> _selectors;
    OrvPtr<OrvDictionaryImpl> _properties;
    OrvPtr<OrvArrayImpl> _order;
};

void readDeclarations(CSSReader& reader, ElementBuilder& builder) {
    using End = CSSReader::DeclarationEnd;
    std::wstring name;
    std::wstring value;
    for (End end = End::declaration; end == End::declaration;) {
        end = reader.readDeclaration(name, value);
        if (end != End::none)
            builder.addDeclaration(name, value);
    }
}

/// The two tokens of the "@charset" rule of an encoding; null when that has no MIME charset name.
OrvPtr<OrvArrayImpl> charsetSelectors(int32_t encoding, int32_t byteOrder) noexcept {
    const OrvIBase* name = OrvMIMECharSetName(encoding, byteOrder);
    if (OrvStringGetLength(name) == 0)
        return {};
    const auto keyword = makeString(L"@charset");
    const OrvPtr<> quoted(
        OrvStringCreateWithFormat(OrvTemporaryString(L"\"%ls\";"), OrvStringGetCharacters(name)));
    auto selectors = OrvArrayImpl::create(2);
    const bool isWhole = keyword && OrvStringGetLength(quoted.get()) > 0 && selectors &&
                         selectors->add(keyword.get()) && selectors->add(quoted.get());
    return isWhole ? selectors : OrvPtr<OrvArrayImpl>();
}

void report(int32_t* out, int32_t value) {
    if (out)
        *out = value;
}

} // namespace

/// A rule, or none, and its place in the text.
struct OrvCCSSParser::Rule {
    OrvPtr<OrvCCSSElement> element;
    int32_t start = 0;
    int32_t length = 0;
    int32_t error = 0;
};

void OrvCCSSParser::SetText(OrvStringImpl* text) noexcept {
    _text = OrvPtr<OrvStringImpl>::retaining(text);
}

OrvCCSSParser::Rule OrvCCSSParser::readRule(int32_t offset) const {
    const std::wstring_view text =
        textOf(_text.get()).substr(0, std::numeric_limits<int32_t>::max());
    CSSReader reader(text, static_cast<size_t>(std::max(offset, 0)));
    if (!reader.skipToRule())
        return {};
    const size_t start = reader.position();
    std::wstring selectors;
    const bool hasBlock = reader.readSelectors(selectors) == CSSReader::SelectorEnd::block;
    // Reading the selectors stops only where a block opens, so this guards against changes there.
    if (hasBlock && reader.openBlock() == CSSReader::Opening::otherCharacter)
        return {.element = {}, .error = orvCSSErrorNoBlock};
    ElementBuilder builder;
    builder.addSelectors(selectors);
    // The rules inside "@media" are elements of their own.
    if (hasBlock && !builder.isMedia())
        readDeclarations(reader, builder);
    return {.element = builder.element(),
            .start = static_cast<int32_t>(start),
            .length = static_cast<int32_t>(reader.position() - start)};
}

OrvCCSSElement* OrvCCSSParser::ParseElement(int32_t offset, int32_t* start, int32_t* length,
                                            int32_t* error) const noexcept {
    Rule rule;
    (void)allocating([&] { rule = readRule(offset); });
    auto* element = rule.element.release();
    // An element that the pool could not take is gone, and its place must not be told.
    const bool isHandedOver = OrvTemporaryObjectsPoolAddObject(element) != nullptr;
    report(start, isHandedOver ? rule.start : 0);
    report(length, isHandedOver ? rule.length : 0);
    report(error, rule.error);
    return isHandedOver ? element : nullptr;
}

OrvCCSSElement* OrvCCSSParser::FindElement(std::wstring_view keyword, int32_t offset,
                                           int32_t* start, int32_t* length) const noexcept {
    OrvPtr<OrvCCSSElement> found;
    int32_t ruleStart = 0;
    int32_t ruleLength = 0;
    for (int32_t position = offset; !found; position = ruleStart + ruleLength) {
        // Temporaries of one pass only.
        const OrvPtr<> pool(OrvTemporaryObjectsPoolCreate());
        auto* element = pool ? ParseElement(position, &ruleStart, &ruleLength, nullptr) : nullptr;
        if (!element)
            return nullptr;
        const bool hasSelector = element->Selectors()->count() > 0;
        if (hasSelector && compareCaseInsensitive(element->firstSelector(), keyword) == 0)
            found = OrvPtr<OrvCCSSElement>::retaining(element);
    }
    // The pass's pool is closed: the element goes to the pool of the caller.
    auto* element = found.release();
    if (!OrvTemporaryObjectsPoolAddObject(element))
        return nullptr;
    report(start, ruleStart);
    report(length, ruleLength);
    return element;
}

void OrvCCSSParser::ReplaceElement(const OrvCCSSElement& element, int32_t start,
                                   int32_t length) noexcept {
    const OrvIBase* text = element.Text();
    if (text && start >= 0 && length >= 0)
        OrvStringReplaceCharacters(_text.get(), text, static_cast<uint64_t>(start),
                                   static_cast<uint64_t>(length));
}

void OrvCCSSParser::UpdateCharsetElement(OrvCCSSElement& element, int32_t encoding,
                                         int32_t byteOrder) const noexcept {
    if (const auto selectors = charsetSelectors(encoding, byteOrder))
        element.SetSelectors(selectors.get());
}

OrvPtr<OrvCCSSElement> OrvCCSSParser::CreateCharsetElement(int32_t encoding,
                                                           int32_t byteOrder) const noexcept {
    const auto selectors = charsetSelectors(encoding, byteOrder);
    auto element = selectors ? makeObject<OrvCCSSElement>() : OrvPtr<OrvCCSSElement>();
    if (element)
        element->SetSelectors(selectors.get());
    return element;
}

OrvIBase* OrvCSSParserCreate(OrvIBase* text) noexcept {
    return makeObject<OrvCCSSParser>(objectCast<OrvStringImpl>(text)).release();
}

OrvIBase* OrvCSSParserParseElement(OrvIBase* parser, int32_t offset, int32_t* start,
                                   int32_t* length, int32_t* error) noexcept {
    report(start, 0);
    report(length, 0);
    report(error, 0);
    const auto* self = objectCast<OrvCCSSParser>(parser);
    return self ? self->ParseElement(offset, start, length, error) : nullptr;
}

OrvIBase* OrvCSSParserFindElement(OrvIBase* parser, const OrvIBase* keyword, int32_t offset,
                                  int32_t* start, int32_t* length) noexcept {
    const auto* self = objectCast<OrvCCSSParser>(parser);
    return self ? self->FindElement(textOf(keyword), offset, start, length) : nullptr;
}

void OrvCSSParserReplaceElement(OrvIBase* parser, const OrvIBase* element, int32_t start,
                                int32_t length) noexcept {
    auto* self = objectCast<OrvCCSSParser>(parser);
    const auto* replacement = objectCast<OrvCCSSElement>(element);
    if (self && replacement)
        self->ReplaceElement(*replacement, start, length);
}

void OrvCSSParserUpdateCharsetElement(OrvIBase* parser, OrvIBase* element, int32_t encoding,
                                      int32_t byteOrder) noexcept {
    const auto* self = objectCast<OrvCCSSParser>(parser);
    auto* updated = objectCast<OrvCCSSElement>(element);
    if (self && updated)
        self->UpdateCharsetElement(*updated, encoding, byteOrder);
}

OrvIBase* OrvCSSParserCreateCharsetElement(OrvIBase* parser, int32_t encoding,
                                           int32_t byteOrder) noexcept {
    const auto* self = objectCast<OrvCCSSParser>(parser);
    return self ? self->CreateCharsetElement(encoding, byteOrder).release() : nullptr;
}

} // namespace zelmora
