// The Shell port on the desktop: message boxes, links, special folders, the
// program's folder and the single-instance test (a named mutex).
#pragma once

#include <windows.h>

#include "platform/Shell.h"

namespace toval {

class cWinShell final : public Shell {
  public:
    // mutexName: the single-instance mark; owner: the message boxes' owner.
    explicit cWinShell(const wchar_t* mutexName = L"Local\\TovalSingleInstance");
    ~cWinShell() override;
    cWinShell(const cWinShell&) = delete;
    cWinShell& operator=(const cWinShell&) = delete;

    int32_t ShowMessage(const std::u16string& text, const std::u16string& title,
                        int32_t flags) override;
    void OpenLink(const std::u16string& url) override;
    void Sleep(int32_t ms) override;
    bool PrevInstance() override;
    std::u16string SpecialFolder(int32_t id) override;
    std::u16string ProgramFolder() override;
    int32_t ScreenWidthTwips() override;
    int32_t ScreenHeightTwips() override;
    void DoEvents() override;

    // Message boxes read right to left (a right-to-left language).
    void setRightToLeft(bool rtl) { rightToLeft_ = rtl; }
    void setOwner(HWND owner) { owner_ = owner; }

  private:
    const wchar_t* mutexName_;
    HANDLE mutex_ = nullptr;
    HWND owner_ = nullptr;
    bool rightToLeft_ = false;
};

}  // namespace toval
