#include "platform/desktop/qt_interface.h"

#include "platform/text/utf8.h"

#include <QBuffer>
#include <QUiLoader>
#include <cerrno>

namespace zelmora::platform {

Result<std::unique_ptr<QtInterface>> QtInterface::load(FileManager& files, const std::string& path,
                                                       UserDefaults& defaults) {
    const auto contents = files.contentsAtPath(path);
    if (!contents)
        return contents.error();
    auto description = QByteArray::fromRawData(reinterpret_cast<const char*>(contents->data()),
                                               static_cast<qsizetype>(contents->size()));
    QBuffer buffer(&description);
    QUiLoader loader;
    std::unique_ptr<QWidget> widget(loader.load(&buffer));
    if (!widget)
        return Error{EINVAL, displayPath(path) + ": " + loader.errorString().toStdString()};
    return std::unique_ptr<QtInterface>(new QtInterface(std::move(widget), defaults));
}

QtInterface::QtInterface(std::unique_ptr<QWidget> widget, UserDefaults& defaults)
    : _widget(std::move(widget)), _window(*_widget), _bindings(*_widget, defaults) {}

template<typename Adapter>
Adapter& QtInterface::named(Named<Adapter>& known, std::string_view name) {
    if (const auto found = known.find(name); found != known.end())
        return found->second;
    auto& widget = outlet<typename Adapter::Widget>(*_widget, name);
    return known.try_emplace(std::string(name), widget).first->second;
}

StaticText& QtInterface::staticText(std::string_view name) {
    return named(_staticTexts, name);
}

ProgressIndicator& QtInterface::progressIndicator(std::string_view name) {
    return named(_progressIndicators, name);
}

Button& QtInterface::button(std::string_view name) {
    return named(_buttons, name);
}

Control& QtInterface::control(std::string_view name) {
    return named(_controls, name);
}

PopUpMenu& QtInterface::popUpMenu(std::string_view name) {
    return named(_popUpMenus, name);
}

EditableList& QtInterface::editableList(std::string_view name) {
    return named(_editableLists, name);
}

void QtInterface::setProperty(std::string_view property, bool value) {
    for (auto* widget : _widget->findChildren<QWidget*>()) {
        if (widget->property("enabledBy").toString() == qtString(property))
            widget->setEnabled(value);
    }
}

} // namespace zelmora::platform
