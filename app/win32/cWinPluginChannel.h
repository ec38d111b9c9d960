// The PluginChannel port on window messages: commands go to the plug-in's
// window with SendMessageA; the plug-in's messages arrive on the hidden
// handler window fHandler, whose procedure is replaced (SetWindowLongA with
// GWL_WNDPROC) by a hook that offers them to onMessage first and passes the
// rest on with CallWindowProcA. One hook per process, like the handler.
#pragma once

#include <windows.h>

#include "platform/PluginChannel.h"

namespace toval {

class cWinPluginChannel final : public PluginChannel {
  public:
    // handler: the hidden window fHandler (it must outlive the hook).
    explicit cWinPluginChannel(HWND handler);
    ~cWinPluginChannel() override;
    cWinPluginChannel(const cWinPluginChannel&) = delete;
    cWinPluginChannel& operator=(const cWinPluginChannel&) = delete;

    int32_t SendCommand(int32_t window, int32_t command, int32_t argument) override;
    int32_t FindPluginWindow() override;
    void InstallHook() override;
    void RemoveHook() override;
    int32_t HandlerWindow() override;
    void AllowUserMessages() override;

    // Window handles travel as 32-bit numbers (the protocol's width); the
    // system keeps them within 32 bits and sign-extends them on 64-bit Windows.
    static HWND ToHwnd(int32_t window);
    static int32_t FromHwnd(HWND window);

  private:
    static LRESULT CALLBACK Hook(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

    HWND handler_;
    WNDPROC old_ = nullptr;
};

}  // namespace toval
