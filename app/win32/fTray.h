// The display form fTray in both modes. Window mode: a free, layered,
// rounded window, moved and resized with the mouse, its geometry kept in
// twips. Task-bar mode: a child of the task bar beside the notification
// area, refitted by its timers; without a task bar it falls back to window
// mode. Either way it shows the part of the lyric's off-screen picture around
// the current line; cDisplay decides what is painted in which colour.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

#include "cGdiSurface.h"
#include "cWinTimer.h"
#include "cWindow.h"
#include "config/cSettings.h"

namespace toval {

class cDisplay;

// Messages that tools and tests may send to the display window.
inline constexpr UINT kTrayQueryLine = WM_APP + 0x40;   // the current line, or kUnset
inline constexpr UINT kTrayQueryWord = WM_APP + 0x41;   // the current word, or kUnset
inline constexpr UINT kTrayQueryMode = WM_APP + 0x42;   // 1 task bar, 2 window, 0 hidden
inline constexpr UINT kTrayQueryLines = WM_APP + 0x43;  // lines of the shown lyric
inline constexpr wchar_t kTrayClass[] = L"TovalDisplay";

class fTray {
  public:
    fTray(cGlobals& globals, cGdiSurface& surface);
    ~fTray();
    fTray(const fTray&) = delete;
    fTray& operator=(const fTray&) = delete;

    // Takes over the display's window events; the display must outlive this
    // form or be detached (Attach(nullptr)) first.
    void Attach(cDisplay* display);
    HWND Hwnd() const { return window_.Hwnd(); }
    int Mode() const { return mode_; }
    // The caption from the language file.
    void setCaption(const std::u16string& caption) { caption_ = caption; }

    // The right mouse button: the main menu at the cursor.
    std::function<void()> onContextMenu;

  private:
    void setMode(int mode);
    bool AttachToTaskBar();
    void ShowAsWindow();
    void Hide();
    void Refit();
    void ApplyFont();
    void Scroll(const cRect& line);
    void Redrawn(const cRect& whole);
    void Refreshed();
    void UpdateText();
    void StoreGeometry();
    bool OnMessage(UINT message, WPARAM, LPARAM lParam, LRESULT& result);
    void Paint();
    int Dpi() const;

    cGlobals& globals_;
    cGdiSurface& surface_;
    cDisplay* display_ = nullptr;
    cWindow window_;
    cWinTimer refit_;
    int fastTicks_ = 0;
    int mode_ = 0;
    // The picture's point shown at the window's top left corner.
    int viewLeft_ = 0, viewTop_ = 0;
    int pictureWidth_ = 0;
    int shownLine_ = kUnset;
    bool redrawing_ = false;
    std::u16string caption_ = u"Toval";
};

}  // namespace toval
