// The Windows adapters of the ports on the real system calls, under Wine.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cGdiSurface.h"
#include "cWinIniFile.h"
#include "cWinPluginChannel.h"
#include "cWinShell.h"
#include "cWindow.h"
#include "fakes/IniFileContract.h"

namespace toval::test {

struct WinIniMaker {
    static std::unique_ptr<IniFile> Make() { return std::make_unique<cWinIniFile>(); }
};
INSTANTIATE_TYPED_TEST_SUITE_P(Win32, IniFileContract, ::testing::Types<WinIniMaker>);

namespace {

// The single-instance mark is pinned by the start-up test's second toval.exe.
TEST(WinShellTest, FoldersEndAsTheProgramJoinsThem) {
    cWinShell shell(L"Local\\TovalShellTest");
    const std::u16string program = shell.ProgramFolder();
    ASSERT_FALSE(program.empty());
    EXPECT_EQ(program.back(), u'\\');
    for (int32_t id : {kFolderAppData, kFolderLocalAppData}) {
        const std::u16string folder = shell.SpecialFolder(id);
        ASSERT_FALSE(folder.empty()) << id;
        EXPECT_NE(folder.back(), u'\\');
    }
    EXPECT_GT(shell.ScreenWidthTwips(), 0);
}

TEST(GdiSurfaceTest, MeasuresInTheDisplayFontAndDrawsIntoThePicture) {
    cGdiSurface surface;
    cSettings settings;
    settings.font_Size = 12;
    surface.setFont(settings, 96);
    const cTextExtent line = surface.TextExtent(u"");
    const cTextExtent one = surface.TextExtent(u"Harbour");
    const cTextExtent two = surface.TextExtent(u"Harbour Harbour");
    EXPECT_EQ(line.cx, 0);
    EXPECT_GT(line.cy, 10);
    EXPECT_GT(one.cx, 20);
    EXPECT_GT(two.cx, 2 * one.cx);  // the blank counts
    EXPECT_EQ(one.cy, line.cy);

    surface.setSize(200, 40);
    int refreshed = 0;
    surface.onRefresh = [&] { ++refreshed; };
    surface.Blank(0x000000);
    surface.setTextColor(0x0000FF);
    surface.PaintText(u"Harbour", cRect{0, 0, 200, 40}, kDtLyricText);
    surface.FillRectangle(cRect{150, 0, 200, 40}, 0x00FF00);
    surface.Refresh();
    EXPECT_EQ(refreshed, 1);
    EXPECT_EQ(GetPixel(surface.Dc(), 190, 20), 0x00FF00u);
    bool red = false;
    for (int x = 0; x < 100 && !red; ++x)
        for (int y = 0; y < 40 && !red; ++y)
            red = GetPixel(surface.Dc(), x, y) == 0x0000FFu;
    EXPECT_TRUE(red);
}

TEST(WinPluginChannelTest, TheHookSeesTheProtocolAndPassesTheRestOn) {
    cWindow handler;
    ASSERT_TRUE(handler.Create({.parent = HWND_MESSAGE},
                               [&](UINT message, WPARAM, LPARAM, LRESULT& result) {
                                   if (message < WM_USER) return false;
                                   result = 77;
                                   return true;
                               }));
    cWinPluginChannel channel(handler.Hwnd());
    std::vector<std::pair<int64_t, std::string>> seen;
    channel.onMessage = [&](uint32_t message, int64_t, int64_t lParam, std::string_view data,
                            int64_t& result) {
        if (message == WM_USER && lParam == 9) return false;  // not ours
        seen.emplace_back(lParam, std::string(data));
        result = message == WM_USER ? lParam * 10 : 5;
        return true;
    };
    const int32_t self = channel.HandlerWindow();
    EXPECT_EQ(cWinPluginChannel::ToHwnd(self), handler.Hwnd());

    channel.InstallHook();
    channel.AllowUserMessages();
    EXPECT_EQ(channel.SendCommand(self, 4, 0), 40);
    EXPECT_EQ(channel.SendCommand(self, 9, 0), 77);  // declined: the old procedure answers
    EXPECT_EQ(SendMessageA(handler.Hwnd(), WM_USER + 1, 0, 0), 77);

    // (A whole tag record is read in the end-to-end tests.)
    COPYDATASTRUCT empty{1, 0, nullptr};
    EXPECT_EQ(SendMessageA(handler.Hwnd(), WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&empty)), 5);
    ASSERT_EQ(seen.size(), 2u);
    EXPECT_TRUE(seen[1].second.empty());

    channel.RemoveHook();
    EXPECT_EQ(channel.SendCommand(self, 4, 0), 77);
    // A window that does not exist answers 0.
    EXPECT_EQ(channel.SendCommand(0x7FFF0, 4, 0), 0);
}

}  // namespace
}  // namespace toval::test
