// toval.exe beside the demo player, each in its own process, talking through
// real window messages: the plug-in protocol, the start-up cases, and an
// evening of listening.
#include <gtest/gtest.h>
#include <windows.h>

#include <dlgs.h>
#include <shlobj.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "Programs.h"
#include "base/mFile.h"
#include "fMain.h"
#include "fTray.h"
#include "fakes/TempDir.h"
#include "lyric/cLyric.h"
#include "lyric/cLyricLine.h"
#include "lyric/cLyricWord.h"
#include "posix/FakeLyricService.h"

#if defined(TOVAL_EXE) && defined(TOVAL_DEMO_PLAYER)

namespace toval::test {
namespace {

const std::wstring kToval = WindowsPath(TOVAL_EXE);
const std::wstring kDemo = WindowsPath(TOVAL_DEMO_PLAYER);

// A playlist in a temp folder: A has a lyric beside it, B none anywhere, C a
// broken one, D no artist. Lengths match the sample's own, so its times stay
// as written. The player starts paused.
class Evening : public ::testing::Test {
  protected:
    Evening() {
        for (const char* track : {"a.flac", "b.flac", "c.flac", "d.flac"})
            dir.Write(track, "fLaC");
        std::filesystem::copy_file(WindowsPath(TOVAL_SOURCE_DIR "/samples/harbour.tvl"),
                                   dir.path() / "a.tvl");
        dir.Write("c.tvl", std::string("[PROPERTY]\r\nTRACKLENGTH:x\0\xFF[9999999999]<", 40) +
                               std::string(5000, '<'));
    }
    // The demo player and Toval, with the lyrics service on this machine (it
    // knows no lyric) and these lines added to config.ini; Toval shows track
    // A's lyric.
    void StartEvening(const std::string& settings = "") {
        wchar_t appData[MAX_PATH] = {};
        ASSERT_TRUE(SHGetSpecialFolderPathW(nullptr, appData, CSIDL_APPDATA, TRUE));
        const std::filesystem::path config = std::filesystem::path(appData) / "Toval";
        std::filesystem::create_directories(config);
        std::ofstream(config / "config.ini", std::ios::binary)
            << "[toval]\r\nconn_Server=" << service.Host() << "\r\n"
            << settings;
        std::wstring list = L"--paused";
        for (const wchar_t* name : {L"a", L"b", L"c", L"d"})
            list += L" " + Quoted(dir.path().wstring() + L"\\" + name + L".flac") + L" \"" +
                    (name[0] == L'd' ? L"" : L"Toval Samples") + L"\" Samples \"Title " +
                    std::wstring(1, static_cast<wchar_t>(name[0] - 32)) + L"\" 18000";
        demo = std::make_unique<Process>(kDemo, list);
        ASSERT_TRUE(
            Eventually([&] { return (player = demo->Window(L"TovalDemoPlayer")) != nullptr; }));
        toval = std::make_unique<Process>(kToval, L"");
        ASSERT_TRUE(Eventually([&] { return (display = toval->Window(kTrayClass)) != nullptr; }));
        ASSERT_TRUE(Eventually([&] { return SendMessageW(player, kDemoHandler, 0, 0) != 0; }));
        ASSERT_TRUE(Eventually([&] { return SendMessageW(display, kTrayQueryLines, 0, 0) > 3; }));
        main = toval->Window(L"TovalMain");
    }
    TempDir dir;
    FakeLyricService service;
    std::unique_ptr<Process> demo, toval;
    HWND player = nullptr, display = nullptr, main = nullptr;
};

TEST_F(Evening, TheLyricFollowsSeeksAndSurvivesGarbageAndTheWindowsMirrorAndDock) {
    // In the right-to-left language: its windows are mirrored.
    ASSERT_NO_FATAL_FAILURE(StartEvening("language_name=heil\r\n"));
    struct Step {
        int32_t at;
        const char16_t* line;
        LRESULT word;
    };
    // Forward into a line's second word, and back again. A line and its first word
    // start together: which of the two events wins is the event stream's
    // business, so a first word may show as the whole line (word unset).
    for (const Step& step : {Step{5000, u"Boats come home before the fall", 1},
                             Step{1200, u"Lanterns on the harbour wall", 0}}) {
        SCOPED_TRACE(step.at);
        SendMessageW(player, kDemoSeek, static_cast<WPARAM>(step.at), 0);
        EXPECT_TRUE(Eventually([&] {
            const LRESULT word = SendMessageW(display, kTrayQueryWord, 0, 0);
            return WindowText(display) == step.line &&
                   (word == step.word || (step.word == 0 && word == kUnset));
        })) << ::testing::PrintToString(WindowText(display))
            << " word " << SendMessageW(display, kTrayQueryWord, 0, 0);
    }
    // Tag records of bytes that are no text, of the right size and far too
    // long, and a broken lyric file beside the track: all survived, and the
    // first track's lyric shows again.
    SendMessageW(player, kDemoSendGarbage, 3596, 0);
    SendMessageW(player, kDemoSendGarbage, 100000, 0);
    PostMessageW(player, kDemoTrack, 2, 0);
    Sleep(1500);
    PostMessageW(player, kDemoTrack, 0, 0);
    Sleep(500);
    PostMessageW(player, kDemoSeek, 4500, 0);
    EXPECT_TRUE(
        Eventually([&] { return WindowText(display) == u"Boats come home before the fall"; }));
    Screenshot("display-window-mode");
    PostMessageW(main, WM_COMMAND, kMnuSettings, 0);
    HWND settings = nullptr;
    EXPECT_TRUE(Eventually([&] {
        settings = toval->Window(L"TovalSettings");
        return settings && IsWindowVisible(settings);
    }));
    EXPECT_TRUE(GetWindowLongW(settings, GWL_EXSTYLE) & WS_EX_LAYOUTRTL);
    Screenshot("settings-right-to-left");
    PostMessageW(settings, WM_COMMAND, IDCANCEL, 0);

    // In the task bar when one is shown (a virtual desktop); else a new window.
    const HWND bar = FindWindowW(L"Shell_TrayWnd", nullptr);
    const LRESULT expected = bar && IsWindowVisible(bar) ? 1 : 2;
    const HWND before = display;
    PostMessageW(main, WM_COMMAND, kMnuTrayMode, 0);
    EXPECT_TRUE(Eventually([&] {
        display = expected == 1 ? FindWindowExW(bar, nullptr, kTrayClass, nullptr)
                                : toval->Window(kTrayClass);
        return display && display != before &&
               SendMessageW(display, kTrayQueryMode, 0, 0) == expected;
    }));
    Screenshot("display-task-bar-mode");

    // The player's notice 3 closes the program.
    SendMessageW(player, kDemoNotice, 3, 0);
    EXPECT_TRUE(toval->WaitForExit(10000));
}

// The editor from the menu on the playing track: typed text, timed with the
// arrow keys while the player's clock runs, previewed, saved as tvl, read back.
TEST_F(Evening, TheEditorTimesTypedWordsWithTheArrowKeysWhileThePlayerRuns) {
    ASSERT_NO_FATAL_FAILURE(StartEvening());
    PostMessageW(main, WM_COMMAND, kMnuEdit, 0);
    HWND edit = nullptr;
    ASSERT_TRUE(Eventually([&] { return (edit = toval->Window(kEditClass)) != nullptr; }));
    const auto control = [&](eEditorControl c) {
        return GetDlgItem(edit, kEditControlId + static_cast<int>(c));
    };
    const auto click = [&](eEditorControl c) {
        PostMessageW(edit, WM_COMMAND, MAKEWPARAM(kEditControlId + static_cast<int>(c), BN_CLICKED),
                     reinterpret_cast<LPARAM>(control(c)));
    };
    const auto inStep = [&](const std::u16string& step) {
        return Eventually([&] { return WindowText(edit) == step + u" - Toval Samples - Title A"; });
    };
    EXPECT_TRUE(inStep(u"Step 1 of 3: text"));  // its controls are there
    const std::u16string text = u"Lanterns on the harbour wall\rBoats come home\rSing it slow";
    for (char16_t c : text)
        PostMessageW(control(eEditorControl::fraText), WM_CHAR, c, 0);
    Screenshot("editor-1-text");

    click(eEditorControl::cmdNext);
    HWND info = nullptr;
    ASSERT_TRUE(Eventually([&] { return (info = toval->Window(L"TovalEditInfo")) != nullptr; }));
    Screenshot("editor-help");
    PostMessageW(info, WM_COMMAND, IDOK, 0);
    EXPECT_TRUE(inStep(u"Step 2 of 3: timing"));

    // The clock runs; each arrow stamps where the player stands. Right: the
    // line itself, then its words without the blanks; Left: the same word
    // again; Down: the next line.
    const HWND picture = FindWindowExW(edit, nullptr, kEditPictureClass, nullptr);
    SendMessageW(player, kDemoPause, 0, 0);
    const LRESULT from = SendMessageW(player, kDemoPosition, 0, 0);
    for (WPARAM key : {VK_RIGHT, VK_RIGHT, VK_RIGHT, VK_RIGHT, VK_RIGHT, VK_RIGHT, VK_RIGHT,
                       VK_RIGHT, VK_LEFT, VK_DOWN}) {
        Sleep(150);
        PostMessageW(picture, WM_KEYDOWN, key, 0);
    }
    // Every key handled (the last one moved to line 2) before the span ends.
    EXPECT_TRUE(Eventually([&] { return SendMessageW(edit, kEditQueryCursor, 0, 0) == 2; }));
    const LRESULT to = SendMessageW(player, kDemoPosition, 0, 0);
    Screenshot("editor-2-timing");

    // The preview follows the player from where the timing began.
    click(eEditorControl::cmdNext);
    EXPECT_TRUE(inStep(u"Step 3 of 3: preview"));
    SendMessageW(player, kDemoSeek, static_cast<WPARAM>(from), 0);
    EXPECT_TRUE(Eventually([&] { return SendMessageW(edit, kEditQueryCursor, 0, 0) == 1; }));
    Screenshot("editor-3-preview");

    // Saved as tvl under a name typed into the file dialog.
    click(eEditorControl::cmdSave);
    HWND save = nullptr;
    ASSERT_TRUE(Eventually([&] { return (save = toval->Window(L"#32770")) != nullptr; }));
    HWND name = nullptr;
    ASSERT_TRUE(Eventually([&] {
        // The name box: an edit inside a combo box (inside another here).
        const HWND combo = GetDlgItem(save, cmb13);
        name = FindWindowExW(combo, nullptr, L"Edit", nullptr);
        if (!name)
            name = FindWindowExW(FindWindowExW(combo, nullptr, L"ComboBox", nullptr), nullptr,
                                 L"Edit", nullptr);
        // Filled with the lyric's usual name once the dialog is ready.
        return name && IsWindowVisible(save) && WindowText(name) == u"a.tvl";
    }));
    Screenshot("editor-save");
    const std::wstring path = dir.path().wstring() + L"\\timed.tvl";
    SendMessageW(name, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(path.c_str()));
    PostMessageW(save, WM_COMMAND, IDOK, 0);
    // Every stamp is there once, in the order given, within the span played.
    std::vector<int32_t> times;
    EXPECT_TRUE(Eventually([&] {
        cLyric lyric;
        lyric.setLoad(FileRead(dir.file(u"timed.tvl")));
        times.clear();
        for (int32_t l = 0; l < lyric.GetLineSize(); ++l) {
            const auto line = lyric.GetLine(l);
            for (int32_t t = 0; t < line->GetTimeSize(); ++t)
                times.push_back(line->GetTime(t)->Time());
            for (int32_t w = 0; w < line->GetWordSize(); ++w)
                for (int32_t t = 0; t < line->GetWord(w)->GetTimeSize(); ++t)
                    times.push_back(line->GetWord(w)->GetTime(t)->Time());
        }
        return times.size() == 9;
    })) << times.size();
    EXPECT_TRUE(std::is_sorted(times.begin(), times.end()));
    EXPECT_TRUE(!times.empty() && times.front() >= from && times.back() <= to) << from << " " << to;

    PostMessageW(edit, WM_CLOSE, 0, 0);
    EXPECT_TRUE(Eventually([&] { return !IsWindow(edit); }));
    // A track whose tags name no artist is refused.
    SendMessageW(player, kDemoTrack, 3, 0);
    PostMessageW(main, WM_COMMAND, kMnuEdit, 0);
    HWND box = nullptr;
    wchar_t said[512] = {};
    EXPECT_TRUE(Eventually([&] {
        box = toval->Window(L"#32770");
        return box && GetDlgItemTextW(box, 0xFFFF, said, 512) > 0;
    }));
    EXPECT_NE(std::wstring(said).find(L"do not name both an artist"), std::wstring::npos);
    PostMessageW(box, WM_COMMAND, IDOK, 0);
    EXPECT_EQ(toval->Window(kEditClass), nullptr);
}

TEST(StartUp, WithoutThePlayerTheProgramSaysSoOrStaysSilentAfterInstall) {
    {
        Process toval(kToval, L"");
        HWND box = nullptr;
        wchar_t text[512] = {};
        // The box is there a moment before its text.
        ASSERT_TRUE(Eventually([&] {
            box = toval.Window(L"#32770");
            return box && GetDlgItemTextW(box, 0xFFFF, text, 512) > 0;
        }));
        EXPECT_NE(std::wstring(text).find(L"could not find the player plug-in"), std::wstring::npos)
            << std::wstring(text).size();
        PostMessageW(box, WM_COMMAND, IDOK, 0);
        EXPECT_TRUE(toval.WaitForExit(5000));
    }
    {
        // "install" searches again every 2 s: a player that comes late is found.
        Process toval(kToval, L"install");
        Sleep(3000);
        EXPECT_EQ(toval.Window(L"#32770"), nullptr);
        Process demo(kDemo, L"--paused");
        HWND player = nullptr;
        ASSERT_TRUE(
            Eventually([&] { return (player = demo.Window(L"TovalDemoPlayer")) != nullptr; }));
        EXPECT_TRUE(
            Eventually([&] { return SendMessageW(player, kDemoHandler, 0, 0) != 0; }, 15000));

        // A second instance ends at once, without a word.
        Process second(kToval, L"");
        EXPECT_TRUE(second.WaitForExit(10000));
        EXPECT_TRUE(toval.Running());
    }
}

}  // namespace
}  // namespace toval::test

#endif
