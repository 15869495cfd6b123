#include "foundation/orv_css.h"
#include "foundation/orv_css_impl.h"

namespace zelmora {

namespace {

void appendSelectors(std::wstring& text, const OrvArrayImpl& selectors) {
    const std::wstring_view first = textOf(selectors.at(0));
    text.append(first);
    for (size_t i = 1; i < selectors.count(); ++i) {
        const bool isFirstParameter = i == 1 && first.starts_with(L'@');
        text.append(isFirstParameter ? L" " : L", ");
        text.append(textOf(selectors.at(i)));
    }
}

void appendDeclarations(std::wstring& text, const OrvArrayImpl& order,
                        const OrvDictionaryImpl& properties) {
    text.append(L" {\n");
    for (size_t i = 0; i < order.count(); ++i) {
        const std::wstring_view name = textOf(order.at(i));
        const OrvIBase* value = properties.value(name.data());
        if (value)
            text.append(L"\t").append(name).append(L": ").append(textOf(value)).append(L";\n");
    }
    text.append(L"}");
}

} // namespace

void OrvCCSSElement::SetSelectors(OrvArrayImpl* selectors) noexcept {
    _selectors = OrvPtr<OrvArrayImpl>::retaining(selectors);
}

void OrvCCSSElement::SetProperties(OrvDictionaryImpl* properties) noexcept {
    _properties = OrvPtr<OrvDictionaryImpl>::retaining(properties);
}

void OrvCCSSElement::SetPropertyOrder(OrvArrayImpl* propertyOrder) noexcept {
    _propertyOrder = OrvPtr<OrvArrayImpl>::retaining(propertyOrder);
}

std::wstring_view OrvCCSSElement::firstSelector() const noexcept {
    return textOf(_selectors ? _selectors->at(0) : nullptr);
}

OrvIBase* OrvCCSSElement::Text() const noexcept {
    if (!_selectors || _selectors->count() == 0)
        return nullptr;
    std::wstring text;
    const auto render = [&] {
        appendSelectors(text, *_selectors.get());
        if (_properties && _propertyOrder && _propertyOrder->count() > 0)
            appendDeclarations(text, *_propertyOrder.get(), *_properties.get());
    };
    if (!allocating(render))
        return nullptr;
    return OrvTemporaryObjectsPoolAddObject(makeString(text).release());
}

OrvIBase* OrvCSSElementCreate() noexcept {
    return makeObject<OrvCCSSElement>().release();
}

OrvIBase* OrvCSSElementGetText(const OrvIBase* element) noexcept {
    const auto* self = objectCast<OrvCCSSElement>(element);
    return self ? self->Text() : nullptr;
}

} // namespace zelmora
