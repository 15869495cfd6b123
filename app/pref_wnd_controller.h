// The preferences window.
#pragma once

#include "app/kvo_utility.h"
#include "platform/defaults/localized_strings.h"
#include "platform/defaults/user_defaults.h"
#include "platform/events/notification_center.h"
#include "platform/files/file_manager.h"
#include "platform/ui/controls.h"
#include "platform/ui/panels.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelmora {

/// What the preferences window works with. Borrowed: each must outlive the controller.
struct PreferencesServices {
    platform::UserDefaults& defaults;
    platform::FileManager& files;
    const platform::LocalizedStrings& strings;
    platform::UserInterface& userInterface;
    platform::Panels& panels;
    /// Loads the interface description of this name, its controls bound to `defaults`.
    std::function<std::unique_ptr<platform::LoadedForm>(std::string_view name)> loadForm;
};

/// What an element of a list of extensions holds its extension under.
inline constexpr std::string_view kNameExtension = "nameExtension";

/// Edits the settings. Most controls are bound to their setting by the interface description;
/// this class does what bindings cannot: it enables controls by other settings, keeps line break
/// and encoding in agreement, fills fields from panels, edits the lists of extensions, and saves
/// every change at once. Main thread only.
///
/// One file for each subject: the window and the rules here, panels and lists beside it.
class ZelPrefWndController : public ValueObserver {
  public:
    /// The one controller, made with `services` on first use; it goes when the application
    /// terminates.
    static ZelPrefWndController& sharedPrefWndController(const PreferencesServices& services);

    explicit ZelPrefWndController(const PreferencesServices& services);
    ~ZelPrefWndController() override;
    ZelPrefWndController(const ZelPrefWndController&) = delete;
    ZelPrefWndController& operator=(const ZelPrefWndController&) = delete;

    void showWindow() { _form->window().show(); }

    void observeValueForKeyPath(std::string_view keyPath, const void* context) override;

    // The rules: each enables what the given value of its setting leaves a meaning.

    /// Also turns the LS line break into LF where the encoding has none.
    void validateWithEncodingCode(int64_t code);
    void validateWithActionForCreator(int64_t action);
    void validateWithActionForFileType(int64_t action);
    void validateWithBackupSetting(bool isOn);
    void validateWithLogFileSetting(bool isOn);
    /// Whether converted files are given an extension: the property "addingExtension", which
    /// enables the controls about that.
    [[nodiscard]] bool isAddingExtension() const;

    // The panels (pref_wnd_controller_panels.cpp), sheets on the window. The "DidEnd" operations
    // get the chosen path, raw bytes; nullopt, a cancelled panel, changes nothing.

    void selectCreatorCode();
    void selectCreatorCodePanelDidEnd(const std::optional<std::string>& path);
    void selectTypeCode();
    void selectTypeCodePanelDidEnd(const std::optional<std::string>& path);
    void selectBackupDataDirectory();
    void selectBackupDataDirectoryPanelDidEnd(const std::optional<std::string>& path);
    void putLogFile();
    void putLogFilePanelDidEnd(const std::optional<std::string>& path);

    // The lists of extensions (pref_wnd_controller_lists.cpp). A setter writes the list to the
    // settings, null removes it there; so does a change of an element's "nameExtension". A list is
    // read from the settings the first time it is asked for only.

    using SharedArray = std::shared_ptr<ObservableArray>;
    SharedArray nameExtensionArray();
    void setNameExtensionArray(SharedArray array);
    SharedArray htmlExtensionArray();
    void setHtmlExtensionArray(SharedArray array);
    SharedArray xmlExtensionArray();
    void setXmlExtensionArray(SharedArray array);

  private:
    void windowDidLoad();
    void registerAsValueObserver();
    void removeFromValueObserver();
    void registerNotificationObserver();
    static void applicationWillTerminate();
    /// Makes "addingExtension" read again; with an extension to add, there must be one.
    void updateAddingExtension();
    /// Writes the changes to the saved settings; a failure is told once, until it succeeds again.
    void save();

    std::optional<std::string> runOpenPanel(const platform::OpenPanel& panel);
    /// Sets `codeKey` from the item at `path`: of a bundle, the value of `bundleKey`; of a file,
    /// its HFS code.
    void storeCode(const std::string& path, std::string_view codeKey, std::string_view bundleKey,
                   uint32_t platform::HFSCodes::*code);

    SharedArray arrayForModelKey(std::string_view modelKey);
    void setArray(SharedArray array, std::string_view modelKey);
    void writeArray(std::string_view modelKey);
    void connectList(std::string_view modelKey);
    void showArray(std::string_view modelKey);
    void addExtension(std::string_view modelKey, const std::string& text);
    void editExtension(std::string_view modelKey, size_t row, const std::string& text);
    void removeExtension(std::string_view modelKey, size_t row);

    /// Owned until the application terminates; where it ends otherwise, left alone, for its
    /// services are gone by the time static objects go.
    static ZelPrefWndController* _shared;

    PreferencesServices _services;
    std::unique_ptr<platform::LoadedForm> _form;
    std::vector<platform::UserDefaults::ObserverID> _observers;
    std::optional<platform::NotificationCenter::ObserverID> _terminationObserver;
    /// From a model key to the list that the window edits for it.
    std::map<std::string, SharedArray, std::less<>> _arrayContainer;
    bool _isSaveFailureTold = false;

    platform::Control& _checkLittleEndian;
    platform::Control& _checkPutBOM;
    platform::PopUpMenu& _popupLineBreak;
    platform::Control& _editCreatorCode;
    platform::Button& _buttonCreatorCode;
    platform::Control& _editTypeCode;
    platform::Button& _buttonTypeCode;
    platform::Control& _editBackup;
    platform::Button& _buttonBackup;
    platform::Control& _matrixBackup;
    platform::Control& _editLog;
    platform::Button& _buttonLog;
};

} // namespace zelmora
