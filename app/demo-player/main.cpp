// The demo player: a stand-in for a media player with the Toval plug-in
// inside. It owns the window titled "TovalPlugin", answers the program's seven
// commands, sends notices 1 (stopped), 2 (paused) and 3 (closing), and
// announces each track with the 3596-byte tag record. The playlist is
// virtual: its position runs on a clock, nothing is played aloud.
//
//   demo-player.exe [--paused] [--quit-after SECONDS] [FILE ARTIST ALBUM TITLE LENGTH_MS]...
//
// Without tracks it plays harbour.flac beside itself. Keys: Space play/pause,
// S stop, Left/Right seek 5 s, Home start, N/P next/previous track, Esc quit.
// Tests drive it with the messages kDemo... below.
#include <windows.h>

#include <shellapi.h>

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace {

// Messages a test (or a script) sends to the demo window.
constexpr UINT kDemoSendRecord = WM_APP + 1;   // wParam: record size in bytes, lParam: track
constexpr UINT kDemoSeek = WM_APP + 2;         // wParam: position in ms
constexpr UINT kDemoTrack = WM_APP + 3;        // wParam: playlist index
constexpr UINT kDemoNotice = WM_APP + 4;       // wParam: notice number
constexpr UINT kDemoHandler = WM_APP + 5;      // answer: the registered handler window
constexpr UINT kDemoPause = WM_APP + 6;        // toggles play and pause
constexpr UINT kDemoPosition = WM_APP + 7;     // answer: the position in ms
constexpr UINT kDemoSendGarbage = WM_APP + 8;  // wParam: size of a record of 0xFF bytes
constexpr UINT kSendTagLater = WM_APP + 20;

constexpr size_t kRecordSize = 3596;
constexpr UINT_PTR kClockTimer = 1;
constexpr UINT_PTR kQuitTimer = 2;

struct Track {
    std::wstring file, artist, album, title;
    int32_t lengthMs = 0;
};

struct Player {
    HWND window = nullptr;
    HWND handler = nullptr;
    std::vector<Track> playlist;
    size_t current = 0;
    bool playing = false;
    bool stopped = false;
    int32_t base = 0;  // the position when the clock last started
    ULONGLONG startedAt = 0;
};

Player g;

std::string Utf8(const std::wstring& text) {
    if (text.empty()) return {};
    const int n = WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()),
                                      nullptr, 0, nullptr, nullptr);
    std::string out(static_cast<size_t>(n), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), out.data(), n,
                        nullptr, nullptr);
    return out;
}

int32_t Position() {
    if (g.stopped || g.playlist.empty()) return 0;
    if (!g.playing) return g.base;
    const ULONGLONG elapsed = GetTickCount64() - g.startedAt;
    const int64_t at = g.base + static_cast<int64_t>(elapsed);
    return at > INT32_MAX ? INT32_MAX : static_cast<int32_t>(at);
}

void Restart(int32_t at) {
    g.base = at < 0 ? 0 : at;
    g.startedAt = GetTickCount64();
}

std::string Record(const Track& t, size_t size) {
    std::string record(kRecordSize, '\0');
    const auto put = [&](size_t offset, size_t width, const std::wstring& text) {
        const std::string bytes = Utf8(text);
        record.replace(offset, bytes.size() < width ? bytes.size() : width, bytes.substr(0, width));
    };
    put(0, 520, t.file);
    put(520, 1024, t.artist);
    put(1544, 1024, t.album);
    put(2568, 1024, t.title);
    const uint32_t length = static_cast<uint32_t>(t.lengthMs);
    for (size_t k = 0; k < 4; ++k)
        record[3592 + k] = static_cast<char>((length >> (8 * k)) & 0xFF);
    record.resize(size, '\0');
    return record;
}

void SendBytes(std::string record) {
    if (!g.handler || !IsWindow(g.handler)) return;
    COPYDATASTRUCT copy{0, static_cast<DWORD>(record.size()), record.data()};
    SendMessageW(g.handler, WM_COPYDATA, reinterpret_cast<WPARAM>(g.window),
                 reinterpret_cast<LPARAM>(&copy));
}

void SendRecord(size_t size, size_t track) {
    if (g.playlist.empty()) return;
    SendBytes(Record(g.playlist[track % g.playlist.size()], size));
}

