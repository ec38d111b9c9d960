#include "cWindow.h"

#include <string>

namespace toval {

namespace {

void RegisterClassOnce(const wchar_t* name, int background) {
    WNDCLASSEXW existing{};
    existing.cbSize = sizeof existing;
    if (GetClassInfoExW(GetModuleHandleW(nullptr), name, &existing)) return;
    WNDCLASSEXW wc{};
    wc.cbSize = sizeof wc;
    wc.style = CS_DBLCLKS;
    wc.lpfnWndProc = DefWindowProcW;
    wc.hInstance = GetModuleHandleW(nullptr);
    wc.hCursor = LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_ARROW));
    wc.hIcon = LoadIconW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(1));
    wc.hbrBackground = reinterpret_cast<HBRUSH>(INT_PTR{background});
    wc.lpszClassName = name;
    RegisterClassExW(&wc);
}

}  // namespace

cWindow::~cWindow() {
    Destroy();
}

bool cWindow::Create(const Args& args, Handler handler) {
    Destroy();
    handler_ = std::move(handler);
    RegisterClassOnce(args.className, args.background);
    // The class procedure is the default one; each window gets ours through
    // the creation parameter, so that one class can serve every window.
    hwnd_ = CreateWindowExW(args.exStyle, args.className, args.title, args.style, args.x, args.y,
                            args.width, args.height, args.parent, nullptr,
                            GetModuleHandleW(nullptr), nullptr);
    if (!hwnd_) return false;
    SetWindowLongPtrW(hwnd_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    SetWindowLongPtrW(hwnd_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&cWindow::Procedure));
    return true;
}

void cWindow::Destroy() {
    if (!hwnd_) return;
    const HWND hwnd = hwnd_;
    hwnd_ = nullptr;
    // From here on the window's messages no longer reach this object.
    SetWindowLongPtrW(hwnd, GWLP_USERDATA, 0);
    DestroyWindow(hwnd);
}

LRESULT CALLBACK cWindow::Procedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* self = reinterpret_cast<cWindow*>(GetWindowLongPtrW(hwnd, GWLP_USERDATA));
    if (self && self->handler_) {
        // A copy: the handler may destroy this object and its own function.
        const Handler handler = self->handler_;
        LRESULT result = 0;
        if (handler(message, wParam, lParam, result)) return result;
    }
    return DefWindowProcW(hwnd, message, wParam, lParam);
}

void PumpMessages() {
    MSG msg;
    while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
        if (msg.message == WM_QUIT) {
            PostQuitMessage(static_cast<int>(msg.wParam));
            return;
        }
        TranslateMessage(&msg);
        DispatchMessageW(&msg);
    }
}

bool PumpUntil(const std::function<bool()>& done, int limitMs) {
    const ULONGLONG end = GetTickCount64() + static_cast<ULONGLONG>(limitMs < 0 ? 0 : limitMs);
    for (;;) {
        if (done()) return true;
        const ULONGLONG now = GetTickCount64();
        if (now >= end) return false;
        // done() may also turn true without a message of this thread (another
        // process's window changed): look again every few milliseconds.
        const ULONGLONG wait = end - now < 5 ? end - now : 5;
        MsgWaitForMultipleObjects(0, nullptr, FALSE, static_cast<DWORD>(wait), QS_ALLINPUT);
        MSG msg;
        while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) {
            TranslateMessage(&msg);
            DispatchMessageW(&msg);
            if (done()) return true;
        }
    }
}

int WindowDpi(HWND hwnd) {
    using GetDpiForWindowFn = UINT(WINAPI*)(HWND);
    static const auto getDpi = reinterpret_cast<GetDpiForWindowFn>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleW(L"user32.dll"), "GetDpiForWindow")));
    if (getDpi && hwnd)
        if (const UINT dpi = getDpi(hwnd); dpi > 0) return static_cast<int>(dpi);
    const HDC screen = GetDC(nullptr);
    const int dpi = GetDeviceCaps(screen, LOGPIXELSY);
    ReleaseDC(nullptr, screen);
    return dpi > 0 ? dpi : 96;
}

