// toval.exe: the lyric display beside a media player with the Toval plug-in.
#include <windows.h>

#include <objbase.h>

#include <string>

#include "fMain.h"

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR commandLine, int) {
    // The command line as the program reads it: the text after the program's
    // name, without the blanks around it.
    std::u16string command = commandLine ? reinterpret_cast<const char16_t*>(commandLine) : u"";
    const size_t first = command.find_first_not_of(u" \t");
    const size_t last = command.find_last_not_of(u" \t");
    command = first == std::u16string::npos ? u"" : command.substr(first, last - first + 1);

    // The file dialogs browse the shell's folders, which need COM.
    const HRESULT com = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE);
    toval::fMain main;
    if (main.Form_Load(command)) {
        MSG msg;
        while (GetMessageW(&msg, nullptr, 0, 0) > 0) {
            if (main.DialogMessage(msg)) continue;
            TranslateMessage(&msg);
            DispatchMessageW(&msg);
        }
    }
    if (SUCCEEDED(com)) CoUninitialize();
    return 0;
}
