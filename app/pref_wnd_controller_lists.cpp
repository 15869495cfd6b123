// The preferences window: the lists of file-name extensions.
#include "app/pref_wnd_controller.h"

#include "engine/settings.h"
#include "platform/text/path_string.h"

#include <algorithm>

namespace zelmora {

namespace {

/// The extension that the user means by `text`, however it is written ("txt", ".txt", "*.txt");
/// nullopt when no file name can have it or it is in `array` already, the element `except` aside.
std::optional<std::string> extensionFromText(std::string_view text, const ObservableArray& array,
                                             const ObservableDictionary* except) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t*."), text.size()));
    const std::string extension(text.substr(0, text.find_last_not_of(" \t") + 1));
    if (extension.empty() || extension.find_first_of("./") != std::string::npos ||
        !platform::isPropertyListText(extension))
        return std::nullopt;
    const bool isTaken = std::any_of(array.begin(), array.end(), [&](const auto& element) {
        return element.get() != except &&
               platform::equalsIgnoringASCIICase(element->stringForKey(kNameExtension), extension);
    });
    return isTaken ? std::nullopt : std::optional(extension);
}

} // namespace

ZelPrefWndController::SharedArray ZelPrefWndController::nameExtensionArray() {
    return arrayForModelKey(settings::nameExtensionArray);
}

void ZelPrefWndController::setNameExtensionArray(SharedArray array) {
    setArray(std::move(array), settings::nameExtensionArray);
}

ZelPrefWndController::SharedArray ZelPrefWndController::htmlExtensionArray() {
    return arrayForModelKey(settings::htmlExtensionArray);
}

void ZelPrefWndController::setHtmlExtensionArray(SharedArray array) {
    setArray(std::move(array), settings::htmlExtensionArray);
}

ZelPrefWndController::SharedArray ZelPrefWndController::xmlExtensionArray() {
    return arrayForModelKey(settings::xmlExtensionArray);
}

void ZelPrefWndController::setXmlExtensionArray(SharedArray array) {
    setArray(std::move(array), settings::xmlExtensionArray);
}

ZelPrefWndController::SharedArray
ZelPrefWndController::arrayForModelKey(std::string_view modelKey) {
    if (const auto found = _arrayContainer.find(modelKey); found != _arrayContainer.end())
        return found->second;
    auto array = std::make_shared<ObservableArray>();
    for (const auto& element :
         _services.defaults.arrayForKey(modelKey).value_or(platform::PropertyListArray())) {
        if (const auto* entries = element.as<platform::PropertyListDictionary>())
            array->push_back(std::make_shared<ObservableDictionary>(*entries));
    }
    KVOUtility::registerValueObserver(*this, *array, kNameExtension, array.get());
    _arrayContainer.emplace(modelKey, array);
    return array;
}

void ZelPrefWndController::setArray(SharedArray array, std::string_view modelKey) {
    if (const auto found = _arrayContainer.find(modelKey); found != _arrayContainer.end()) {
        KVOUtility::removeValueObserver(*this, *found->second, kNameExtension);
        _arrayContainer.erase(found);
    }
    if (!array) {
        _services.defaults.removeObjectForKey(modelKey);
        return;
    }
    KVOUtility::registerValueObserver(*this, *array, kNameExtension, array.get());
    _arrayContainer.emplace(modelKey, std::move(array));
    writeArray(modelKey);
}

void ZelPrefWndController::writeArray(std::string_view modelKey) {
    platform::PropertyListArray elements;
    for (const auto& element : *arrayForModelKey(modelKey))
        elements.emplace_back(element->entries());
    _services.defaults.setObject(std::move(elements), modelKey);
}

void ZelPrefWndController::connectList(std::string_view modelKey) {
    const auto add = [this, modelKey](const std::string& text) { addExtension(modelKey, text); };
    const auto edit = [this, modelKey](size_t row, const std::string& text) {
        editExtension(modelKey, row, text);
    };
    const auto remove = [this, modelKey](size_t row) { removeExtension(modelKey, row); };
    _form->editableList(modelKey).setActions({add, edit, remove});
    showArray(modelKey);
}

void ZelPrefWndController::showArray(std::string_view modelKey) {
    std::vector<std::string> extensions;
    for (const auto& element : *arrayForModelKey(modelKey))
        extensions.push_back(element->stringForKey(kNameExtension));
    _form->editableList(modelKey).setItems(extensions);
}

void ZelPrefWndController::addExtension(std::string_view modelKey, const std::string& text) {
    auto array = std::make_shared<ObservableArray>(*arrayForModelKey(modelKey));
    if (const auto extension = extensionFromText(text, *array, nullptr)) {
        array->push_back(std::make_shared<ObservableDictionary>(
            platform::PropertyListDictionary{{std::string(kNameExtension), *extension}}));
        setArray(std::move(array), modelKey);
    }
    showArray(modelKey);
}

void ZelPrefWndController::editExtension(std::string_view modelKey, size_t row,
                                         const std::string& text) {
    const auto array = arrayForModelKey(modelKey);
    if (row < array->size()) {
        const auto element = array->at(row);
        if (const auto extension = extensionFromText(text, *array, element.get()))
            element->setObject(*extension, kNameExtension);
    }
    showArray(modelKey);
}

void ZelPrefWndController::removeExtension(std::string_view modelKey, size_t row) {
    auto array = std::make_shared<ObservableArray>(*arrayForModelKey(modelKey));
    if (row < array->size()) {
        array->erase(array->begin() + static_cast<ptrdiff_t>(row));
        setArray(std::move(array), modelKey);
    }
    showArray(modelKey);
}

} // namespace zelmora
