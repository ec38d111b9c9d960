// The wire to the player plug-in: commands go to the plug-in's window as
// WM_USER messages (the command in lParam, its argument in wParam) and the
// call's result is the answer; the plug-in's notices and track tags arrive on
// the program's hidden handler window, whose window procedure is hooked.
// Win32: FindWindowA, SendMessageA, SetWindowLongA(GWL_WNDPROC); Linux: an
// MPRIS bridge that answers the same commands; tests: a scripted plug-in.
#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

namespace toval {

// Message numbers of the protocol (the Windows values).
inline constexpr uint32_t kWmUser = 0x400;
inline constexpr uint32_t kWmCopyData = 0x4A;

// The title of the plug-in's window.
inline constexpr char kPluginWindowTitle[] = "TovalPlugin";

class PluginChannel {
  public:
    virtual ~PluginChannel() = default;

    // Sends command (lParam) with argument (wParam) to the window and returns
    // the result of the call; 0 when the window does not exist or does not answer.
    virtual int32_t SendCommand(int32_t window, int32_t command, int32_t argument) = 0;

    // A top-level window titled "TovalPlugin" (any class); 0 when there is none.
    virtual int32_t FindPluginWindow() = 0;

    // Hooks the handler window's procedure; every message that arrives there is
    // first offered to onMessage. RemoveHook puts the old procedure back.
    virtual void InstallHook() = 0;
    virtual void RemoveHook() = 0;
    // The handler window's handle (sent to the plug-in on wake-up).
    virtual int32_t HandlerWindow() = 0;

    // Lets WM_USER through the user-interface privilege isolation. Systems
    // without that isolation simply do nothing.
    virtual void AllowUserMessages() = 0;

    // A message that reached the handler window. data is the block of a
    // WM_COPYDATA message (cbData bytes at lpData), empty for other messages.
    // Returns true when the message was handled; result is then the answer.
    std::function<bool(uint32_t message, int64_t wParam, int64_t lParam, std::string_view data,
                       int64_t& result)>
        onMessage;
};

}  // namespace toval
