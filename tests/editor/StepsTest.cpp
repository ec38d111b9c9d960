// The editor's three steps, loading and saving real files, resetting,
// sending and closing.
#include <filesystem>
#include <fstream>
#include <tuple>

#include "EditorFixture.h"
#include "base/mFile.h"
#include "fakes/TempDir.h"

namespace toval::test {
namespace {

using Boxes = std::vector<FakeEditorView::Box>;

class StepsTest : public EditorTest {};

// The window as the editor set it: the caption's key, the controls shown
// (of the two that swap) and the controls enabled.
std::string Shown(FakeEditorView& view) {
    static const char* const kNames[kEditorControlCount] = {"fraText",  "pb_Main", "Load", "Save",
                                                            "Internet", "Back",    "Next", "Reset",
                                                            "Implode",  "Rtl"};
    std::string text(view.caption.begin() + 1, view.caption.begin() + view.caption.find(u'}'));
    for (int32_t i = 0; i < kEditorControlCount; ++i) {
        const auto c = static_cast<eEditorControl>(i);
        if (i < 2 ? view.visible[c] : view.enabled[c]) text += std::string(" ") + kNames[i];
    }
    return text;
}

TEST_F(StepsTest, EachStepSetsItsControlsAndCaption) {
    globals.Settings.edt_AutoImplode = true;
    globals.Settings.pos_EditWinTop = 11;
    globals.Settings.size_EditWinWidth = 9000;
    editor.Form_Load(music);
    EXPECT_EQ(view.caption, u"{TovalEditText} - Artist - Song");
    EXPECT_EQ(
        std::tuple(view.checked[eEditorControl::chkAutoImplode], view.rect.Top, view.rect.Width),
        std::tuple(true, 11, 9000));
    EXPECT_EQ(Shown(view), "TovalEditText fraText Load Next Implode Rtl");
    globals.Settings.editmode_splash = true;
    editor.txtEdit_Change(u"la la\r\n");

    const std::tuple<bool, int32_t, std::string> steps[] = {
        {true, 2, "TovalEditTime pb_Main Back Next Reset Implode"},
        {true, 3, "TovalEditPreview pb_Main Save Internet Back"},
        {true, 3, "TovalEditPreview pb_Main Save Internet Back"},  // there is no step 4
        {false, 2, "TovalEditTime pb_Main Back Next Reset"},       // folded at most once
        {false, 1, "TovalEditText fraText Load Next Rtl"},
        {false, 1, "TovalEditText fraText Load Next Rtl"},
    };
    for (const auto& [next, step, shown] : steps) {
        next ? editor.cmdNext_Click() : editor.cmdBack_Click();
        EXPECT_EQ(editor.Step(), step);
        EXPECT_EQ(Shown(view), shown) << step;
    }
    // The help shows on the first entry into the timing step only.
    EXPECT_EQ(view.infoShown,
              std::vector<std::u16string>{u"Use the keyboard arrow keys to syncronize Toval to "
                                          u"music. You can use the mouse either."});
}

TEST_F(StepsTest, LoadReadsAFileIntoTextBoxAndLyric) {
    TempDir dir;
    music.setFileAddress(dir.file(u"song.mp3"));
    const std::u16string lyricFile = dir.file(u"song.tvl");
    ASSERT_TRUE(FileSaveUTF8(lyricFile,
                             u"[PROPERTY]\r\nMUTATION:77\r\nRIGHTTOLEFT:1\r\n[\\PROPERTY]"
                             u"[1000]<1000>\u05D0 <1500>\u05D1\r\n[2000]second\r\n"));
    editor.Form_Load(music);
    view.openAnswer = true;
    view.openFile = lyricFile;
    editor.cmdLoad_Click();
    ASSERT_EQ(view.openDialogs.size(), 1u);
    EXPECT_EQ(view.openDialogs[0].InitDir, dir.folder());
    EXPECT_EQ(view.openDialogs[0].Filter,
              u"Toval (*.tvl)|*.tvl|Lyric (*.lrc)|*.lrc|{AllFiles} (*.*)|*.*");
    EXPECT_EQ(std::tuple(view.editText, view.editRightToLeft,
                         view.checked[eEditorControl::chkRighttoleft]),
              std::tuple(u"\u05D0 \u05D1\r\nsecond\r\n", true, true));
    // The loaded lyric keeps its times into the timing step.
    editor.cmdNext_Click();
    EXPECT_EQ(Records(), u"[1000]<1000>\u05D0 <1500>\u05D1\r\n[2000]second\r\n");
    EXPECT_EQ(editor.Lyric()->Mutation(), 77);
    // Once the text is edited, it is converted again.
    editor.cmdBack_Click();
    editor.txtEdit_Change(view.editText + u"third line");
    editor.cmdNext_Click();
    EXPECT_EQ(std::pair(editor.HasTimes(), editor.Lyric()->GetLineSize()), std::pair(false, 3));
}

TEST_F(StepsTest, SaveWritesTvlLrcOrTextAndReportsAFailure) {
    TempDir dir;
    StartTiming(u"one two\r\nthree");
    PressRight({1000, 1250, 1500});
    editor.cmdNext_Click();

    view.saveAnswer = true;
    view.saveFile = dir.file(u"out.tvl");
    editor.cmdSave_Click();
    cLyric back;
    back.setLoad(FileRead(view.saveFile));
    // Its times: the programs' own editor tests read them back; here, its version.
    EXPECT_EQ(back.Mutation(), editor.Lyric()->Mutation());

    const std::tuple<const char16_t*, int32_t, const char16_t*> others[] = {
        {u"out.lrc", 2,
         u"[ar:Artist]\r\n[ti:Song]\r\n[re:Toval]\r\n[ve:1.3.1]\r\n"
         u"[00:01.00]one two\r\n[00:00.00]three\r\n"},
        {u"out.txt", 3, u"one two\r\nthree\r\n"}};
    for (const auto& [name, filter, text] : others) {
        view.saveFile = dir.file(name);
        view.saveFilter = filter;
        editor.cmdSave_Click();
        EXPECT_EQ(FileRead(view.saveFile), text);
    }

    view.saveFile = dir.file(u"no such folder/out.tvl");
    editor.cmdSave_Click();
    EXPECT_EQ(view.boxes, (Boxes{{u"{SaveFailed}", u"{ErrorTitle}", kMbIconError}}));
}

TEST_F(StepsTest, ResetAsksAndOnlyYesGoesBack) {
    StartTiming(u"one two");
    Press(kKeyRight, 100);
    view.boxAnswer = kIdCancel;
    editor.cmdReset_Click();
    EXPECT_EQ(std::pair(editor.Step(), editor.HasTimes()), std::pair(2, true));
    EXPECT_EQ(view.boxes[0],
              (FakeEditorView::Box{u"{RequestLyricReset}", u"{RequestLyricResetTitle}",
                                   kMbYesNoCancel | kMbIconQuestion}));
    view.boxAnswer = kIdYes;
    editor.cmdReset_Click();
    EXPECT_EQ(editor.Step(), 1);
    editor.cmdNext_Click();
    EXPECT_FALSE(editor.HasTimes());
}

TEST_F(StepsTest, ClosingStoresTheWindowAndTheFoldSetting) {
    StartTiming(u"one two");
    editor.cmdNext_Click();
    view.rect = {100, 200, 7000, 5000};
    editor.chkAutoImplode_Click(true);
    bool closed = false;
    editor.onClosed = [&] { closed = true; };
    bool cancel = true;
    editor.Form_Unload(cancel);
    EXPECT_EQ(std::tuple(cancel, closed, timer.enabled), std::tuple(false, true, false));
    const cSettings& s = globals.Settings;
    EXPECT_EQ(std::tuple(s.pos_EditWinTop, s.pos_EditWinLeft, s.size_EditWinWidth,
                         s.size_EditWinHeight, s.edt_AutoImplode),
              std::tuple(100, 200, 7000, 5000, true));
}

}  // namespace
}  // namespace toval::test