void SendRecord(size_t size) {
    SendRecord(size, g.current);
}

void Notice(LPARAM notice) {
    if (g.handler && IsWindow(g.handler)) SendMessageW(g.handler, WM_USER, 0, notice);
}

void StartTrack(size_t index) {
    if (g.playlist.empty()) return;
    g.current = index % g.playlist.size();
    g.stopped = false;
    g.playing = true;
    Restart(0);
    SendRecord(kRecordSize);
}

void Seek(int32_t at) {
    if (g.playlist.empty()) return;
    const int32_t length = g.playlist[g.current].lengthMs;
    if (length > 0 && at >= length) at = length - 1;
    Restart(at);
}

void TogglePause() {
    if (g.stopped) {
        StartTrack(g.current);
        return;
    }
    const int32_t at = Position();
    g.playing = !g.playing;
    Restart(at);
    if (!g.playing) Notice(2);
}

void Stop() {
    g.playing = false;
    g.stopped = true;
    Restart(0);
    Notice(1);
}

std::wstring Clock(int32_t ms) {
    wchar_t text[32];
    swprintf(text, 32, L"%02d:%02d.%d", ms / 60000, (ms / 1000) % 60, (ms / 100) % 10);
    return text;
}

void Paint(HWND hwnd) {
    PAINTSTRUCT ps;
    const HDC dc = BeginPaint(hwnd, &ps);
    RECT client;
    GetClientRect(hwnd, &client);
    FillRect(dc, &client, reinterpret_cast<HBRUSH>(COLOR_WINDOW + 1));
    SetBkMode(dc, TRANSPARENT);
    std::wstring lines;
    if (g.playlist.empty()) {
        lines = L"(empty playlist)";
    } else {
        const Track& t = g.playlist[g.current];
        wchar_t head[64];
        swprintf(head, 64, L"Track %zu of %zu", g.current + 1, g.playlist.size());
        lines = std::wstring(head) + L"\n" + t.artist + L" - " + t.title + L"\n" +
                (g.stopped   ? L"\u25A0 "
                 : g.playing ? L"\u25B6 "
                             : L"\u2016 ") +
                Clock(Position()) + L" / " + Clock(t.lengthMs) + L"\n" +
                (g.handler ? L"Toval is listening" : L"waiting for Toval") +
                L"\nSpace play/pause  S stop  \u2190\u2192 seek  N/P track  Esc quit";
    }
    RECT r = client;
    InflateRect(&r, -8, -6);
    DrawTextW(dc, lines.c_str(), -1, &r, DT_LEFT | DT_NOPREFIX);
    EndPaint(hwnd, &ps);
}

