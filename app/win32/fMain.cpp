#include "fMain.h"

#include "base/cErrorLog.h"
#include "cWinSocket.h"
#include "config/cConfig.h"
#include "config/mLanguage.h"
#include "core/cCore.h"
#include "core/cLyricFile.h"
#include "core/cPlugin.h"
#include "display/cDisplay.h"
#include "lyric/cMusic.h"

namespace toval {

namespace {

constexpr UINT kMsgTrayIcon = WM_APP + 1;
constexpr UINT kMsgDropSettings = WM_APP + 2;
constexpr UINT kMsgDropEditor = WM_APP + 3;

}  // namespace

fMain::fMain() {
    main_.Create({.title = L"Toval", .style = WS_POPUP, .className = L"TovalMain"},
                 [this](UINT m, WPARAM w, LPARAM l, LRESULT& r) { return OnMessage(m, w, l, r); });
    // fHandler: the plug-in's messages arrive here; its procedure gets hooked.
    handler_.Create({.title = L"TovalHandler", .style = WS_POPUP, .className = L"TovalHandler"},
                    nullptr);
    channel_ = std::make_unique<cWinPluginChannel>(handler_.Hwnd());
    shell_.setOwner(nullptr);
    tray_ = std::make_unique<fTray>(globals_, surface_);
    tray_->onContextMenu = [this] { ShowMenu(); };
    taskbarCreated_ = RegisterWindowMessageW(L"TaskbarCreated");
    // tmrDestroy: the close runs on its first tick, right after the handler
    // that asked for it has returned.
    destroy_.setInterval(1);

    // The optional string library sits beside the program.
    strings_ = std::make_unique<cWinStringsLibrary>(shell_.ProgramFolder() + u"TovalStrings.dll");
    cMainLogic::Parts parts{shell_,   *channel_, ini_,     clock_,        poll_,
                            destroy_, surface_,  surface_, strings_.get()};
    logic_ = std::make_unique<cMainLogic>(
        globals_, parts,
        [this](cConfig& config, Random& random, const std::shared_ptr<cMusic>& track) {
            auto lookup = std::make_shared<cLyricFile>(globals_, shell_, random, &config);
            lookup->setMusic(track);
            lookup->setSocket(std::make_shared<cWinSocket>());
            lookup->setTime(std::make_shared<cWinTimer>());
            return lookup;
        });
    logic_->onApplyLanguage = [this](mLanguage& language) {
        shell_.setRightToLeft(globals_.RightToLeft);
        const std::u16string caption = language.GetValue(u"objects", u".fTray.caption");
        tray_->setCaption(caption.empty() ? u"Toval" : caption);
    };
    logic_->onDisplayLoaded = [this](cDisplay& display) { tray_->Attach(&display); };
    logic_->onUnloadForms = [this] {
        settings_.reset();
        edit_.reset();
        tray_->Attach(nullptr);
        RemoveTrayIcon();
    };
    logic_->onQuit = [] { PostQuitMessage(0); };
}

fMain::~fMain() {
    RemoveTrayIcon();
    logic_.reset();
    tray_.reset();
}

bool fMain::Form_Load(const std::u16string& commandLine) {
    if (!logic_->Form_Load(commandLine)) return false;
    AddTrayIcon();
    return true;
}

std::u16string fMain::Caption(const char16_t* control, const char16_t* english) const {
    cConfig* config = logic_ ? logic_->Config() : nullptr;
    if (!config) return english;
    const std::u16string text =
        config->Language().GetValue(u"objects", std::u16string(u".fMain.") + control + u".caption");
    return text.empty() ? std::u16string(english) : text;
}

void fMain::AddTrayIcon() {
    icon_ = {};
    icon_.cbSize = sizeof icon_;
    icon_.hWnd = main_.Hwnd();
    icon_.uID = 1;
    icon_.uFlags = NIF_ICON | NIF_MESSAGE | NIF_TIP;
    icon_.uCallbackMessage = kMsgTrayIcon;
    icon_.hIcon = LoadIconW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(1));
    if (!icon_.hIcon) icon_.hIcon = LoadIconW(nullptr, reinterpret_cast<LPCWSTR>(IDI_APPLICATION));
    lstrcpynW(icon_.szTip, L"Toval", static_cast<int>(std::size(icon_.szTip)));
    iconShown_ = Shell_NotifyIconW(NIM_ADD, &icon_) != FALSE;
}

void fMain::RemoveTrayIcon() {
    if (!iconShown_) return;
    Shell_NotifyIconW(NIM_DELETE, &icon_);
    iconShown_ = false;
}

void fMain::ShowMenu() {
    if (!logic_ || logic_->Closing()) return;
    const int mode = logic_->Display() ? logic_->Display()->Window() : 0;
    const HMENU menu = CreatePopupMenu();
    const auto add = [&](UINT id, const char16_t* control, const char16_t* english, bool checked) {
        AppendMenuW(menu, MF_STRING | (checked ? MF_CHECKED : 0u), id,
                    Wide(Caption(control, english)));
    };
    add(kMnuWindowMode, u"mnuWindowMode", u"&Window mode", mode == kModeWindow);
    add(kMnuTrayMode, u"mnuTrayMode", u"&Task-bar mode", mode == kModeTray);
    AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
    add(kMnuEdit, u"mnuEdit", u"Lyric &editor...", false);
    add(kMnuSettings, u"mnuSettings", u"&Settings...", false);
    add(kMnuClearCache, u"mnuClearCache", u"&Clear cache", false);
    add(kMnuAbout, u"mnuAbout", u"&About Toval...", false);
    AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
    add(kMnuExit, u"mnuExit", u"E&xit", false);
    POINT at;
    GetCursorPos(&at);
    // The menu closes properly only when its owner is in front.
    SetForegroundWindow(main_.Hwnd());
    UINT flags = TPM_RETURNCMD | TPM_RIGHTBUTTON;
    if (globals_.RightToLeft) flags |= TPM_LAYOUTRTL | TPM_RIGHTALIGN;
    const UINT chosen =
        static_cast<UINT>(TrackPopupMenu(menu, flags, at.x, at.y, 0, main_.Hwnd(), nullptr));
    PostMessageW(main_.Hwnd(), WM_NULL, 0, 0);
    DestroyMenu(menu);
    if (chosen) Command(chosen);
}

