// One shape for every window of the program: creation arguments, one message
// handler, and one static window procedure that finds the object at
// WM_NCCREATE and hands it every message.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

namespace toval {

class cWindow {
  public:
    struct Args {
        const wchar_t* title = L"";
        DWORD style = 0;
        DWORD exStyle = 0;
        int x = CW_USEDEFAULT, y = CW_USEDEFAULT, width = 0, height = 0;
        HWND parent = nullptr;  // HWND_MESSAGE for a message-only window
        const wchar_t* className = L"TovalWindow";
        int background = 0;  // the class's system colour + 1 (COLOR_BTNFACE + 1), 0 none
    };
    // A handler returns true when it handled the message, with its result.
    using Handler =
        std::function<bool(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result)>;

    cWindow() = default;
    virtual ~cWindow();
    cWindow(const cWindow&) = delete;
    cWindow& operator=(const cWindow&) = delete;

    bool Create(const Args& args, Handler handler);
    void Destroy();
    HWND Hwnd() const { return hwnd_; }

  private:
    static LRESULT CALLBACK Procedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

    HWND hwnd_ = nullptr;
    Handler handler_;
};

// Processes the pending messages of this thread once.
void PumpMessages();
// Runs the message loop until done() holds or limitMs have passed; done() is
// asked after every message. False on time-out.
bool PumpUntil(const std::function<bool()>& done, int limitMs);

// The window's dots per inch: its monitor's where the system knows them
// (Windows 10), else the screen's.
int WindowDpi(HWND hwnd);
// The system's message font at dpi; the caller deletes it.
HFONT MessageFont(int dpi);
// A dialog-like window of client size width x height (pixels) centred over
// owner; title must outlive the call to Create.
cWindow::Args DialogArgs(HWND owner, const std::u16string& title, int width, int height,
                         bool rightToLeft, const wchar_t* className);
// A child control with the font, placed later (MoveWindow).
HWND AddControl(HWND parent, const wchar_t* className, const std::u16string& text, DWORD style,
                int id, HFONT font, DWORD exStyle = 0);
std::u16string ControlText(HWND control);
// A modal turn of the message loop for dialog, its owner disabled meanwhile,
// until done() holds or the dialog is gone. Tab, Enter and Escape work as in
// a dialog box.
void RunModal(HWND dialog, HWND owner, const std::function<bool()>& done);

// UTF-16 <-> the system's ANSI code page, for the A functions.
std::string ToAnsi(const std::u16string& text);
std::u16string FromAnsi(const std::string& text);
inline const wchar_t* Wide(const std::u16string& text) {
    return reinterpret_cast<const wchar_t*>(text.c_str());
}

}  // namespace toval
