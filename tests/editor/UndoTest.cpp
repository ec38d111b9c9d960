// Undo and redo of the lyric's content and times, and a whole editing
// session from typed text to a saved file read back.
#include "EditorFixture.h"
#include "base/mFile.h"
#include "core/cEventStream.h"
#include "editor/cUndoHistory.h"
#include "fakes/TempDir.h"

namespace toval::test {
namespace {

using Ints = std::vector<int32_t>;

TEST(UndoHistory, RestoresStructureTextsAndTimesWithinItsBound) {
    cLyric lyric;
    lyric.setLoad(u"[1][2]<3>a <>b\r\n[]plain\r\n");
    cUndoHistory history(3);
    EXPECT_FALSE(history.Undo(lyric));
    history.Record(lyric);
    lyric.RemoveLine(1);
    lyric.GetLine(0)->GetWord(0)->GetTime(0)->setTime(99);
    EXPECT_TRUE(history.Undo(lyric));
    EXPECT_EQ(lyric.Load(), u"[1][2]<3>a <>b\r\n[]plain\r\n");
    EXPECT_TRUE(lyric.GetLine(0)->Karaoke());
    EXPECT_EQ(lyric.GetLine(0)->Text(), u"a b");
    EXPECT_TRUE(history.Redo(lyric));
    EXPECT_EQ(lyric.Load(), u"[1][2]<99>a <>b\r\n");
    EXPECT_FALSE(history.Redo(lyric));
    // A new change forgets what could be redone.
    EXPECT_TRUE(history.Undo(lyric));
    history.Record(lyric);
    EXPECT_FALSE(history.CanRedo());
    // Only the newest steps are kept.
    for (int i = 0; i < 10; ++i) {
        history.Record(lyric);
        lyric.GetLine(0)->AddTime(std::make_shared<cTime>(i));
    }
    EXPECT_EQ(history.UndoSize(), 3u);
    while (history.Undo(lyric)) {
    }
    EXPECT_EQ(lyric.GetLine(0)->GetTimeSize(), 2 + 7);
    // Nothing changed since Record: the step is dropped.
    history.Record(lyric);
    EXPECT_TRUE(history.DropIfUnchanged(lyric));
    history.Record(lyric);
    lyric.GetLine(0)->RemoveTime(0);
    EXPECT_FALSE(history.DropIfUnchanged(lyric));
}

TEST(UndoHistory, StepsShareTheLinesThatDidNotChange) {
    cLyric lyric;
    std::u16string text;
    for (int i = 0; i < 20; ++i)
        text += u"[]<>la <>di\r\n";
    lyric.setLoad(text);
    cUndoHistory history(100);
    for (int i = 0; i < 10; ++i) {
        history.Record(lyric);
        lyric.GetLine(3)->GetWord(1)->AddTime(std::make_shared<cTime>(i));
    }
    EXPECT_EQ(history.HeldLines(), 20u + 9u);
    // Undoing everything gives each step back whole.
    while (history.Undo(lyric)) {
    }
    EXPECT_EQ(lyric.Load(), text);
    EXPECT_EQ(history.HeldLines(), 19u + 10u);  // the redo steps: ten versions of line 3
}

class UndoTest : public EditorTest {};

TEST_F(UndoTest, StampsUndoAndRedoWithTheKeysAndEachChangeMutates) {
    StartTiming(u"one two\r\nthree four");
    std::vector<int32_t> mutations{editor.Lyric()->Mutation()};
    Press(kKeyRight, 100);
    mutations.push_back(editor.Lyric()->Mutation());
    Press(kKeyRight, 200);
    mutations.push_back(editor.Lyric()->Mutation());
    Press(kKeyLeft, 250);  // again
    EXPECT_NE(editor.Lyric()->Mutation(), mutations.back());
    EXPECT_NE(mutations[0], mutations[1]);

    editor.pb_Main_KeyDown(kKeyZ, kCtrlMask);  // the correction
    EXPECT_EQ(Records(), u"[100]<200>one<> <>two\r\n[]<>three<> <>four\r\n");
    EXPECT_FALSE(editor.lastTimeSet());  // the stamp's object is gone
    editor.pb_Main_KeyDown(kKeyZ, kCtrlMask);
    EXPECT_EQ(Records(), u"[100]<>one<> <>two\r\n[]<>three<> <>four\r\n");
    editor.pb_Main_KeyDown(kKeyY, kCtrlMask);
    EXPECT_EQ(Records(), u"[100]<200>one<> <>two\r\n[]<>three<> <>four\r\n");
    EXPECT_TRUE(editor.CanRedo());
    // Undo is a no-op outside timing and preview, and when the history is empty.
    editor.pb_Main_KeyDown(kKeyZ, kCtrlMask);
    editor.pb_Main_KeyDown(kKeyZ, kCtrlMask);
    EXPECT_FALSE(editor.Undo());
    EXPECT_FALSE(editor.HasTimes());
    // Leaving for the text step and coming back starts a new history.
    editor.Redo();
    editor.cmdBack_Click();
    EXPECT_FALSE(editor.Undo());
    editor.cmdNext_Click();
    EXPECT_FALSE(editor.CanUndo());
}

TEST_F(UndoTest, UndoInPreviewRebuildsTheStreamAndFoldingHappensOnce) {
    globals.Settings.edt_AutoImplode = true;
    StartTiming(u"la la\r\n\r\nla la");
    for (int i = 1; i <= 8; ++i)
        Press(kKeyRight, i * 1000);
    editor.cmdNext_Click();
    // The copy went; the empty line before it stays, as the last line.
    ASSERT_EQ(Records(), u"[1000][5000]<2000><6000>la<> <3000><8000>la\r\n[4000]\r\n");
    const int32_t foldedEvents = editor.Stream()->NumEvents();
    EXPECT_TRUE(editor.Undo());
    EXPECT_EQ(editor.Lyric()->GetLineSize(), 3);
    EXPECT_EQ(editor.Stream()->NumEvents(), foldedEvents);
    EXPECT_EQ(editor.Stream()->EventTimeObject(0), Line(0)->GetTime(0));
    globals.PlayPosition = 6500;
    timer.tick();
    EXPECT_EQ(editor.curLine(), 2);
    EXPECT_TRUE(editor.Redo());
    EXPECT_EQ(editor.Lyric()->GetLineSize(), 2);
    EXPECT_EQ(editor.Stream()->EventTimeObject(0), Line(0)->GetTime(0));
    // A lyric built again from the text after a reset is not folded while
    // the window stays open.
    editor.cmdBack_Click();
    view.boxAnswer = kIdYes;
    editor.cmdReset_Click();
    editor.cmdNext_Click();
    editor.cmdNext_Click();
    EXPECT_EQ(editor.Lyric()->GetLineSize(), 3);
}

TEST_F(UndoTest, WholeSessionFromTextToSavedFile) {
    TempDir dir;
    music.setFileAddress(dir.file(u"track.mp3"));
    music.setMiliDuration(180000);
    globals.TrackID = music.ID();
    globals.Settings.edt_AutoImplode = true;
    // Type a verse and a chorus sung twice.
    StartTiming(
        u"Hello, world\r\n\r\nSing it loud\r\nSing it clear\r\n\r\nSing it loud\r\nSing it clear");
    const auto lyric = editor.Lyric();
    ASSERT_EQ(lyric->GetLineSize(), 7);
    // Time every line and every real word with the forward arrow, 100 ms apart.
    int32_t position = 1000;
    int presses = 0;
    for (;;) {
        Press(kKeyRight, position);
        ++presses;
        if (editor.curLine() == 6 && editor.curWord() == 4) break;  // "clear"
        position += 100;
        ASSERT_LT(presses, 100);
    }
    // Lines: 7 line times; words: 2 + 0 + 3 + 3 + 0 + 3 + 3 = 14.
    EXPECT_EQ(presses, 7 + 14);
    EXPECT_EQ(Times(Word(0, 3)), Ints{1200});  // "world", after "," and " "
    // A press that came late: corrected with the again key.
    Press(kKeyLeft, position - 30);
    EXPECT_EQ(Times(Word(6, 4)), Ints{position - 30});

    // Preview folds the repeated chorus into its first copy.
    editor.cmdNext_Click();
    ASSERT_EQ(lyric->GetLineSize(), 5);
    EXPECT_EQ(Times(Line(2)).size(), 2u);
    EXPECT_EQ(Times(Word(3, 4)), (Ints{Times(Word(3, 4))[0], position - 30}));

    // Shift the second half a second later over a range, by the dialog.
    view.onAdv = [](cEditAdvTime& d) {
        d.optFrom_Click();
        d.optDelay_Click();
        d.setTxtEdit(cEditAdvTime::kFrom, u"00:02");
        d.setTxtEdit(cEditAdvTime::kTo, u"00:10");
        d.setTxtEdit(cEditAdvTime::kDelayBy, u"00:01");
        return true;
    };
    editor.cmdBack_Click();
    editor.mnuAdv_Click();
    EXPECT_EQ(Times(Word(0, 3)), Ints{1200});
    EXPECT_EQ(Times(Word(3, 4)).back(), position - 30 + 1000);
    editor.cmdNext_Click();

    // Save as tvl and read it back: the same times everywhere.
    view.saveAnswer = true;
    view.saveFile = dir.file(u"track.tvl");
    editor.cmdSave_Click();
    cLyric back;
    back.setLoad(FileRead(view.saveFile));
    EXPECT_EQ(back.Load(), lyric->Load());
    EXPECT_EQ(back.TrackLength(), 180000);
    EXPECT_EQ(back.Mutation(), lyric->Mutation());
    EXPECT_FALSE(back.Simple());
}

}  // namespace
}  // namespace toval::test
