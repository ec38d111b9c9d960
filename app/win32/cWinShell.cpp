#include "cWinShell.h"

#include <shellapi.h>
#include <shlobj.h>

#include "cWindow.h"

namespace toval {

cWinShell::cWinShell(const wchar_t* mutexName) : mutexName_(mutexName) {}

cWinShell::~cWinShell() {
    if (mutex_) CloseHandle(mutex_);
}

int32_t cWinShell::ShowMessage(const std::u16string& text, const std::u16string& title,
                               int32_t flags) {
    UINT type = static_cast<UINT>(flags) | MB_SETFOREGROUND;
    if (rightToLeft_) type |= MB_RTLREADING | MB_RIGHT;
    return MessageBoxW(owner_, Wide(text), Wide(title), type);
}

void cWinShell::OpenLink(const std::u16string& url) {
    ShellExecuteA(nullptr, "open", ToAnsi(url).c_str(), nullptr, nullptr, SW_SHOWNORMAL);
}

void cWinShell::Sleep(int32_t ms) {
    ::Sleep(ms < 0 ? 0 : static_cast<DWORD>(ms));
}

bool cWinShell::PrevInstance() {
    if (!mutex_) mutex_ = CreateMutexW(nullptr, FALSE, mutexName_);
    return mutex_ && GetLastError() == ERROR_ALREADY_EXISTS;
}

std::u16string cWinShell::SpecialFolder(int32_t id) {
    LPITEMIDLIST list = nullptr;
    if (SHGetSpecialFolderLocation(nullptr, id, &list) != S_OK || !list) return {};
    char path[MAX_PATH] = {};
    const BOOL found = SHGetPathFromIDListA(list, path);
    CoTaskMemFree(list);
    if (!found) return {};
    std::u16string folder = FromAnsi(path);
    while (!folder.empty() && (folder.back() == u'\\' || folder.back() == u'/'))
        folder.pop_back();
    return folder;
}

std::u16string cWinShell::ProgramFolder() {
    std::u16string path(32768, u'\0');
    const DWORD n = GetModuleFileNameW(nullptr, reinterpret_cast<wchar_t*>(path.data()),
                                       static_cast<DWORD>(path.size()));
    path.resize(n < path.size() ? n : 0);
    const size_t slash = path.find_last_of(u"\\/");
    return slash == std::u16string::npos ? std::u16string() : path.substr(0, slash + 1);
}

int32_t cWinShell::ScreenWidthTwips() {
    return GetSystemMetrics(SM_CXSCREEN) * 15;
}

int32_t cWinShell::ScreenHeightTwips() {
    return GetSystemMetrics(SM_CYSCREEN) * 15;
}

void cWinShell::DoEvents() {
    PumpMessages();
}

}  // namespace toval
