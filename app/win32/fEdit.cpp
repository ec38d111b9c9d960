#include "fEdit.h"

#include <commdlg.h>
#include <windowsx.h>

#include <algorithm>

#include "cWinSocket.h"
#include "config/cConfig.h"
#include "config/mLanguage.h"
#include "fEditAdvTime.h"
#include "fEditInfo.h"
#include "fEditTime.h"
#include "lyric/cLyric.h"
#include "lyric/cLyricLine.h"
#include "lyric/cLyricWord.h"
#include "lyric/cMusic.h"
#include "net/cTovalSite.h"

namespace toval {

namespace {

// Menu entries: the time lists count up from these.
enum MenuId : UINT { kMnuEditTime = 1000, kMnuDelTime = 2000, kMnuDelTimes = 3000, kMnuAdv };

struct ButtonInfo {
    eEditorControl control;
    const char16_t* name;
    const char16_t* english;
    DWORD style;
};
constexpr ButtonInfo kButtons[] = {
    {eEditorControl::cmdLoad, u"cmdLoad", u"&Load file", BS_PUSHBUTTON},
    {eEditorControl::cmdSave, u"cmdSave", u"&Save as", BS_PUSHBUTTON},
    {eEditorControl::cmdInternet, u"cmdInternet", u"&Internet", BS_PUSHBUTTON},
    {eEditorControl::cmdReset, u"cmdReset", u"&Reset", BS_PUSHBUTTON},
    {eEditorControl::cmdBack, u"cmdBack", u"&Back", BS_PUSHBUTTON},
    {eEditorControl::cmdNext, u"cmdNext", u"&Next", BS_PUSHBUTTON},
    {eEditorControl::chkAutoImplode, u"chkAutoImplode", u"Auto Implode", BS_AUTOCHECKBOX},
    {eEditorControl::chkRighttoleft, u"chkRighttoleft", u"Right to left", BS_AUTOCHECKBOX},
};

size_t Index(eEditorControl control) {
    return static_cast<size_t>(control);
}

}  // namespace

std::u16string ObjectCaption(cConfig& config, const std::u16string& key, const char16_t* english) {
    const std::u16string text = config.Language().GetValue(u"objects", key + u".caption");
    return text.empty() ? std::u16string(english) : text;
}

fEdit::fEdit(cGlobals& globals, Random& random, cConfig& config, cWinShell& shell)
    : globals_(globals),
      config_(config),
      shell_(shell),
      display_(globals, surface_, shell),
      editor_(globals, random,
              [&config](std::u16string_view key) { return config.Language().MessageText(key); }) {
    // The editor's own children are placed in the mirrored window, but keep
    // their own reading order (the lyric picture is laid out by the lyric).
    const DWORD ex = WS_EX_NOINHERITLAYOUT | (globals_.RightToLeft ? WS_EX_LAYOUTRTL : 0u);
    window_.Create(
        {.title = L"",
         .style = WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN,
         .exStyle = ex,
         .width = 640,
         .height = 480,
         .className = kEditClass,
         .background = COLOR_BTNFACE + 1},
        [this](UINT m, WPARAM w, LPARAM l, LRESULT& r) { return OnMessage(m, w, l, r); });
    dpi_ = WindowDpi(window_.Hwnd());
    CreateControls();
    ApplyFonts();
    display_.onRedrawn = [this](const cRect& whole) { Redrawn(whole); };
    surface_.onRefresh = [this] { InvalidateRect(picture_.Hwnd(), nullptr, FALSE); };
    editor_.setView(this);
    editor_.setAuxPictureBox(&surface_);
    editor_.setStreamTimer(&stream_);
    editor_.setConfig(&config_);
    editor_.setSenderFactory([this] {
        auto site = std::make_shared<cTovalSite>(globals_, &config_);
        site->setSocket(std::make_shared<cWinSocket>());
        site->setTime(std::make_shared<cWinTimer>());
        return site;
    });
}

fEdit::~fEdit() {
    editor_.setView(nullptr);
    picture_.Destroy();
    window_.Destroy();
    if (font_) DeleteObject(font_);
    if (textFont_) DeleteObject(textFont_);
}

void fEdit::Show(const cMusic& playing) {
    Layout();
    editor_.Form_Load(playing);
    ShowWindow(window_.Hwnd(), SW_SHOW);
    SetForegroundWindow(window_.Hwnd());
    SetFocus(Control(eEditorControl::fraText));
}

HWND fEdit::Control(eEditorControl control) const {
    return controls_[Index(control)];
}

void fEdit::CreateControls() {
    const HWND hwnd = window_.Hwnd();
    const DWORD ex = globals_.RightToLeft ? WS_EX_LAYOUTRTL : 0u;
    for (const ButtonInfo& b : kButtons)
        controls_[Index(b.control)] = AddControl(
            hwnd, L"BUTTON", ObjectCaption(config_, std::u16string(u".fEdit.") + b.name, b.english),
            WS_VISIBLE | WS_TABSTOP | b.style, kEditControlId + static_cast<int>(b.control),
            nullptr, ex);
    info_ = AddControl(hwnd, L"STATIC", u"", WS_VISIBLE | SS_LEFT, kEditInfoId, nullptr, ex);
    picture_.Create(
        {.style = WS_CHILD | WS_TABSTOP, .parent = hwnd, .className = kEditPictureClass},
        [this](UINT m, WPARAM w, LPARAM l, LRESULT& r) { return OnPicture(m, w, l, r); });
    controls_[Index(eEditorControl::pb_Main)] = picture_.Hwnd();
    CreateTextBox();
}

void fEdit::CreateTextBox() {
    // The reading order of an edit control is fixed when it is made: a change
    // of direction makes it again with the same text.
    HWND& box = controls_[Index(eEditorControl::fraText)];
    const std::u16string text = box ? ControlText(box) : editor_.EditText();
    const bool visible = !box || IsWindowVisible(box);
    if (box) DestroyWindow(box);
    const DWORD ex =
        WS_EX_CLIENTEDGE |
        (editor_.EditRightToLeft() ? WS_EX_RTLREADING | WS_EX_RIGHT | WS_EX_LEFTSCROLLBAR : 0u);
    box = AddControl(window_.Hwnd(), L"EDIT", text,
                     (visible ? WS_VISIBLE : 0u) | WS_TABSTOP | WS_VSCROLL | ES_MULTILINE |
                         ES_AUTOVSCROLL | ES_WANTRETURN | ES_NOHIDESEL,
                     kEditControlId + static_cast<int>(eEditorControl::fraText), textFont_, ex);
    SendMessageW(box, EM_SETLIMITTEXT, 0, 0);
}

void fEdit::ApplyFonts() {
    const HFONT oldFont = font_, oldText = textFont_;
    font_ = MessageFont(dpi_);
    textFont_ = SettingsFont(globals_.Settings, dpi_, false);
    for (size_t i = 0; i < controls_.size(); ++i)
        SendMessageW(
            controls_[i], WM_SETFONT,
            reinterpret_cast<WPARAM>(i == Index(eEditorControl::fraText) ? textFont_ : font_),
            TRUE);
    SendMessageW(info_, WM_SETFONT, reinterpret_cast<WPARAM>(font_), TRUE);
    surface_.setFont(globals_.Settings, dpi_);
    if (oldFont) DeleteObject(oldFont);
    if (oldText) DeleteObject(oldText);
}

void fEdit::Layout() {
    RECT client;
    GetClientRect(window_.Hwnd(), &client);
    const auto px = [&](int v) { return MulDiv(v, dpi_, 96); };
    const int m = px(8), gap = px(6), h = px(26), w = px(84);
    const int width = client.right, bottom = client.bottom - m - h, checks = bottom - gap - h;
    const int info = checks - gap - px(34);
    const auto place = [&](eEditorControl c, int x, int y, int cx, int cy) {
        MoveWindow(Control(c), x, y, cx, cy, TRUE);
    };
    for (int i = 0; i < 4; ++i)
        place(kButtons[i].control, m + i * (w + gap), bottom, w, h);
    place(eEditorControl::cmdBack, width - m - 2 * w - gap, bottom, w, h);
    place(eEditorControl::cmdNext, width - m - w, bottom, w, h);
    place(eEditorControl::chkAutoImplode, m, checks, px(170), h);
    place(eEditorControl::chkRighttoleft, m + px(176), checks, px(170), h);
    MoveWindow(info_, m, info, width - 2 * m, px(34), TRUE);
    const int areaHeight = std::max(px(40), info - gap - m);
    place(eEditorControl::fraText, m, m, width - 2 * m, areaHeight);
    place(eEditorControl::pb_Main, m, m, width - 2 * m, areaHeight);
    if (whole_.Right > 0 || whole_.Bottom > 0) Redrawn(whole_);
}

// --- What the editor says ---

void fEdit::setCaption(const std::u16string& text) {
    SetWindowTextW(window_.Hwnd(), Wide(text));
    // The preview explains itself below the picture.
    SetWindowTextW(
        info_, Wide(editor_.Step() == 3 ? config_.Language().MessageText(u"TovalEditPreviewText")
                                        : std::u16string()));
}

void fEdit::setEnabled(eEditorControl control, bool enabled) {
    EnableWindow(Control(control), enabled);
}

void fEdit::setVisible(eEditorControl control, bool visible) {
    const HWND hwnd = Control(control);
    ShowWindow(hwnd, visible ? SW_SHOW : SW_HIDE);
    // Timing is done with the keyboard: the picture takes the keys at once.
    if (visible) SetFocus(hwnd);
}

void fEdit::setChecked(eEditorControl control, bool checked) {
    SendMessageW(Control(control), BM_SETCHECK, checked ? BST_CHECKED : BST_UNCHECKED, 0);
}

void fEdit::setEditText(const std::u16string& text) {
    SetWindowTextW(Control(eEditorControl::fraText), Wide(text));
}

void fEdit::setEditRightToLeft(bool) {
    CreateTextBox();
    Layout();
}

bool fEdit::FileDialog(cFileDialog& dialog, bool save) {
    // "name|pattern|..." becomes the dialog's list of NUL-ended pieces.
    std::u16string filter = dialog.Filter;
    std::replace(filter.begin(), filter.end(), u'|', u'\0');
    filter.append(2, u'\0');
    std::u16string file(32768, u'\0');
    std::copy_n(dialog.FileName.begin(), std::min(dialog.FileName.size(), file.size() - 1),
                file.begin());
    OPENFILENAMEW ofn{};
    ofn.lStructSize = sizeof ofn;
    ofn.hwndOwner = window_.Hwnd();
    ofn.lpstrFilter = Wide(filter);
    ofn.nFilterIndex = static_cast<DWORD>(std::max(1, dialog.FilterIndex));
    ofn.lpstrFile = reinterpret_cast<wchar_t*>(file.data());
    ofn.nMaxFile = static_cast<DWORD>(file.size());
    ofn.lpstrInitialDir = dialog.InitDir.empty() ? nullptr : Wide(dialog.InitDir);
    ofn.Flags = OFN_EXPLORER | OFN_HIDEREADONLY | OFN_PATHMUSTEXIST |
                (save ? OFN_OVERWRITEPROMPT : OFN_FILEMUSTEXIST);
    ofn.lpstrDefExt = save ? L"tvl" : nullptr;
    if (!(save ? GetSaveFileNameW(&ofn) : GetOpenFileNameW(&ofn))) return false;
    dialog.FilterIndex = static_cast<int32_t>(ofn.nFilterIndex);
    dialog.FileName = file.substr(0, file.find(u'\0'));
    return true;
}

bool fEdit::ShowOpen(cFileDialog& dialog) {
    return FileDialog(dialog, false);
}

bool fEdit::ShowSave(cFileDialog& dialog) {
    return FileDialog(dialog, true);
}

int32_t fEdit::ShowMessage(const std::u16string& text, const std::u16string& title, int32_t flags) {
    shell_.setOwner(window_.Hwnd());
    const int32_t answer = shell_.ShowMessage(text, title, flags);
    shell_.setOwner(nullptr);
    return answer;
}

cMenuChoice fEdit::PopupMenu(const cEditorMenu& menu) {
    const HMENU popup = CreatePopupMenu(), edit = CreatePopupMenu(), del = CreatePopupMenu();
    for (size_t i = 0; i < menu.EditTimes.size(); ++i)
        AppendMenuW(edit, MF_STRING, kMnuEditTime + i + 1, Wide(menu.EditTimes[i]));
    for (size_t i = 0; i < menu.DelTimes.size(); ++i)
        AppendMenuW(del, MF_STRING, kMnuDelTime + i + 1, Wide(menu.DelTimes[i]));
    const auto caption = [&](const char16_t* name, const char16_t* english) {
        return ObjectCaption(config_, std::u16string(u".fEdit.") + name, english);
    };
    AppendMenuW(popup, MF_POPUP | (menu.EditTimesEnabled ? 0u : MF_GRAYED),
                reinterpret_cast<UINT_PTR>(edit), Wide(caption(u"mnuEditTimes", u"&Edit time")));
    AppendMenuW(popup, MF_POPUP | (menu.DelFromEnabled ? 0u : MF_GRAYED),
                reinterpret_cast<UINT_PTR>(del), Wide(caption(u"mnuDelFrom", u"&Delete from")));
    AppendMenuW(popup, MF_STRING, kMnuDelTimes,
                Wide(caption(u"mnuDelTimes", u"Delete &all times")));
    AppendMenuW(popup, MF_SEPARATOR, 0, nullptr);
    AppendMenuW(popup, MF_STRING, kMnuAdv, Wide(caption(u"mnuAdv", u"Ad&vanced editing...")));
    UINT flags = TPM_RETURNCMD | TPM_RIGHTBUTTON;
    if (globals_.RightToLeft) flags |= TPM_LAYOUTRTL | TPM_RIGHTALIGN;
    const UINT chosen = static_cast<UINT>(
        TrackPopupMenu(popup, flags, click_.x, click_.y, 0, window_.Hwnd(), nullptr));
    DestroyMenu(popup);  // with its sub-menus
    if (chosen == kMnuDelTimes) return {cMenuChoice::DelTimes, 0};
    if (chosen == kMnuAdv) return {cMenuChoice::Adv, 0};
    if (chosen > kMnuDelTime && chosen < kMnuDelTimes)
        return {cMenuChoice::DelTime, static_cast<int32_t>(chosen - kMnuDelTime)};
    if (chosen > kMnuEditTime && chosen < kMnuDelTime)
        return {cMenuChoice::EditTime, static_cast<int32_t>(chosen - kMnuEditTime)};
    return {};
}

bool fEdit::OpenAdvTime(cEditAdvTime& dialog) {
    return fEditAdvTime::OpenForm(window_.Hwnd(), dialog, config_, globals_.RightToLeft, dpi_);
}

void fEdit::OpenEditTime(cEditTime& dialog) {
    fEditTime::OpenForm(window_.Hwnd(), dialog, config_, globals_.RightToLeft, dpi_);
}

void fEdit::ShowEditInfo(const std::u16string& text) {
    fEditInfo::OpenForm(window_.Hwnd(),
                        text + u"\r\n\r\n" + config_.Language().MessageText(u"TovalEditHelp"),
                        config_, globals_.RightToLeft, dpi_);
    SetFocus(picture_.Hwnd());
}

// --- The picture ---

void fEdit::Redraw() {
    display_.setLyric(editor_.Lyric());
    // The full redraw paints everything plain: the cursor shows again.
    const int32_t line = editor_.curLine(), word = editor_.curWord();
    if (line != kUnset) RedrawElement(line, kUnset, true);
    if (line != kUnset && word != kUnset) RedrawElement(line, word, true);
}

void fEdit::Redrawn(const cRect& whole) {
    whole_ = whole;
    const int width = std::max(whole.Right, 1), height = std::max(whole.Bottom, 1);
    if (!redrawing_ && (width > surface_.Width() || height > surface_.Height())) {
        // The picture grows with the lyric; what fell outside is drawn again.
        surface_.setSize(std::max(width, surface_.Width()), std::max(height, surface_.Height()));
        redrawing_ = true;
        display_.Redraw();
        redrawing_ = false;
        return;
    }
    RECT client;
    GetClientRect(picture_.Hwnd(), &client);
    // A narrow lyric stands in the middle; a long one scrolls.
    if (whole.Right <= client.right)
        viewLeft_ = -(client.right - whole.Right) / 2;
    else
        viewLeft_ = std::clamp(viewLeft_, 0, static_cast<int>(whole.Right - client.right));
    viewTop_ = std::clamp(viewTop_, 0, std::max(0, static_cast<int>(whole.Bottom - client.bottom)));
    InvalidateRect(picture_.Hwnd(), nullptr, FALSE);
}

bool fEdit::ElementBox(int32_t line, int32_t word, cRect& box) const {
    const auto lyric = editor_.Lyric();
    const auto l = lyric ? lyric->GetLine(line) : nullptr;
    if (!l) return false;
    std::shared_ptr<cDelta> delta = l->Delta();
    if (word != kUnset) {
        const auto w = l->GetWord(word);
        if (!w) return false;
        delta = w->Delta();
    }
    if (!delta || !delta->Initial() || !delta->Final()) return false;
    box = {delta->Initial()->X(), delta->Initial()->Y(), delta->Final()->X(), delta->Final()->Y()};
    return box.Left != kUnset && box.Top != kUnset && box.Right != kUnset && box.Bottom != kUnset;
}

void fEdit::KeepInView(const cRect& box) {
    RECT client;
    GetClientRect(picture_.Hwnd(), &client);
    // The cursor's line stands in the middle while the lyric is longer.
    const int top = box.Top - (client.bottom - (box.Bottom - box.Top)) / 2;
    viewTop_ = std::clamp(top, 0, std::max(0, static_cast<int>(whole_.Bottom - client.bottom)));
    if (whole_.Right > client.right)
        viewLeft_ = std::clamp((box.Left + box.Right - static_cast<int>(client.right)) / 2, 0,
                               static_cast<int>(whole_.Right - client.right));
}

void fEdit::RedrawElement(int32_t line, int32_t word, bool highlighted) {
    const auto lyric = editor_.Lyric();
    const auto l = lyric ? lyric->GetLine(line) : nullptr;
    if (!l) return;
    if (word == kUnset)
        display_.DrawTextLine(l, highlighted ? kSlotNormalText : kSlotBackText, line == 0);
    else
        display_.DrawText(l->GetWord(word), highlighted ? kSlotHighlight : kSlotNormalText,
                          line == 0);
    cRect box;
    if (highlighted && ElementBox(line, word, box)) KeepInView(box);
    InvalidateRect(picture_.Hwnd(), nullptr, FALSE);
}

// --- The window ---

cWindowRect fEdit::WindowRect() {
    WINDOWPLACEMENT placement{};
    placement.length = sizeof placement;
    GetWindowPlacement(window_.Hwnd(), &placement);
    const RECT& r = placement.rcNormalPosition;
    const auto twips = [&](LONG px) { return MulDiv(px, 1440, dpi_); };
    return {twips(r.top), twips(r.left), twips(r.right - r.left), twips(r.bottom - r.top)};
}

void fEdit::setWindowRect(const cWindowRect& rect) {
    const auto px = [&](int32_t twips) { return MulDiv(twips, dpi_, 1440); };
    const int width = std::max(px(rect.Width), MulDiv(580, dpi_, 96));
    const int height = std::max(px(rect.Height), MulDiv(360, dpi_, 96));
    int left = px(rect.Left), top = px(rect.Top);
    // A place on a monitor that is gone comes back to the screen.
    RECT visible{left, top, left + width, top + height};
    if (!MonitorFromRect(&visible, MONITOR_DEFAULTTONULL)) {
        left = (GetSystemMetrics(SM_CXSCREEN) - width) / 2;
        top = (GetSystemMetrics(SM_CYSCREEN) - height) / 2;
    }
    SetWindowPos(window_.Hwnd(), nullptr, left, top, width, height, SWP_NOZORDER | SWP_NOACTIVATE);
}

void fEdit::Close() {
    window_.Destroy();
    if (onClosed) onClosed();
}

bool fEdit::OnMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
    result = 0;
    switch (message) {
        case WM_COMMAND: {
            const auto control = static_cast<eEditorControl>(LOWORD(wParam) - kEditControlId);
            const HWND hwnd = Control(eEditorControl::fraText);
            const bool checked = lParam && SendMessageW(reinterpret_cast<HWND>(lParam), BM_GETCHECK,
                                                        0, 0) == BST_CHECKED;
            switch (control) {
                case eEditorControl::fraText:
                    if (HIWORD(wParam) == EN_CHANGE) editor_.txtEdit_Change(ControlText(hwnd));
                    return true;
                case eEditorControl::cmdNext:
                    // A text set from outside may not have announced itself.
                    if (editor_.Step() == 1) editor_.txtEdit_Change(ControlText(hwnd));
                    editor_.cmdNext_Click();
                    return true;
                case eEditorControl::cmdBack:
                    editor_.cmdBack_Click();
                    return true;
                case eEditorControl::cmdLoad:
                    editor_.cmdLoad_Click();
                    return true;
                case eEditorControl::cmdSave:
                    editor_.cmdSave_Click();
                    return true;
                case eEditorControl::cmdReset:
                    editor_.cmdReset_Click();
                    return true;
                case eEditorControl::cmdInternet:
                    editor_.cmdInternet_Click();
                    return true;
                case eEditorControl::chkAutoImplode:
                    editor_.chkAutoImplode_Click(checked);
                    return true;
                case eEditorControl::chkRighttoleft:
                    editor_.chkRighttoleft_Click(checked);
                    return true;
                default:
                    return false;
            }
        }
        case WM_SIZE:
            Layout();
            return true;
        case WM_GETMINMAXINFO: {
            auto* info = reinterpret_cast<MINMAXINFO*>(lParam);
            info->ptMinTrackSize = {MulDiv(580, dpi_, 96), MulDiv(360, dpi_, 96)};
            return true;
        }
        case WM_DPICHANGED: {
            dpi_ = HIWORD(wParam);
            const auto* r = reinterpret_cast<const RECT*>(lParam);
            ApplyFonts();
            SetWindowPos(window_.Hwnd(), nullptr, r->left, r->top, r->right - r->left,
                         r->bottom - r->top, SWP_NOZORDER | SWP_NOACTIVATE);
            if (editor_.Step() > 1) Redraw();
            return true;
        }
        case WM_CLOSE: {
            // Not while one of its modal dialogs is up: that one goes first.
            if (!IsWindowEnabled(window_.Hwnd())) return true;
            bool cancel = false;
            editor_.Form_Unload(cancel);
            if (!cancel) Close();
            return true;
        }
        case kEditQueryCursor:
            result = wParam == 0 ? editor_.curLine() : editor_.curWord();
            return true;
        case kEditQueryElement: {
            cRect box;
            result = -1;
            if (ElementBox(static_cast<int32_t>(wParam), static_cast<int32_t>(lParam), box))
                result = MAKELONG((box.Left + box.Right) / 2 - viewLeft_,
                                  (box.Top + box.Bottom) / 2 - viewTop_);
            return true;
        }
        default:
            return false;
    }
}

