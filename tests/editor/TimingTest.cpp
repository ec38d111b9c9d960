// Timing with the arrow keys and the mouse on a laid-out lyric (10 pixels per
// character, 16 pixels per line), the pop-up menu and the preview.
#include "EditorFixture.h"
#include "core/cEventStream.h"

namespace toval::test {
namespace {

using Ints = std::vector<int32_t>;

class TimingTest : public EditorTest {};

TEST_F(TimingTest, ForwardArrowWalksLinesThenRealWordsAndOverwritesAtTheEnd) {
    // Line 1 is made of separators only.
    StartTiming(u"Hi, you\r\n- -\r\nend");
    ASSERT_EQ(editor.Step(), 2);
    ASSERT_EQ(editor.Lyric()->GetLineSize(), 3);
    Press(kKeyRight, 100);  // line 0 itself
    EXPECT_EQ(Cursor(), std::pair(0, kUnset));
    Press(kKeyRight, 200);  // "Hi"
    Press(kKeyRight, 300);  // "," and " " skipped: "you"
    EXPECT_EQ(editor.curWord(), 3);
    Press(kKeyRight, 400);  // line 1 as a line
    Press(kKeyRight, 500);  // its words are all skipped: line 2
    EXPECT_EQ(editor.curLine(), 2);
    Press(kKeyRight, 600);  // "end", the last word
    Press(kKeyRight, 700);  // nothing after it: "end" is overwritten
    EXPECT_EQ(Records(), u"[100]<200>Hi<>,<> <300>you\r\n[400]<>-<> <>-\r\n[500]<700>end\r\n");
    EXPECT_EQ(std::pair(editor.lastTimeSet(), editor.lastTime()->Time()), std::pair(true, 700));
}

TEST_F(TimingTest, AgainKeyCorrectsTheLastStampAndDownArrowTakesTheNextLine) {
    StartTiming(u"one two\r\nthree four");
    Press(kKeyRight, 1000);  // line 0
    Press(kKeyRight, 1100);  // "one"
    Press(kKeyLeft, 1150);   // again: "one" corrected, nothing added
    Press(kKeyLeft, 1160);
    EXPECT_EQ(Times(Word(0, 0)), Ints{1160});
    Press(kKeyDown, 2000);   // next line, skipping "two"
    Press(kKeyUp, 2100);     // does nothing
    Press(kKeyRight, 2200);  // "three"
    // A word sung twice: clicking it again appends a second time.
    Click(3000, 5, 3);
    EXPECT_EQ(Records(), u"[1000]<1160><3000>one<> <>two\r\n[2000]<2200>three<> <>four\r\n");
}

TEST_F(TimingTest, RightToLeftLyricSwapsTheArrowsAndWalksFromTheLastWord) {
    const std::u16string a = u"\u05D0\u05D1", b = u"\u05D2\u05D3";
    editor.Form_Load(music);
    editor.chkRighttoleft_Click(true);
    editor.txtEdit_Change(a + u" " + b);
    editor.cmdNext_Click();
    ASSERT_TRUE(editor.Lyric()->RightToLeft());
    // Stored in visual order: b, blank, a.
    ASSERT_EQ(Word(0, 0)->Text(), b);
    Press(kKeyLeft, 100);   // next: the line
    Press(kKeyLeft, 200);   // next: the last word, a (the first sung)
    Press(kKeyLeft, 300);   // the blank is skipped: b
    Press(kKeyRight, 350);  // again: b corrected
    EXPECT_EQ(Records(), u"[100]<350>" + b + u"<> <200>" + a + u"\r\n");
}

TEST_F(TimingTest, MouseHitsWordsLinesAndNothing) {
    StartTiming(u"ab cd\r\nlonger line here");
    // Line 0: "ab" 0-20, " " 20-30, "cd" 30-50; y 0-16.
    Click(500, 35.4, 3);
    EXPECT_EQ(Times(Word(0, 2)), Ints{500});
    Click(600, 35, 3);  // the same word: overwritten
    EXPECT_EQ(Times(Word(0, 2)), Ints{600});
    Click(700, 120, 8);  // beside the words: the line
    EXPECT_EQ(Times(Line(0)), Ints{700});
    editor.pb_Main_MouseDown(kButtonLeft, 0, 5, 500);  // below every line
    EXPECT_EQ(std::pair(editor.newLine(), editor.curLine()), std::pair(kUnset, kUnset));
    editor.pb_Main_MouseDown(kButtonLeft, 0, 1e300, 5);  // no integer coordinate
    EXPECT_EQ(editor.newLine(), kUnset);
    // Outside the timing step the mouse does nothing.
    editor.cmdNext_Click();
    editor.pb_Main_MouseDown(kButtonLeft, 0, 5, 20);
    EXPECT_EQ(Times(Word(1, 0)), Ints{});
}

TEST_F(TimingTest, MenuDeleteFromCutsTheWholeLyricOff) {
    StartTiming(u"ab cd\r\nef gh");
    int32_t t = 10000;
    for (int i = 0; i < 6; ++i)
        Press(kKeyRight, t += 1000);  // 11 s to 16 s
    // Right click on "cd" (13 s), "delete from" its time: every time from
    // 13 s on goes, on every line and word; earlier ones stay.
    view.onMenu = [](const cEditorMenu&) { return cMenuChoice{cMenuChoice::DelTime, 1}; };
    editor.pb_Main_MouseDown(kButtonRight, 0, 35, 3);
    EXPECT_EQ(Records(), u"[11000]<12000>ab<> <>cd\r\n[]<>ef<> <>gh\r\n");
    EXPECT_TRUE(editor.Undo());
    EXPECT_EQ(Records(), u"[11000]<12000>ab<> <13000>cd\r\n[14000]<15000>ef<> <16000>gh\r\n");
}

TEST_F(TimingTest, MenuDeletesAndEditsTheClickedElementsTimes) {
    StartTiming(u"ab cd\r\nef gh");
    PressRight({100, 200});
    Press(kKeyLeft, 210);
    Click(800, 5, 20);  // "ef"
    Click(900, 5, 3);   // "ab" again: two times
    ASSERT_EQ(Times(Word(0, 0)), (Ints{210, 900}));
    // Edit the second time by text.
    view.onMenu = [](const cEditorMenu&) { return cMenuChoice{cMenuChoice::EditTime, 2}; };
    view.onEditTime = [](cEditTime& dialog) {
        dialog.setTxtEdit(u"00:01.5");
        return std::vector<int32_t>{'x', kKeyEnter};
    };
    editor.pb_Main_MouseDown(kButtonRight, 0, 5, 3);
    EXPECT_EQ(view.editTimeShown, std::vector<std::u16string>{u"00:00.900"});
    EXPECT_EQ(Times(Word(0, 0)), (Ints{210, 1500}));
    // An empty field removes that time.
    view.onEditTime = [](cEditTime& dialog) {
        dialog.setTxtEdit(u"");
        return std::vector<int32_t>{kKeyEnter};
    };
    editor.pb_Main_MouseDown(kButtonRight, 0, 5, 3);
    EXPECT_EQ(Times(Word(0, 0)), Ints{210});
    // "Delete times" of the element drops the pending last stamp too.
    view.onMenu = [](const cEditorMenu&) { return cMenuChoice{cMenuChoice::DelTimes, 0}; };
    editor.pb_Main_MouseDown(kButtonRight, 0, 100, 3);  // line 0 itself
    EXPECT_EQ(Records(), u"[]<210>ab<> <>cd\r\n[]<800>ef<> <>gh\r\n");
    EXPECT_FALSE(editor.lastTimeSet());
}

TEST_F(TimingTest, PreviewFollowsThePlayPositionOnlyForTheEditorsTrack) {
    StartTiming(u"ab cd\r\nef gh");
    PressRight({1000, 1000, 2000, 3000});
    editor.cmdNext_Click();
    ASSERT_EQ(editor.Step(), 3);
    // Half of 25 ms, halves to even.
    EXPECT_EQ(std::tuple(timer.enabled, timer.interval, editor.lastTimeSet()),
              std::tuple(true, 12, false));
    globals.PlayPosition = 2500;
    timer.tick();
    EXPECT_EQ(Cursor(), std::pair(0, 2));
    globals.PlayPosition = 3100;
    globals.TrackID = 1;  // another track: the preview stands still
    timer.tick();
    EXPECT_EQ(editor.curLine(), 0);
    globals.TrackID = 4242;
    timer.tick();
    EXPECT_EQ(Cursor(), std::pair(1, kUnset));
    // Keys do nothing in the preview.
    Press(kKeyRight, 5000);
    EXPECT_EQ(Times(Word(1, 0)), Ints{});
    // Back to timing: the timer stops and the highlight is reset.
    editor.cmdBack_Click();
    EXPECT_EQ(std::tuple(timer.enabled, editor.curLine(), editor.Stream() == nullptr),
              std::tuple(false, kUnset, true));
}

}  // namespace
}  // namespace toval::test
