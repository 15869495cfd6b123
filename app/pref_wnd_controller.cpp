#include "app/pref_wnd_controller.h"

#include "engine/settings.h"
#include "textutil/encoding_info.h"

#include <utility>

namespace zelmora {

namespace {

constexpr auto kLineBreakLF = static_cast<int64_t>(OrvLineBreak::lf);
constexpr auto kLineBreakLS = static_cast<int64_t>(OrvLineBreak::ls);
/// Of the three action selectors: take the value in the field beside it.
constexpr int64_t kActionSet = 1;

} // namespace

ZelPrefWndController* ZelPrefWndController::_shared = nullptr;

ZelPrefWndController&
ZelPrefWndController::sharedPrefWndController(const PreferencesServices& services) {
    if (!_shared) {
        _shared = new ZelPrefWndController(services);
        _shared->registerNotificationObserver();
    }
    return *_shared;
}

ZelPrefWndController::ZelPrefWndController(const PreferencesServices& services)
    : _services(services), _form(services.loadForm("Preferences")),
      _checkLittleEndian(_form->control("checkLittleEndian")),
      _checkPutBOM(_form->control("checkPutBOM")),
      _popupLineBreak(_form->popUpMenu("popupLineBreak")),
      _editCreatorCode(_form->control("editCreatorCode")),
      _buttonCreatorCode(_form->button("buttonCreatorCode")),
      _editTypeCode(_form->control("editTypeCode")),
      _buttonTypeCode(_form->button("buttonTypeCode")), _editBackup(_form->control("editBackup")),
      _buttonBackup(_form->button("buttonBackup")), _matrixBackup(_form->control("matrixBackup")),
      _editLog(_form->control("editLog")), _buttonLog(_form->button("buttonLog")) {
    _form->window().center();
    registerAsValueObserver();
    windowDidLoad();
}

ZelPrefWndController::~ZelPrefWndController() {
    // What is still being typed is written when the form goes. The rules have no form then.
    removeFromValueObserver();
    _form.reset();
    save();
    if (_terminationObserver)
        platform::NotificationCenter::defaultCenter().removeObserver(*_terminationObserver);
    for (const auto& [modelKey, array] : _arrayContainer)
        KVOUtility::removeValueObserver(*this, *array, kNameExtension);
}

void ZelPrefWndController::windowDidLoad() {
    const auto& defaults = _services.defaults;
    validateWithEncodingCode(defaults.integerForKey(settings::encodingCode));
    validateWithActionForCreator(defaults.integerForKey(settings::actionForCreator));
    validateWithActionForFileType(defaults.integerForKey(settings::actionForFileType));
    validateWithBackupSetting(defaults.boolForKey(settings::autoBackup));
    validateWithLogFileSetting(defaults.boolForKey(settings::createLogFile));
    updateAddingExtension();

    _buttonCreatorCode.setAction([this] { selectCreatorCode(); });
    _buttonTypeCode.setAction([this] { selectTypeCode(); });
    _buttonBackup.setAction([this] { selectBackupDataDirectory(); });
    _buttonLog.setAction([this] { putLogFile(); });
    for (const auto modelKey :
         {settings::nameExtensionArray, settings::htmlExtensionArray, settings::xmlExtensionArray})
        connectList(modelKey);
}

void ZelPrefWndController::registerAsValueObserver() {
    auto& defaults = _services.defaults;
    for (const auto key :
         {settings::encodingCode, settings::actionForCreator, settings::actionForFileType,
          settings::autoBackup, settings::createLogFile, settings::convertExtension})
        _observers.push_back(defaults.addObserver(key, [this](std::string_view changedKey) {
            observeValueForKeyPath(changedKey, nullptr);
        }));
    // Observers are called in the order of their addition: what the rules above have changed is
    // saved together with what made them change it.
    for (const auto& key : settings::allKeys())
        _observers.push_back(defaults.addObserver(key.name, [this](std::string_view) { save(); }));
}

void ZelPrefWndController::removeFromValueObserver() {
    for (const auto observer : _observers)
        _services.defaults.removeObserver(observer);
    _observers.clear();
}

void ZelPrefWndController::registerNotificationObserver() {
    _terminationObserver = platform::NotificationCenter::defaultCenter().addObserver(
        platform::applicationWillTerminateNotification, applicationWillTerminate);
}

void ZelPrefWndController::applicationWillTerminate() {
    delete std::exchange(_shared, nullptr);
}

void ZelPrefWndController::observeValueForKeyPath(std::string_view keyPath, const void* context) {
    const auto& defaults = _services.defaults;
    if (keyPath == settings::encodingCode) {
        validateWithEncodingCode(defaults.integerForKey(keyPath));
    } else if (keyPath == settings::actionForCreator) {
        validateWithActionForCreator(defaults.integerForKey(keyPath));
    } else if (keyPath == settings::actionForFileType) {
        validateWithActionForFileType(defaults.integerForKey(keyPath));
    } else if (keyPath == settings::autoBackup) {
        validateWithBackupSetting(defaults.boolForKey(keyPath));
    } else if (keyPath == settings::createLogFile) {
        validateWithLogFileSetting(defaults.boolForKey(keyPath));
    } else if (keyPath == kNameExtension) {
        for (const auto& [modelKey, array] : _arrayContainer) {
            if (array.get() == context)
                return writeArray(modelKey);
        }
    } else if (keyPath == settings::convertExtension) {
        updateAddingExtension();
    }
}

void ZelPrefWndController::validateWithEncodingCode(int64_t code) {
    const bool hasByteOrder = code == static_cast<int64_t>(OrvEncoding::utf16) ||
                              code == static_cast<int64_t>(OrvEncoding::utf32);
    const bool isUnicode = hasByteOrder || code == static_cast<int64_t>(OrvEncoding::utf8);
    _checkLittleEndian.setEnabled(hasByteOrder);
    _checkPutBOM.setEnabled(isUnicode);
    _popupLineBreak.setItemEnabled(kLineBreakLS, isUnicode);
    auto& defaults = _services.defaults;
    if (!isUnicode && defaults.integerForKey(settings::lineBreakCode) == kLineBreakLS)
        defaults.setInteger(kLineBreakLF, settings::lineBreakCode);
}

void ZelPrefWndController::validateWithActionForCreator(int64_t action) {
    _editCreatorCode.setEnabled(action == kActionSet);
    _buttonCreatorCode.setEnabled(action == kActionSet);
}

void ZelPrefWndController::validateWithActionForFileType(int64_t action) {
    _editTypeCode.setEnabled(action == kActionSet);
    _buttonTypeCode.setEnabled(action == kActionSet);
}

void ZelPrefWndController::validateWithBackupSetting(bool isOn) {
    _buttonBackup.setEnabled(isOn);
    _editBackup.setEnabled(isOn);
    _matrixBackup.setEnabled(isOn);
}

void ZelPrefWndController::validateWithLogFileSetting(bool isOn) {
    _buttonLog.setEnabled(isOn);
    _editLog.setEnabled(isOn);
}

bool ZelPrefWndController::isAddingExtension() const {
    return _services.defaults.integerForKey(settings::convertExtension) == kActionSet;
}

void ZelPrefWndController::updateAddingExtension() {
    auto& defaults = _services.defaults;
    // The field refuses an empty extension, but it may have been saved by other means.
    if (isAddingExtension() &&
        defaults.stringForKey(settings::extensionOfDstFiles).value_or("").empty())
        defaults.removeObjectForKey(settings::extensionOfDstFiles);
    _form->setProperty("addingExtension", isAddingExtension());
}

void ZelPrefWndController::save() {
    const auto status = _services.defaults.save(_services.files);
    if (!status && !std::exchange(_isSaveFailureTold, true)) {
        _services.userInterface.runModal(
            {_services.strings.stringForKey("FailedSaveSettings"), status.error().message});
    } else if (status) {
        _isSaveFailureTold = false;
    }
}

} // namespace zelmora
