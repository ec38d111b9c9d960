// Undo and redo of the lyric's content and times.
#include "EditorFixture.h"
#include "core/cEventStream.h"
#include "editor/cUndoHistory.h"

namespace toval::test {
namespace {

TEST(UndoHistory, RestoresStructureTextsAndTimesWithinItsBound) {
    cLyric lyric;
    lyric.setLoad(u"[1][2]<3>a <>b\r\n[]plain\r\n");
    cUndoHistory history(3);
    history.Record(lyric);
    lyric.RemoveLine(1);
    lyric.GetLine(0)->GetWord(0)->GetTime(0)->setTime(99);
    EXPECT_TRUE(history.Undo(lyric));
    EXPECT_EQ(lyric.Load(), u"[1][2]<3>a <>b\r\n[]plain\r\n");
    EXPECT_TRUE(lyric.GetLine(0)->Karaoke());
    EXPECT_EQ(lyric.GetLine(0)->Text(), u"a b");
    EXPECT_TRUE(history.Redo(lyric));
    EXPECT_EQ(lyric.Load(), u"[1][2]<99>a <>b\r\n");
    // A new change forgets what could be redone.
    EXPECT_TRUE(history.Undo(lyric));
    history.Record(lyric);
    EXPECT_FALSE(history.CanRedo());
    // Only the newest steps are kept.
    for (int i = 0; i < 10; ++i) {
        history.Record(lyric);
        lyric.GetLine(0)->AddTime(std::make_shared<cTime>(i));
    }
    while (history.Undo(lyric)) {
    }
    EXPECT_EQ(lyric.GetLine(0)->GetTimeSize(), 2 + 7);  // three of the ten undone
    // Nothing changed since Record: the step is dropped.
    history.Record(lyric);
    EXPECT_TRUE(history.DropIfUnchanged(lyric));
    history.Record(lyric);
    lyric.GetLine(0)->RemoveTime(0);
    EXPECT_FALSE(history.DropIfUnchanged(lyric));
}

class UndoTest : public EditorTest {};

TEST_F(UndoTest, StampsUndoAndRedoWithTheKeysAndACorrectionMutates) {
    StartTiming(u"one two\r\nthree four");
    PressRight({100, 200});
    const int32_t before = editor.Lyric()->Mutation();
    Press(kKeyLeft, 250);  // the again key
    EXPECT_NE(editor.Lyric()->Mutation(), before);

    editor.pb_Main_KeyDown(kKeyZ, kCtrlMask);  // the correction
    EXPECT_EQ(Records(), u"[100]<200>one<> <>two\r\n[]<>three<> <>four\r\n");
    EXPECT_FALSE(editor.lastTimeSet());  // the stamp's object is gone
    editor.pb_Main_KeyDown(kKeyZ, kCtrlMask);
    editor.pb_Main_KeyDown(kKeyY, kCtrlMask);  // the first stamp, not the correction
    EXPECT_EQ(Records(), u"[100]<200>one<> <>two\r\n[]<>three<> <>four\r\n");
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
    // The stream is rebuilt on the restored lyric: line 2 is back at 6000.
    EXPECT_TRUE(editor.Undo());
    globals.PlayPosition = 6500;
    timer.tick();
    EXPECT_EQ(editor.curLine(), 2);
}

}  // namespace
}  // namespace toval::test
