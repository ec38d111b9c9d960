#include "cWinPluginChannel.h"

#include <string_view>

namespace toval {

namespace {
// The channel whose hook is installed (the one fHandler of the process).
cWinPluginChannel* g_hooked = nullptr;
WNDPROC g_oldProc = nullptr;
}  // namespace

cWinPluginChannel::cWinPluginChannel(HWND handler) : handler_(handler) {}

cWinPluginChannel::~cWinPluginChannel() {
    RemoveHook();
}

HWND cWinPluginChannel::ToHwnd(int32_t window) {
    return reinterpret_cast<HWND>(static_cast<intptr_t>(window));
}

int32_t cWinPluginChannel::FromHwnd(HWND window) {
    return static_cast<int32_t>(reinterpret_cast<intptr_t>(window));
}

int32_t cWinPluginChannel::SendCommand(int32_t window, int32_t command, int32_t argument) {
    // A window that is gone, or vanishes during the call, answers 0.
    const HWND target = ToHwnd(window);
    if (!target || !IsWindow(target)) return 0;
    const LRESULT answer =
        SendMessageA(target, WM_USER, static_cast<WPARAM>(static_cast<intptr_t>(argument)),
                     static_cast<LPARAM>(command));
    return static_cast<int32_t>(answer);
}

int32_t cWinPluginChannel::FindPluginWindow() {
    return FromHwnd(FindWindowA(nullptr, kPluginWindowTitle));
}

int32_t cWinPluginChannel::HandlerWindow() {
    return FromHwnd(handler_);
}

void cWinPluginChannel::InstallHook() {
    if (old_ || !handler_) return;
    g_hooked = this;
    old_ = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrA(handler_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Hook)));
    g_oldProc = old_;
}

void cWinPluginChannel::RemoveHook() {
    if (!old_) return;
    if (IsWindow(handler_))
        SetWindowLongPtrA(handler_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(old_));
    old_ = nullptr;
    if (g_hooked == this) g_hooked = nullptr;
}

void cWinPluginChannel::AllowUserMessages() {
    // Absent before Windows Vista: looked up at run time, and its absence is fine.
    using Filter = BOOL(WINAPI*)(UINT, DWORD);
    const HMODULE user32 = GetModuleHandleW(L"user32.dll");
    if (!user32) return;
    const auto filter = reinterpret_cast<Filter>(
        reinterpret_cast<void*>(GetProcAddress(user32, "ChangeWindowMessageFilter")));
    if (filter) filter(WM_USER, 1 /* MSGFLT_ADD */);
}

LRESULT CALLBACK cWinPluginChannel::Hook(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    cWinPluginChannel* channel = g_hooked;
    if (channel && channel->onMessage && (message == WM_USER || message == WM_COPYDATA)) {
        std::string_view data;
        if (message == WM_COPYDATA && lParam) {
            const auto* header = reinterpret_cast<const COPYDATASTRUCT*>(lParam);
            if (header->lpData && header->cbData > 0)
                data = std::string_view(static_cast<const char*>(header->lpData), header->cbData);
        }
        const auto handler = channel->onMessage;
        int64_t result = 0;
        if (handler(message, static_cast<int64_t>(wParam), static_cast<int64_t>(lParam), data,
                    result))
            return static_cast<LRESULT>(result);
    }
    const WNDPROC old = channel ? channel->old_ : g_oldProc;
    return old ? CallWindowProcA(old, hwnd, message, wParam, lParam)
               : DefWindowProcA(hwnd, message, wParam, lParam);
}

}  // namespace toval
