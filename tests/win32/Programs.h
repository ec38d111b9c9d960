// toval.exe and the demo player as real processes, for the end-to-end tests:
// starting them with a command line, finding their windows, and the messages
// that drive the demo player.
#pragma once

#include <windows.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "cWindow.h"

namespace toval::test {

// The demo player's test messages (see app/demo-player/main.cpp).
inline constexpr UINT kDemoSeek = WM_APP + 2;
inline constexpr UINT kDemoTrack = WM_APP + 3;
inline constexpr UINT kDemoNotice = WM_APP + 4;
inline constexpr UINT kDemoHandler = WM_APP + 5;
inline constexpr UINT kDemoPause = WM_APP + 6;
inline constexpr UINT kDemoPosition = WM_APP + 7;
inline constexpr UINT kDemoSendGarbage = WM_APP + 8;

// A build path (a Linux path when built on Linux) as Wine's Z: drive sees it.
inline std::wstring WindowsPath(const std::string& path) {
    std::wstring out;
    if (!path.empty() && path[0] == '/') out = L"Z:";
    for (char c : path)
        out.push_back(c == '/' ? L'\\' : static_cast<wchar_t>(c));
    return out;
}

inline std::wstring Quoted(const std::wstring& text) {
    return L"\"" + text + L"\"";
}

// A child process, ended with the object if it still runs.
class Process {
  public:
    Process(const std::wstring& exe, const std::wstring& arguments) {
        std::wstring line = Quoted(exe) + (arguments.empty() ? L"" : L" " + arguments);
        STARTUPINFOW si{};
        si.cb = sizeof si;
        if (CreateProcessW(exe.c_str(), line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                           &si, &info_))
            CloseHandle(info_.hThread);
        else
            info_ = {};
    }
    ~Process() {
        if (!info_.hProcess) return;
        if (Running()) {
            TerminateProcess(info_.hProcess, 1);
            WaitForSingleObject(info_.hProcess, 5000);
        }
        CloseHandle(info_.hProcess);
    }
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    DWORD Id() const { return info_.dwProcessId; }
    bool Running() const {
        return info_.hProcess && WaitForSingleObject(info_.hProcess, 0) == WAIT_TIMEOUT;
    }
    // Waits for the end; false when it still runs after ms.
    bool WaitForExit(DWORD ms) const {
        return info_.hProcess && WaitForSingleObject(info_.hProcess, ms) == WAIT_OBJECT_0;
    }
    // A visible or hidden top-level window of the process with this class.
    HWND Window(const wchar_t* className) const {
        struct Search {
            DWORD pid;
            const wchar_t* cls;
            HWND found;
        } search{info_.dwProcessId, className, nullptr};
        // A named callback: a lambda has no stdcall conversion on 32-bit Windows.
        struct Visit {
            static BOOL CALLBACK Each(HWND hwnd, LPARAM param) {
                auto* s = reinterpret_cast<Search*>(param);
                DWORD pid = 0;
                GetWindowThreadProcessId(hwnd, &pid);
                wchar_t cls[256] = {};
                GetClassNameW(hwnd, cls, 256);
                if (pid != s->pid || std::wstring(cls) != s->cls) return TRUE;
                s->found = hwnd;
                return FALSE;
            }
        };
        EnumWindows(&Visit::Each, reinterpret_cast<LPARAM>(&search));
        return search.found;
    }

  private:
    PROCESS_INFORMATION info_{};
};

inline std::u16string WindowText(HWND hwnd) {
    const LRESULT length = SendMessageW(hwnd, WM_GETTEXTLENGTH, 0, 0);
    std::u16string text(static_cast<size_t>(length > 0 ? length : 0) + 1, u'\0');
    const LRESULT n =
        SendMessageW(hwnd, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
    text.resize(static_cast<size_t>(n > 0 ? n : 0));
    return text;
}

// With TOVAL_SHOTS naming a folder: the whole screen as <name>.bmp there.
inline void Screenshot(const char* name) {
    const char* folder = std::getenv("TOVAL_SHOTS");
    if (!folder || !*folder) return;
    Sleep(300);  // the windows just shown paint first
    const int width = GetSystemMetrics(SM_CXSCREEN), height = GetSystemMetrics(SM_CYSCREEN);
    const HDC screen = GetDC(nullptr);
    const HDC memory = CreateCompatibleDC(screen);
    const HBITMAP bitmap = CreateCompatibleBitmap(screen, width, height);
    const HGDIOBJ old = SelectObject(memory, bitmap);
    BitBlt(memory, 0, 0, width, height, screen, 0, 0, SRCCOPY);
    SelectObject(memory, old);
    BITMAPINFOHEADER info{sizeof info, width, height, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
    std::string pixels(static_cast<size_t>((width * 3 + 3) / 4 * 4 * height), '\0');
    GetDIBits(memory, bitmap, 0, static_cast<UINT>(height), pixels.data(),
              reinterpret_cast<BITMAPINFO*>(&info), DIB_RGB_COLORS);
    const DWORD offset = sizeof(BITMAPFILEHEADER) + sizeof info;
    const BITMAPFILEHEADER file{0x4D42, static_cast<DWORD>(offset + pixels.size()), 0, 0, offset};
    std::ofstream out(std::filesystem::path(WindowsPath(folder)) / (std::string(name) + ".bmp"),
                      std::ios::binary);
    out.write(reinterpret_cast<const char*>(&file), sizeof file);
    out.write(reinterpret_cast<const char*>(&info), sizeof info);
    out << pixels;
    DeleteObject(bitmap);
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
}

// Waits (pumping this thread's messages) until done() holds.
inline bool Eventually(const std::function<bool()>& done, int limitMs = 10000) {
    return PumpUntil(done, limitMs);
}

}  // namespace toval::test
