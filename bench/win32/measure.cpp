// Measures toval.exe beside the demo player, both running for real: the time
// from launch to the first lyric shown, the working set after a minute of
// playback, the CPU time that minute cost, and how late the highlight comes
// after each word's time. Run by bench/measure-windows.sh under Wine.
//
//   toval-measure.exe TOVAL_EXE DEMO_EXE FOLDER [SECONDS]
// FOLDER holds harbour.flac (any bytes) and harbour.tvl.
#include <windows.h>

#include <psapi.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "Programs.h"
#include "base/mString.h"
#include "fTray.h"
#include "lyric/cLyric.h"
#include "lyric/cLyricLine.h"
#include "lyric/cLyricWord.h"
#include "lyric/cTime.h"

using namespace toval;
using namespace toval::test;

namespace {

double Seconds(const FILETIME& t) {
    ULARGE_INTEGER v;
    v.LowPart = t.dwLowDateTime;
    v.HighPart = t.dwHighDateTime;
    return static_cast<double>(v.QuadPart) / 1e7;
}

double CpuSeconds(HANDLE process) {
    FILETIME created, exited, kernel, user;
    if (!GetProcessTimes(process, &created, &exited, &kernel, &user)) return -1;
    return Seconds(kernel) + Seconds(user);
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    if (argc < 4) {
        fwprintf(stderr, L"usage: toval-measure TOVAL DEMO FOLDER [SECONDS]\n");
        return 2;
    }
    const std::wstring toval = argv[1], demo = argv[2], folder = argv[3];
    const int seconds = argc > 4 ? _wtoi(argv[4]) : 60;

    // The word times, read with the program's own reader.
    std::ifstream in(std::filesystem::path(folder + L"\\harbour.tvl"), std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    cLyric lyric;
    lyric.setLoad(Strings().utf8TOwstring(bytes));
    const int32_t length = 18000;  // the lyric's own length: its times stay as written

    Process player(demo, Quoted(folder + L"\\harbour.flac") +
                             L" \"Toval Samples\" Samples \"Harbour Lanterns\" " +
                             std::to_wstring(length));
    HWND playerWindow = nullptr;
    Eventually([&] { return (playerWindow = player.Window(L"TovalDemoPlayer")) != nullptr; });
    if (!playerWindow) return 1;

    const ULONGLONG launched = GetTickCount64();
    Process program(toval, L"");
    HWND display = nullptr;
    const bool shown = Eventually(
        [&] {
            if (!display) display = program.Window(kTrayClass);
            return display && SendMessageW(display, kTrayQueryLines, 0, 0) > 1;
        },
        30000);
    const ULONGLONG firstLyric = GetTickCount64() - launched;
    if (!shown) return 1;

    HANDLE process = OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, program.Id());
    const double cpuBefore = CpuSeconds(process);
    std::vector<int32_t> late;
    int32_t lastLine = kUnset, lastWord = kUnset;
    const ULONGLONG end = GetTickCount64() + static_cast<ULONGLONG>(seconds) * 1000;
    while (GetTickCount64() < end) {
        const auto line = static_cast<int32_t>(SendMessageW(display, kTrayQueryLine, 0, 0));
        const auto word = static_cast<int32_t>(SendMessageW(display, kTrayQueryWord, 0, 0));
        const auto position = static_cast<int32_t>(SendMessageW(playerWindow, kDemoPosition, 0, 0));
        if ((line != lastLine || word != lastWord) && word != kUnset) {
            const auto l = lyric.GetLine(line);
            const auto w = l ? l->GetWord(word) : nullptr;
            // A word's first time (a folded chorus has one per repeat: the
            // nearest one before the position counts).
            int32_t best = kUnset;
            for (int32_t k = 0; w && k < w->GetTimeSize(); ++k)
                if (const auto t = w->GetTime(k); t && t->Time() <= position && t->Time() > best)
                    best = t->Time();
            if (best != kUnset && position - best < 1000) late.push_back(position - best);
        }
        lastLine = line;
        lastWord = word;
        Sleep(1);
    }
    const double cpu = CpuSeconds(process) - cpuBefore;
    PROCESS_MEMORY_COUNTERS memory{};
    memory.cb = sizeof memory;
    GetProcessMemoryInfo(process, &memory, sizeof memory);
    CloseHandle(process);

    std::sort(late.begin(), late.end());
    const auto at = [&](double q) {
        return late.empty() ? -1
                            : late[static_cast<size_t>(q * static_cast<double>(late.size() - 1))];
    };
    wprintf(L"launch to first lyric:      %llu ms\n", firstLyric);
    wprintf(L"working set after %d s:     %.1f MiB (peak %.1f MiB)\n", seconds,
            static_cast<double>(memory.WorkingSetSize) / 1048576.0,
            static_cast<double>(memory.PeakWorkingSetSize) / 1048576.0);
    wprintf(L"CPU time over %d s:         %.2f s (%.2f s per minute)\n", seconds, cpu,
            cpu * 60.0 / seconds);
    wprintf(L"highlight after word time:  median %d ms, 90%% %d ms, max %d ms (%zu words)\n",
            at(0.5), at(0.9), at(1.0), late.size());
    return 0;
}
