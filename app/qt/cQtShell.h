// The Shell port on Qt: message boxes, links through the desktop, the
// single-instance lock, and the per-user folders after the XDG rules
// (configuration under the config home, the lyric cache under the cache home;
// the error log goes under the state home, see StateFolder).
#pragma once

#include "platform/Shell.h"

namespace toval {

class cQtShell final : public Shell {
  public:
    // dataFolder: where the language files are, with a trailing separator.
    explicit cQtShell(std::u16string dataFolder);
    ~cQtShell() override;
    cQtShell(const cQtShell&) = delete;
    cQtShell& operator=(const cQtShell&) = delete;

    int32_t ShowMessage(const std::u16string& text, const std::u16string& title,
                        int32_t flags) override;
    void OpenLink(const std::u16string& url) override;
    void Sleep(int32_t ms) override;
    bool PrevInstance() override;
    std::u16string SpecialFolder(int32_t id) override;
    std::u16string ProgramFolder() override { return dataFolder_; }
    int32_t ScreenWidthTwips() override;
    int32_t ScreenHeightTwips() override;
    void DoEvents() override;

    // $XDG_STATE_HOME/toval (else ~/.local/state/toval), made when missing;
    // with a trailing separator.
    static std::u16string StateFolder();
    // The folder with the language files: installed beside the program
    // (../share/toval), else the source tree's lang folder.
    static std::u16string DefaultDataFolder();

    // Right to left: message boxes are mirrored.
    void setRightToLeft(bool rtl) { rightToLeft_ = rtl; }

  private:
    std::u16string dataFolder_;
    int lock_ = -1;  // the single-instance lock, held while the program runs
    bool rightToLeft_ = false;
};

}  // namespace toval
