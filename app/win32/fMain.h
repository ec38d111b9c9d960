// The main form: hidden, with the notification-area icon and its menu. It
// owns the adapters of the ports, the hidden handler window fHandler that the
// plug-in talks to, and the display form, and lends them to cMainLogic, which
// runs the start and the end of the program.
#pragma once

#include <windows.h>

#include <shellapi.h>

#include <memory>
#include <string>

#include "cGdiSurface.h"
#include "cWinIniFile.h"
#include "cWinPluginChannel.h"
#include "cWinShell.h"
#include "cWinStringsLibrary.h"
#include "cWinTimer.h"
#include "cWindow.h"
#include "config/cSettings.h"
#include "core/cMainLogic.h"
#include "fEdit.h"
#include "fSettings.h"
#include "fTray.h"
#include "platform/Clock.h"

namespace toval {

// The entries of the notification-area menu. Tools and tests may send them to
// the main window (class TovalMain) as WM_COMMAND.
enum MenuId : UINT {
    kMnuWindowMode = 100,
    kMnuTrayMode,
    kMnuEdit,
    kMnuSettings,
    kMnuClearCache,
    kMnuAbout,
    kMnuExit,
};

class fMain {
  public:
    fMain();
    ~fMain();
    fMain(const fMain&) = delete;
    fMain& operator=(const fMain&) = delete;

    // Program start with the command line; false when the program ends at once.
    bool Form_Load(const std::u16string& commandLine);
    // The keyboard of the settings dialog and the editor as in any dialog
    // (Tab, Alt with a caption's letter, Enter, Escape); true when msg was
    // handled so.
    bool DialogMessage(MSG& msg);

  private:
    bool OnMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result);
    void ShowMenu();
    void Command(UINT id);
    void AddTrayIcon();
    void RemoveTrayIcon();
    void OpenEditor();
    void ShowAbout();
    void ShowSettings();
    // The settings were saved: the display and the core take them up.
    void SettingsApplied();
    // A caption of fMain's menu from the language, or the built-in English one.
    std::u16string Caption(const char16_t* control, const char16_t* english) const;

    cGlobals globals_;
    cWinShell shell_;
    cWindow main_;
    cWindow handler_;  // fHandler
    std::unique_ptr<cWinPluginChannel> channel_;
    cWinIniFile ini_;
    cSystemClock clock_;
    cWinTimer poll_;
    cWinTimer destroy_;
    cGdiSurface surface_;
    std::unique_ptr<cWinStringsLibrary> strings_;
    std::unique_ptr<fTray> tray_;
    std::unique_ptr<fSettings> settings_;
    std::unique_ptr<fEdit> edit_;
    NOTIFYICONDATAW icon_{};
    bool iconShown_ = false;
    UINT taskbarCreated_ = 0;
    // Last, so that it goes first: it refers to everything above.
    std::unique_ptr<cMainLogic> logic_;
};

}  // namespace toval
