#include "fEditInfo.h"

#include "cWindow.h"
#include "fEdit.h"

namespace toval {

namespace {

// The four arrow keys as on a keyboard: up above left, down and right. Each
// key is a rounded cap with a triangle pointing its way; the ones used for
// timing (left, right, down) are drawn in the selection colour.
void PaintKeys(HDC dc, int left, int top, int size) {
    struct Key {
        int column, row;
        POINT tip, base1, base2;  // the triangle in eighths of the cap
    };
    constexpr Key kKeys[] = {{1, 0, {4, 2}, {2, 6}, {6, 6}},
                             {0, 1, {2, 4}, {6, 2}, {6, 6}},
                             {1, 1, {4, 6}, {2, 2}, {6, 2}},
                             {2, 1, {6, 4}, {2, 2}, {2, 6}}};
    const HBRUSH cap = GetSysColorBrush(COLOR_WINDOW);
    const HBRUSH used = GetSysColorBrush(COLOR_HIGHLIGHT);
    const HBRUSH idle = GetSysColorBrush(COLOR_GRAYTEXT);
    const int step = size + size / 8;
    for (const Key& key : kKeys) {
        const int x = left + key.column * step, y = top + key.row * step;
        SelectObject(dc, cap);
        RoundRect(dc, x, y, x + size, y + size, size / 4, size / 4);
        const auto at = [&](POINT p) { return POINT{x + p.x * size / 8, y + p.y * size / 8}; };
        const POINT triangle[] = {at(key.tip), at(key.base1), at(key.base2)};
        SelectObject(dc, key.row == 0 ? idle : used);
        Polygon(dc, triangle, 3);
    }
}

}  // namespace

void fEditInfo::OpenForm(HWND owner, const std::u16string& text, cConfig& config, bool rightToLeft,
                         int dpi) {
    const auto px = [&](int v) { return MulDiv(v, dpi, 96); };
    const std::u16string title = ObjectCaption(config, u".fEditInfo", u"How to time a lyric");
    const HFONT font = MessageFont(dpi);
    bool done = false;
    cWindow window;
    window.Create(
        DialogArgs(owner, title, px(440), px(330), rightToLeft, L"TovalEditInfo"),
        [&](UINT message, WPARAM wParam, LPARAM, LRESULT&) {
            if (message == WM_PAINT) {
                PAINTSTRUCT ps;
                const HDC dc = BeginPaint(window.Hwnd(), &ps);
                PaintKeys(dc, px(20), px(200), px(36));
                EndPaint(window.Hwnd(), &ps);
                return true;
            }
            if (message == WM_CLOSE ||
                (message == WM_COMMAND && (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL)))
                done = true;
            return message == WM_CLOSE || message == WM_COMMAND;
        });
    const HWND hwnd = window.Hwnd();
    MoveWindow(AddControl(hwnd, L"STATIC", text, WS_VISIBLE | SS_LEFT, 1, font), px(12), px(12),
               px(416), px(180), FALSE);
    MoveWindow(
        AddControl(hwnd, L"BUTTON", u"OK", WS_VISIBLE | WS_TABSTOP | BS_DEFPUSHBUTTON, IDOK, font),
        px(340), px(292), px(88), px(26), FALSE);
    ShowWindow(hwnd, SW_SHOW);
    UpdateWindow(hwnd);
    SetFocus(GetDlgItem(hwnd, IDOK));
    RunModal(hwnd, owner, [&] { return done; });
    window.Destroy();
    DeleteObject(font);
}

}  // namespace toval
