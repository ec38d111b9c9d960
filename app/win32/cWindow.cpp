#include "cWindow.h"

#include <string>

namespace toval {

namespace {

void RegisterClassOnce(const wchar_t* name) {
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
    RegisterClassOnce(args.className);
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