void fMain::Command(UINT id) {
    Guarded("fMain.mnu_Click", [&] {
        switch (id) {
            case kMnuWindowMode:
                logic_->setDisplayMode(kModeWindow);
                break;
            case kMnuTrayMode:
                logic_->setDisplayMode(kModeTray);
                break;
            case kMnuEdit:
                OpenEditor();
                break;
            case kMnuSettings:
                ShowSettings();
                break;
            case kMnuClearCache:
                if (logic_->Core()) logic_->Core()->ClearCache();
                break;
            case kMnuAbout:
                ShowAbout();
                break;
            case kMnuExit:
                if (logic_->Plugin())
                    logic_->Plugin()->closeProgram();
                else
                    logic_->closeProgram();
                break;
            default:
                break;
        }
    });
}

void fMain::OpenEditor() {
    const auto plugin = logic_->Plugin();
    if (!plugin || !plugin->Music() || !plugin->Music()->IsValid() || !logic_->Config() ||
        !logic_->RandomSource()) {
        shell_.ShowMessage(logic_->Text(u"InvalidMusicTAG"), logic_->Text(u"AttentionTitle"),
                           kMbIconExclamation);
        return;
    }
    if (edit_) {
        SetForegroundWindow(edit_->Hwnd());
        return;
    }
    edit_ = std::make_unique<fEdit>(globals_, *logic_->RandomSource(), *logic_->Config(), shell_);
    // A saved lyric is looked up again, so the display shows it.
    edit_->Editor().onSaved = [this](const std::u16string&) {
        if (logic_->Core()) logic_->Core()->Reset();
    };
    // Dropped once its own message has returned.
    edit_->onClosed = [this] { PostMessageW(main_.Hwnd(), kMsgDropEditor, 0, 0); };
    edit_->Show(*plugin->Music());
}

bool fMain::DialogMessage(MSG& msg) {
    for (const HWND dialog :
         {settings_ ? settings_->Hwnd() : nullptr, edit_ ? edit_->Hwnd() : nullptr}) {
        if (dialog && (msg.hwnd == dialog || IsChild(dialog, msg.hwnd)))
            return IsDialogMessageW(dialog, &msg) != FALSE;
    }
    return false;
}

void fMain::ShowSettings() {
    cConfig* config = logic_->Config();
    if (!config) return;
    if (!settings_) {
        settings_ = std::make_unique<fSettings>(*config, globals_.RightToLeft);
        settings_->onApplied = [this] { SettingsApplied(); };
        // Dropped once its own message has returned.
        settings_->onClosed = [this] { PostMessageW(main_.Hwnd(), kMsgDropSettings, 0, 0); };
    }
    settings_->Show();
}

void fMain::SettingsApplied() {
    Guarded("fMain.SettingsApplied", [&] {
        shell_.setRightToLeft(globals_.RightToLeft);
        if (cDisplay* display = logic_->Display()) {
            tray_->Attach(display);                     // the font
            logic_->setDisplayMode(display->Window());  // transparency, topmost, direction
            display->Load();  // the colours, and the lyric laid out afresh
        }
        if (logic_->Core()) logic_->Core()->Reset();
    });
}

void fMain::ShowAbout() {
    std::u16string text = u"Toval 1.3.1\r\n\r\nShows the lyric of the playing track, word by word.";
    if (globals_.lastUpdateVersion >= 1030002)
        text += u"\r\n\r\n" + logic_->Text(u"TovalNewVersion");
    shell_.ShowMessage(text, logic_->Text(u"AttentionTitle"), kMbIconInformation);
}

bool fMain::OnMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
    result = 0;
    if (message == kMsgTrayIcon) {
        const UINT event = LOWORD(lParam);
        if (event == WM_RBUTTONUP || event == WM_CONTEXTMENU || event == WM_LBUTTONUP) ShowMenu();
        return true;
    }
    if (taskbarCreated_ && message == taskbarCreated_) {
        // Explorer restarted: the icon comes back.
        iconShown_ = false;
        AddTrayIcon();
        return true;
    }
    if (message == WM_COMMAND && HIWORD(wParam) == 0) {
        // The menu's entries, also for tools that send them.
        Command(LOWORD(wParam));
        return true;
    }
    if (message == kMsgDropEditor) {
        if (edit_ && !edit_->Hwnd()) edit_.reset();
        return true;
    }
    if (message == kMsgDropSettings) {
        if (settings_ && !settings_->Hwnd()) settings_.reset();
        return true;
    }
    if (message == WM_CLOSE) {
        if (logic_) logic_->closeProgram();
        return true;
    }
    return false;
}

}  // namespace toval