LRESULT CALLBACK Procedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_USER:  // a command of the program
            switch (lParam) {
                case 1:
                    g.handler = reinterpret_cast<HWND>(wParam);
                    InvalidateRect(hwnd, nullptr, FALSE);
                    return 1;
                case 2:
                    return Position();
                case 3:
                    return static_cast<LRESULT>(g.current);
                case 4:
                    return 1;
                case 5:
                    g.handler = nullptr;
                    InvalidateRect(hwnd, nullptr, FALSE);
                    return 0;
                case 6:
                    return static_cast<LRESULT>(reinterpret_cast<intptr_t>(hwnd));
                case 7:
                    // The last question of a wake-up: once it has returned,
                    // the program knows the unit, and the playing track's tag follows.
                    if (g.handler) PostMessageW(hwnd, kSendTagLater, 0, 0);
                    return 1;  // lengths in milliseconds
                default:
                    return 0;
            }
        case kSendTagLater:
            if (!g.stopped) SendRecord(kRecordSize);
            return 0;
        case kDemoSendRecord:
            SendRecord(wParam > 65536 ? 65536 : static_cast<size_t>(wParam),
                       static_cast<size_t>(lParam));
            return 0;
        case kDemoSendGarbage:
            SendBytes(std::string(wParam > 65536 ? 65536 : static_cast<size_t>(wParam), '\xFF'));
            return 0;
        case kDemoSeek:
            Seek(static_cast<int32_t>(wParam));
            return 0;
        case kDemoTrack:
            StartTrack(static_cast<size_t>(wParam));
            return 0;
        case kDemoNotice:
            Notice(static_cast<LPARAM>(wParam));
            return 0;
        case kDemoHandler:
            return static_cast<LRESULT>(reinterpret_cast<intptr_t>(g.handler));
        case kDemoPause:
            TogglePause();
            return 0;
        case kDemoPosition:
            return Position();
        case WM_TIMER:
            if (wParam == kQuitTimer) {
                KillTimer(hwnd, kQuitTimer);
                PostMessageW(hwnd, WM_CLOSE, 0, 0);
                return 0;
            }
            if (wParam == kClockTimer && g.playing && !g.playlist.empty()) {
                const int32_t length = g.playlist[g.current].lengthMs;
                if (length > 0 && Position() >= length) StartTrack(g.current + 1);
            }
            InvalidateRect(hwnd, nullptr, FALSE);
            return 0;
        case WM_KEYDOWN:
            switch (wParam) {
                case VK_SPACE:
                    TogglePause();
                    break;
                case 'S':
                    Stop();
                    break;
                case VK_LEFT:
                    Seek(Position() - 5000);
                    break;
                case VK_RIGHT:
                    Seek(Position() + 5000);
                    break;
                case VK_HOME:
                    Seek(0);
                    break;
                case 'N':
                    StartTrack(g.current + 1);
                    break;
                case 'P':
                    StartTrack(g.current + g.playlist.size() - 1);
                    break;
                case VK_ESCAPE:
                    PostMessageW(hwnd, WM_CLOSE, 0, 0);
                    break;
                default:
                    break;
            }
            InvalidateRect(hwnd, nullptr, FALSE);
            return 0;
        case WM_PAINT:
            Paint(hwnd);
            return 0;
        case WM_ERASEBKGND:
            return 1;
        case WM_CLOSE:
            Notice(3);  // the player closes
            DestroyWindow(hwnd);
            return 0;
        case WM_DESTROY:
            PostQuitMessage(0);
            return 0;
        default:
            return DefWindowProcW(hwnd, message, wParam, lParam);
    }
}

std::wstring Folder() {
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::wstring text = path;
    const size_t slash = text.find_last_of(L"\\/");
    return slash == std::wstring::npos ? L"" : text.substr(0, slash + 1);
}

}  // namespace

int WINAPI wWinMain(HINSTANCE instance, HINSTANCE, PWSTR, int show) {
    int argc = 0;
    wchar_t** argv = CommandLineToArgvW(GetCommandLineW(), &argc);
    bool paused = false;
    int quitAfter = 0;
    for (int i = 1; argv && i < argc;) {
        if (std::wstring(argv[i]) == L"--paused") {
            paused = true;
            ++i;
        } else if (std::wstring(argv[i]) == L"--quit-after" && i + 1 < argc) {
            quitAfter = _wtoi(argv[i + 1]);
            i += 2;
        } else if (i + 4 < argc) {
            g.playlist.push_back(
                {argv[i], argv[i + 1], argv[i + 2], argv[i + 3], _wtoi(argv[i + 4])});
            i += 5;
        } else {
            break;
        }
    }
    if (argv) LocalFree(argv);
    if (g.playlist.empty())
        g.playlist.push_back(
            {Folder() + L"harbour.flac", L"Toval Samples", L"Samples", L"Harbour Lanterns", 19000});

    WNDCLASSEXW wc{};
    wc.cbSize = sizeof wc;
    wc.lpfnWndProc = Procedure;
    wc.hInstance = instance;
    wc.hCursor = LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_ARROW));
    wc.lpszClassName = L"TovalDemoPlayer";
    RegisterClassExW(&wc);
    g.window = CreateWindowExW(0, wc.lpszClassName, L"TovalPlugin",
                               WS_OVERLAPPED | WS_CAPTION | WS_SYSMENU | WS_MINIMIZEBOX, 20, 20,
                               460, 150, nullptr, nullptr, instance, nullptr);
    if (!g.window) return 1;
    g.playing = !paused;
    Restart(0);
    SetTimer(g.window, kClockTimer, 100, nullptr);
    if (quitAfter > 0) SetTimer(g.window, kQuitTimer, static_cast<UINT>(quitAfter) * 1000, nullptr);
    ShowWindow(g.window, show);
    UpdateWindow(g.window);

    MSG msg;
    while (GetMessageW(&msg, nullptr, 0, 0) > 0) {
        TranslateMessage(&msg);
        DispatchMessageW(&msg);
    }
    return 0;
}