HFONT MessageFont(int dpi) {
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof metrics;
    SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
    // The metrics are those of the screen's dpi; a monitor may have another.
    const HDC screen = GetDC(nullptr);
    const int screenDpi = GetDeviceCaps(screen, LOGPIXELSY);
    ReleaseDC(nullptr, screen);
    metrics.lfMessageFont.lfHeight =
        MulDiv(metrics.lfMessageFont.lfHeight, dpi, screenDpi > 0 ? screenDpi : 96);
    return CreateFontIndirectW(&metrics.lfMessageFont);
}

cWindow::Args DialogArgs(HWND owner, const std::u16string& title, int width, int height,
                         bool rightToLeft, const wchar_t* className) {
    const DWORD style = WS_POPUP | WS_CAPTION | WS_SYSMENU;
    const DWORD ex = WS_EX_DLGMODALFRAME | (rightToLeft ? WS_EX_LAYOUTRTL : 0u);
    RECT r{0, 0, width, height};
    AdjustWindowRectEx(&r, style, FALSE, ex);
    RECT o{0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
    if (owner) GetWindowRect(owner, &o);
    const int w = r.right - r.left, h = r.bottom - r.top;
    return {.title = Wide(title),
            .style = style,
            .exStyle = ex,
            .x = (o.left + o.right - w) / 2,
            .y = (o.top + o.bottom - h) / 2,
            .width = w,
            .height = h,
            .parent = owner,
            .className = className,
            .background = COLOR_BTNFACE + 1};
}

HWND AddControl(HWND parent, const wchar_t* className, const std::u16string& text, DWORD style,
                int id, HFONT font, DWORD exStyle) {
    const HWND control =
        CreateWindowExW(exStyle, className, Wide(text), WS_CHILD | style, 0, 0, 0, 0, parent,
                        reinterpret_cast<HMENU>(INT_PTR{id}), GetModuleHandleW(nullptr), nullptr);
    SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    return control;
}

std::u16string ControlText(HWND control) {
    const int length = GetWindowTextLengthW(control);
    std::u16string text(static_cast<size_t>(length > 0 ? length : 0) + 1, u'\0');
    const int n = GetWindowTextW(control, reinterpret_cast<wchar_t*>(text.data()),
                                 static_cast<int>(text.size()));
    text.resize(static_cast<size_t>(n > 0 ? n : 0));
    return text;
}

void RunModal(HWND dialog, HWND owner, const std::function<bool()>& done) {
    if (owner) EnableWindow(owner, FALSE);
    MSG msg;
    while (!done() && IsWindow(dialog)) {
        const BOOL got = GetMessageW(&msg, nullptr, 0, 0);
        if (got <= 0) {
            // The program ends: the outer loop must see the quit too.
            if (got == 0) PostQuitMessage(static_cast<int>(msg.wParam));
            break;
        }
        if (IsDialogMessageW(dialog, &msg)) continue;
        TranslateMessage(&msg);
        DispatchMessageW(&msg);
    }
    if (owner) {
        EnableWindow(owner, TRUE);
        SetActiveWindow(owner);
    }
}

std::string ToAnsi(const std::u16string& text) {
    if (text.empty()) return {};
    const int n = WideCharToMultiByte(CP_ACP, 0, Wide(text), static_cast<int>(text.size()), nullptr,
                                      0, nullptr, nullptr);
    std::string out(static_cast<size_t>(n > 0 ? n : 0), '\0');
    if (n > 0)
        WideCharToMultiByte(CP_ACP, 0, Wide(text), static_cast<int>(text.size()), out.data(), n,
                            nullptr, nullptr);
    return out;
}

std::u16string FromAnsi(const std::string& text) {
    if (text.empty()) return {};
    const int n =
        MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
    std::u16string out(static_cast<size_t>(n > 0 ? n : 0), u'\0');
    if (n > 0)
        MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()),
                            reinterpret_cast<wchar_t*>(out.data()), n);
    return out;
}

}  // namespace toval