bool fEdit::OnPicture(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
    result = 0;
    const auto shift = [] {
        return (GetKeyState(VK_SHIFT) < 0 ? kShiftMask : 0) |
               (GetKeyState(VK_CONTROL) < 0 ? kCtrlMask : 0);
    };
    switch (message) {
        case WM_PAINT:
            PaintPicture(picture_.Hwnd(), surface_, viewLeft_, viewTop_,
                         static_cast<COLORREF>(display_.SlotColor(kSlotBackground)));
            return true;
        case WM_ERASEBKGND:
            result = 1;
            return true;
        case WM_GETDLGCODE:
            result = DLGC_WANTARROWS;
            return true;
        case WM_KEYDOWN:
            editor_.pb_Main_KeyDown(static_cast<int32_t>(wParam), shift());
            return true;
        case WM_LBUTTONDOWN:
        case WM_RBUTTONDOWN: {
            SetFocus(picture_.Hwnd());
            click_ = {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
            ClientToScreen(picture_.Hwnd(), &click_);
            editor_.pb_Main_MouseDown(message == WM_LBUTTONDOWN ? kButtonLeft : kButtonRight,
                                      shift(), GET_X_LPARAM(lParam) + viewLeft_,
                                      GET_Y_LPARAM(lParam) + viewTop_);
            return true;
        }
        case WM_MOUSEWHEEL: {
            const int lineHeight = surface_.TextExtent(u"").cy;
            viewTop_ -= GET_WHEEL_DELTA_WPARAM(wParam) * 3 * lineHeight / WHEEL_DELTA;
            Redrawn(whole_);
            return true;
        }
        case WM_SIZE:
            Redrawn(whole_);
            return true;
        default:
            return false;
    }
}

}  // namespace toval
