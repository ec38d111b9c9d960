// What the program needs of the desktop shell: message boxes, links, sleeping,
// the single-instance test, per-user special folders, the program's folder,
// the screen size and one turn of the message loop.
// Win32: MessageBoxW, ShellExecuteA, SHGetSpecialFolderLocation, ...;
// Qt: QMessageBox, QDesktopServices, XDG folders; tests: a recording fake.
#pragma once

#include <cstdint>
#include <string>

namespace toval {

// Buttons and icon of a message box, combined by OR (the Windows MB_ values).
enum MessageBoxFlags : int32_t {
    kMbOk = 0x0,
    kMbOkCancel = 0x1,
    kMbYesNo = 0x4,
    kMbIconError = 0x10,
    kMbIconQuestion = 0x20,
    kMbIconExclamation = 0x30,
    kMbIconInformation = 0x40,
};

// The button that closed a message box (the Windows ID values).
enum MessageBoxResult : int32_t {
    kIdOk = 1,
    kIdCancel = 2,
    kIdYes = 6,
    kIdNo = 7,
};

// Special folder ids the program asks for (the Windows CSIDL values).
inline constexpr int32_t kFolderAppData = 26;       // roaming: config.ini
inline constexpr int32_t kFolderLocalAppData = 28;  // local: the lyric cache

class Shell {
  public:
    virtual ~Shell() = default;

    // Shows a modal message box; texts come already resolved from the language.
    virtual int32_t ShowMessage(const std::u16string& text, const std::u16string& title,
                                int32_t flags) = 0;
    // Opens a link with the shell's "open" verb.
    virtual void OpenLink(const std::u16string& url) = 0;
    virtual void Sleep(int32_t ms) = 0;
    // True when another instance of the program already runs.
    virtual bool PrevInstance() = 0;
    // The system's folder for a special folder id, without "Toval" appended and
    // without a trailing separator; empty when the system has none.
    virtual std::u16string SpecialFolder(int32_t id) = 0;
    // The folder of the executable, with a trailing separator.
    virtual std::u16string ProgramFolder() = 0;
    // Screen size in twips (15 per pixel at 96 dpi).
    virtual int32_t ScreenWidthTwips() = 0;
    virtual int32_t ScreenHeightTwips() = 0;
    // Processes the pending window messages once.
    virtual void DoEvents() = 0;
};

}  // namespace toval
