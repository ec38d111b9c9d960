#include "fTray.h"

#include <algorithm>

#include "base/cErrorLog.h"
#include "display/cDisplay.h"
#include "lyric/cLyric.h"
#include "lyric/cLyricLine.h"

namespace toval {

namespace {

constexpr int kGrip = 6;        // px of the edge that resizes the window
constexpr int kCorner = 14;     // rounding of the window's corners
constexpr int kFastTicks = 10;  // quick refits after the task bar changed

int TwipsToPixels(int32_t twips, int dpi) {
    return MulDiv(twips, dpi, 1440);
}

int32_t PixelsToTwips(int pixels, int dpi) {
    return MulDiv(pixels, 1440, dpi);
}

HWND TaskBarChild(HWND parent, const wchar_t* className) {
    return parent ? FindWindowExW(parent, nullptr, className, nullptr) : nullptr;
}

}  // namespace

fTray::fTray(cGlobals& globals, cGdiSurface& surface) : globals_(globals), surface_(surface) {
    surface_.onRefresh = [this] { Refreshed(); };
    refit_.onTimer = [this] { Refit(); };
}

fTray::~fTray() {
    surface_.onRefresh = nullptr;
    Attach(nullptr);
}

int fTray::Dpi() const {
    const HDC screen = GetDC(nullptr);
    const int dpi = GetDeviceCaps(screen, LOGPIXELSY);
    ReleaseDC(nullptr, screen);
    return dpi > 0 ? dpi : 96;
}

void fTray::Attach(cDisplay* display) {
    if (display_) {
        display_->onWindowChanged = nullptr;
        display_->onReajustWindow = nullptr;
        display_->onCurrentLine = nullptr;
        display_->onRedrawn = nullptr;
    }
    display_ = display;
    if (!display_) {
        Hide();
        return;
    }
    ApplyFont();
    display_->onWindowChanged = [this](int32_t mode) { setMode(mode); };
    display_->onReajustWindow = [this] {
        fastTicks_ = kFastTicks;
        if (mode_ == kModeTray) refit_.setInterval(globals_.Settings.tray_FastRefresh);
    };
    display_->onCurrentLine = [this](const cRect& box) { Scroll(box); };
    display_->onRedrawn = [this](const cRect& whole) { Redrawn(whole); };
}

void fTray::ApplyFont() {
    surface_.setFont(globals_.Settings, Dpi());
}

void fTray::setMode(int mode) {
    Guarded("fTray.Window", [&] {
        if (mode == kModeTray) {
            if (AttachToTaskBar()) return;
            // No task bar to live in: the free window stands in.
            ErrorTrail({"fTray.Window", "no task bar; window mode instead"});
            if (display_) display_->setWindow(kModeWindow);
            return;
        }
        if (mode == kModeWindow) {
            ShowAsWindow();
            return;
        }
        Hide();
    });
}

void fTray::Hide() {
    refit_.setEnabled(false);
    if (mode_ != 0) StoreGeometry();
    window_.Destroy();
    mode_ = 0;
}

void fTray::ShowAsWindow() {
    Hide();
    const cSettings& s = globals_.Settings;
    const int dpi = Dpi();
    const int width = std::max(80, TwipsToPixels(s.size_WinWidth, dpi));
    const int height = std::max(24, TwipsToPixels(s.size_WinHeight, dpi));
    int left = TwipsToPixels(s.pos_WinLeft, dpi);
    int top = TwipsToPixels(s.pos_WinTop, dpi);
    // A window stored on a monitor that is gone comes back to the screen.
    RECT visible{left, top, left + width, top + height};
    if (!MonitorFromRect(&visible, MONITOR_DEFAULTTONULL)) {
        left = (GetSystemMetrics(SM_CXSCREEN) - width) / 2;
        top = (GetSystemMetrics(SM_CYSCREEN) - height) / 2;
    }
    DWORD ex = WS_EX_LAYERED | WS_EX_TOOLWINDOW;
    if (s.effect_AlwaysOnTop) ex |= WS_EX_TOPMOST;
    if (globals_.RightToLeft) ex |= WS_EX_LAYOUTRTL;
    window_.Create(
        {.title = reinterpret_cast<const wchar_t*>(caption_.c_str()),
         .style = WS_POPUP | WS_THICKFRAME | WS_CLIPCHILDREN,
         .exStyle = ex,
         .x = left,
         .y = top,
         .width = width,
         .height = height,
         .className = kTrayClass},
        [this](UINT m, WPARAM w, LPARAM l, LRESULT& r) { return OnMessage(m, w, l, r); });
    if (!window_.Hwnd()) return;
    mode_ = kModeWindow;
    SetLayeredWindowAttributes(window_.Hwnd(), 0, s.effect_Alpha, LWA_ALPHA);
    // The frame goes: the whole window is the lyric (see WM_NCCALCSIZE).
    SetWindowPos(window_.Hwnd(), nullptr, 0, 0, 0, 0,
                 SWP_FRAMECHANGED | SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    SetWindowRgn(window_.Hwnd(), CreateRoundRectRgn(0, 0, width + 1, height + 1, kCorner, kCorner),
                 FALSE);
    ShowWindow(window_.Hwnd(), SW_SHOWNOACTIVATE);
    if (display_) display_->Redraw();
}

bool fTray::AttachToTaskBar() {
    // A shell may keep a task bar that nobody sees (Wine without a desktop).
    const HWND bar = FindWindowW(L"Shell_TrayWnd", nullptr);
    if (!bar || !IsWindowVisible(bar)) return false;
    Hide();
    window_.Create(
        {.title = reinterpret_cast<const wchar_t*>(caption_.c_str()),
         .style = WS_CHILD | WS_CLIPSIBLINGS,
         .exStyle = globals_.RightToLeft ? static_cast<DWORD>(WS_EX_LAYOUTRTL) : 0u,
         .x = 0,
         .y = 0,
         .width = 1,
         .height = 1,
         .parent = bar,
         .className = kTrayClass},
        [this](UINT m, WPARAM w, LPARAM l, LRESULT& r) { return OnMessage(m, w, l, r); });
    if (!window_.Hwnd()) return false;
    mode_ = kModeTray;
    Refit();
    ShowWindow(window_.Hwnd(), SW_SHOWNOACTIVATE);
    refit_.setInterval(globals_.Settings.tray_Refresh);
    refit_.setEnabled(true);
    if (display_) display_->Redraw();
    return true;
}

void fTray::Refit() {
    if (mode_ != kModeTray || !window_.Hwnd()) return;
    if (fastTicks_ > 0 && --fastTicks_ == 0) refit_.setInterval(globals_.Settings.tray_Refresh);
    const HWND bar = GetParent(window_.Hwnd());
    if (!bar || !IsWindow(bar)) {
        // The task bar went away (the shell restarted): live as a window.
        if (display_) display_->setWindow(kModeWindow);
        return;
    }
    RECT client;
    GetClientRect(bar, &client);
    // Beside the notification area; without one, at the task bar's end.
    int right = client.right;
    if (const HWND notify = TaskBarChild(bar, L"TrayNotifyWnd")) {
        RECT r;
        GetWindowRect(notify, &r);
        MapWindowPoints(nullptr, bar, reinterpret_cast<POINT*>(&r), 2);
        right = r.left;
    }
    const cSettings& s = globals_.Settings;
    const int border = std::clamp(s.tray_Border, 0, 64);
    const int width = std::clamp(static_cast<int>(s.tray_MaxTraySize), 16, 2000);
    const int top = client.top + border / 3;
    const int height = std::max(8, static_cast<int>(client.bottom - client.top) - 2 * (border / 3));
    const int left = std::max(0, right - width - border);
    // The task buttons make room.
    if (const HWND rebar = TaskBarChild(bar, L"ReBarWindow32")) {
        RECT r;
        GetWindowRect(rebar, &r);
        MapWindowPoints(nullptr, bar, reinterpret_cast<POINT*>(&r), 2);
        if (r.right > left)
            MoveWindow(rebar, r.left, r.top, std::max(0, static_cast<int>(left - r.left)),
                       r.bottom - r.top, TRUE);
    }
    RECT now;
    GetWindowRect(window_.Hwnd(), &now);
    MapWindowPoints(nullptr, bar, reinterpret_cast<POINT*>(&now), 2);
    if (now.left != left || now.top != top || now.right - now.left != width ||
        now.bottom - now.top != height)
        MoveWindow(window_.Hwnd(), left, top, width, height, TRUE);
}

void fTray::StoreGeometry() {
    if (mode_ != kModeWindow || !window_.Hwnd()) return;
    RECT r;
    GetWindowRect(window_.Hwnd(), &r);
    const int dpi = Dpi();
    cSettings& s = globals_.Settings;
    s.pos_WinLeft = PixelsToTwips(r.left, dpi);
    s.pos_WinTop = PixelsToTwips(r.top, dpi);
    s.size_WinWidth = PixelsToTwips(r.right - r.left, dpi);
    s.size_WinHeight = PixelsToTwips(r.bottom - r.top, dpi);
}

void fTray::Scroll(const cRect& line) {
    if (!window_.Hwnd()) return;
    RECT client;
    GetClientRect(window_.Hwnd(), &client);
    const int height = client.bottom - client.top;
    const int width = client.right - client.left;
    // The current line sits in the middle; a wide lyric follows it sideways.
    viewTop_ = line.Top - (height - (line.Bottom - line.Top)) / 2;
    if (pictureWidth_ <= width)
        viewLeft_ = -(width - pictureWidth_) / 2;
    else
        viewLeft_ = std::clamp((line.Left + line.Right - width) / 2, 0, pictureWidth_ - width);
}

void fTray::Redrawn(const cRect& whole) {
    pictureWidth_ = whole.Right;
    // The picture grows with the lyric; what fell outside is drawn again.
    const int needWidth = std::max(whole.Right, 1), needHeight = std::max(whole.Bottom, 1);
    if (!redrawing_ && (needWidth > surface_.Width() || needHeight > surface_.Height())) {
        surface_.setSize(std::max(needWidth, surface_.Width()),
                         std::max(needHeight, surface_.Height()));
        redrawing_ = true;
        if (display_) display_->Redraw();
        redrawing_ = false;
        return;
    }
    const int lineHeight = surface_.TextExtent(u"").cy;
    Scroll(cRect{0, 0, whole.Right, lineHeight});
    if (!window_.Hwnd()) return;
    UpdateText();
    InvalidateRect(window_.Hwnd(), nullptr, FALSE);
}

void fTray::UpdateText() {
    // The window's text is the current line, or the whole lyric while no line
    // is current: what a screen reader (or a tool) reads.
    shownLine_ = display_ ? display_->CurrentLine() : kUnset;
    std::u16string text = caption_;
    if (const auto lyric = display_ ? display_->Lyric() : nullptr) {
        if (const auto line = lyric->GetLine(shownLine_))
            text = line->Text();
        else
            text = lyric->Text();
    }
    SetWindowTextW(window_.Hwnd(), Wide(text));
}

void fTray::Refreshed() {
    if (!window_.Hwnd()) return;
    if (display_ && display_->CurrentLine() != shownLine_) UpdateText();
    InvalidateRect(window_.Hwnd(), nullptr, FALSE);
}

void fTray::Paint() {
    const cColor background = display_ ? display_->SlotColor(kSlotBackground) : 0;
    PaintPicture(window_.Hwnd(), surface_, viewLeft_, viewTop_, static_cast<COLORREF>(background));
}

bool fTray::OnMessage(UINT message, WPARAM, LPARAM lParam, LRESULT& result) {
    result = 0;
    switch (message) {
        case WM_NCCALCSIZE:
            return mode_ == kModeWindow;  // no frame: the client is the whole window
        case WM_NCHITTEST: {
            if (mode_ != kModeWindow) return false;
            POINT p{static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))};
            RECT r;
            GetWindowRect(window_.Hwnd(), &r);
            const bool left = p.x < r.left + kGrip, right = p.x >= r.right - kGrip;
            const bool top = p.y < r.top + kGrip, bottom = p.y >= r.bottom - kGrip;
            result = top && left       ? HTTOPLEFT
                     : top && right    ? HTTOPRIGHT
                     : bottom && left  ? HTBOTTOMLEFT
                     : bottom && right ? HTBOTTOMRIGHT
                     : left            ? HTLEFT
                     : right           ? HTRIGHT
                     : top             ? HTTOP
                     : bottom          ? HTBOTTOM
                                       : HTCLIENT;
            return true;
        }
        case WM_SIZE: {
            if (mode_ == kModeWindow) {
                const int w = LOWORD(lParam), h = HIWORD(lParam);
                SetWindowRgn(window_.Hwnd(),
                             CreateRoundRectRgn(0, 0, w + 1, h + 1, kCorner, kCorner), TRUE);
            }
            if (display_ && display_->CurrentLine() != kUnset) {
                if (const auto lyric = display_->Lyric())
                    if (const auto line = lyric->GetLine(display_->CurrentLine()))
                        if (const auto delta = line->Delta();
                            delta && delta->Initial() && delta->Final())
                            Scroll(cRect{delta->Initial()->X(), delta->Initial()->Y(),
                                         delta->Final()->X(), delta->Final()->Y()});
            }
            InvalidateRect(window_.Hwnd(), nullptr, FALSE);
            return true;
        }
        case WM_EXITSIZEMOVE:
            StoreGeometry();
            return true;
        case WM_LBUTTONDOWN:
            if (display_ && display_->Lyric() && !display_->Lyric()->URL().empty()) {
                display_->Click();
                return true;
            }
            if (mode_ == kModeWindow) {
                ReleaseCapture();
                SendMessageW(window_.Hwnd(), WM_NCLBUTTONDOWN, HTCAPTION, 0);
            }
            return true;
        case WM_RBUTTONUP:
            if (onContextMenu) onContextMenu();
            return true;
        case WM_DPICHANGED: {
            const auto* r = reinterpret_cast<const RECT*>(lParam);
            SetWindowPos(window_.Hwnd(), nullptr, r->left, r->top, r->right - r->left,
                         r->bottom - r->top, SWP_NOZORDER | SWP_NOACTIVATE);
            ApplyFont();
            if (display_) display_->Redraw();
            return true;
        }
        case WM_ERASEBKGND:
            result = 1;
            return true;
        case WM_PAINT:
            Paint();
            return true;
        case WM_MOUSEACTIVATE:
            result = MA_NOACTIVATE;
            return true;
        case kTrayQueryLine:
            result = display_ ? display_->CurrentLine() : kUnset;
            return true;
        case kTrayQueryWord:
            result = display_ ? display_->CurrentWord() : kUnset;
            return true;
        case kTrayQueryMode:
            result = mode_;
            return true;
        case kTrayQueryLines:
            result = display_ && display_->Lyric() ? display_->Lyric()->GetLineSize() : 0;
            return true;
        default:
            return false;
    }
}

}  // namespace toval
