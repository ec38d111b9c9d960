#include "fSettings.h"

#include "base/cErrorLog.h"
#include "config/cConfig.h"

namespace toval {

namespace {

constexpr int kRowHeight = 26;
constexpr int kLabelWidth = 200;
constexpr int kEditWidth = 140;
constexpr int kColumnWidth = kLabelWidth + kEditWidth + 24;
constexpr int kMargin = 12;

enum ControlId : int { kCmdOk = IDOK, kCmdCancel = IDCANCEL, kCmdApply = 3, kIdFirstEdit = 100 };

// The caption of a setting or a button: the language's, else english (the
// setting's key itself when none is given).
std::u16string Label(cConfig& config, const std::u16string& name,
                     const std::u16string& english = {}) {
    const std::u16string text =
        config.Language().GetValue(u"objects", u".fSettings." + name + u".caption");
    return !text.empty() ? text : english.empty() ? name : english;
}

}  // namespace

fSettings::fSettings(cConfig& config, bool rightToLeft)
    : config_(config), rightToLeft_(rightToLeft), names_(cConfig::SettingsGroup()) {
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof metrics;
    SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
    font_ = CreateFontIndirectW(&metrics.lfMessageFont);
}

fSettings::~fSettings() {
    window_.Destroy();
    if (font_) DeleteObject(font_);
}

void fSettings::Show() {
    if (window_.Hwnd()) {
        SetForegroundWindow(window_.Hwnd());
        return;
    }
    const int rows = static_cast<int>((names_.size() + 1) / 2);
    const int width = 2 * kColumnWidth + 2 * kMargin;
    const int height = rows * kRowHeight + 3 * kMargin + 30;
    RECT r{0, 0, width, height};
    const DWORD style = WS_POPUP | WS_CAPTION | WS_SYSMENU;
    const DWORD ex = WS_EX_DLGMODALFRAME | (rightToLeft_ ? WS_EX_LAYOUTRTL : 0u);
    AdjustWindowRectEx(&r, style, FALSE, ex);
    std::u16string title = config_.Language().GetValue(u"objects", u".fSettings.caption");
    if (title.empty()) title = u"Toval settings";
    window_.Create(
        {.title = Wide(title),
         .style = style,
         .exStyle = ex,
         .x = (GetSystemMetrics(SM_CXSCREEN) - (r.right - r.left)) / 2,
         .y = (GetSystemMetrics(SM_CYSCREEN) - (r.bottom - r.top)) / 2,
         .width = r.right - r.left,
         .height = r.bottom - r.top,
         .className = L"TovalSettings"},
        [this](UINT m, WPARAM w, LPARAM l, LRESULT& res) { return OnMessage(m, w, l, res); });
    const HWND hwnd = window_.Hwnd();
    if (!hwnd) return;
    const auto control = [&](const wchar_t* cls, const wchar_t* text, DWORD style, int x, int y,
                             int w, int h, int id) {
        const HWND c = CreateWindowExW(cls == std::wstring(L"EDIT") ? WS_EX_CLIENTEDGE : 0, cls,
                                       text, WS_CHILD | WS_VISIBLE | style, x, y, w, h, hwnd,
                                       reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)),
                                       GetModuleHandleW(nullptr), nullptr);
        SendMessageW(c, WM_SETFONT, reinterpret_cast<WPARAM>(font_), FALSE);
        return c;
    };
    edits_.clear();
    for (size_t i = 0; i < names_.size(); ++i) {
        const int column = static_cast<int>(i) / rows, row = static_cast<int>(i) % rows;
        const int x = kMargin + column * kColumnWidth, y = kMargin + row * kRowHeight;
        control(L"STATIC", Wide(Label(config_, names_[i])), SS_LEFT | SS_CENTERIMAGE, x, y,
                kLabelWidth, kRowHeight - 4, -1);
        edits_.push_back(control(L"EDIT", L"", WS_TABSTOP | ES_AUTOHSCROLL, x + kLabelWidth, y,
                                 kEditWidth, kRowHeight - 4, kIdFirstEdit + static_cast<int>(i)));
    }
    const int buttonsY = height - kMargin - 26;
    control(L"BUTTON", Wide(Label(config_, u"cmdOk", u"OK")), WS_TABSTOP | BS_DEFPUSHBUTTON,
            width - kMargin - 3 * 90, buttonsY, 80, 26, kCmdOk);
    control(L"BUTTON", Wide(Label(config_, u"cmdCancel", u"Cancel")), WS_TABSTOP,
            width - kMargin - 2 * 90, buttonsY, 80, 26, kCmdCancel);
    control(L"BUTTON", Wide(Label(config_, u"cmdApply", u"&Apply")), WS_TABSTOP,
            width - kMargin - 90, buttonsY, 80, 26, kCmdApply);
    Fill();
    ShowWindow(hwnd, SW_SHOW);
    if (!edits_.empty()) SetFocus(edits_.front());
}

void fSettings::Fill() {
    for (size_t i = 0; i < edits_.size(); ++i)
        SetWindowTextW(edits_[i], Wide(config_.SettingText(names_[i])));
}

void fSettings::Apply() {
    Guarded("fSettings.Apply", [&] {
        for (size_t i = 0; i < edits_.size(); ++i) {
            const int length = GetWindowTextLengthW(edits_[i]);
            std::u16string text(static_cast<size_t>(length) + 1, u'\0');
            GetWindowTextW(edits_[i], reinterpret_cast<wchar_t*>(text.data()), length + 1);
            text.resize(static_cast<size_t>(length));
            config_.setSettingText(names_[i], text);
        }
        config_.Save(false);
        Fill();  // what was taken, as it was taken
    });
    if (onApplied) onApplied();
}

void fSettings::Close() {
    window_.Destroy();
    if (onClosed) onClosed();
}

bool fSettings::OnMessage(UINT message, WPARAM wParam, LPARAM, LRESULT& result) {
    result = 0;
    switch (message) {
        case WM_CTLCOLORSTATIC:
            result = reinterpret_cast<LRESULT>(GetSysColorBrush(COLOR_BTNFACE));
            return true;
        case WM_ERASEBKGND: {
            RECT r;
            GetClientRect(window_.Hwnd(), &r);
            FillRect(reinterpret_cast<HDC>(wParam), &r, GetSysColorBrush(COLOR_BTNFACE));
            result = 1;
            return true;
        }
        case WM_COMMAND:
            switch (LOWORD(wParam)) {
                case kCmdOk:
                    Apply();
                    Close();
                    return true;
                case kCmdApply:
                    Apply();
                    return true;
                case kCmdCancel:
                    Close();
                    return true;
                default:
                    return false;
            }
        case WM_CLOSE:
            Close();
            return true;
        default:
            return false;
    }
}

}  // namespace toval
