// Timing with the arrow keys and the mouse on a laid-out lyric (10 pixels per
// character, 16 pixels per line), the pop-up menu and the preview.
#include "EditorFixture.h"
#include "core/cEventStream.h"

namespace toval::test {
namespace {

class TimingTest : public EditorTest {};

TEST_F(TimingTest, ArrowsWalkLinesThenRealWordsCorrectTakeTheNextLineAndOverwriteAtTheEnd) {
    StartTiming(u"Hi, you all\r\n- -\r\nend");
    PressRight({100, 200, 300});  // line 0, "Hi", then "you" past the separators
    Press(kKeyLeft, 350);         // again: "you" corrected, nothing added
    Press(kKeyDown, 400);         // next line, skipping "all"
    // Line 1 is made of separators only: its words are skipped. The last
    // press finds nothing after "end" and overwrites it.
    PressRight({500, 600, 700});
    EXPECT_EQ(Records(),
              u"[100]<200>Hi<>,<> <350>you<> <>all\r\n[400]<>-<> <>-\r\n[500]<700>end\r\n");
}

TEST_F(TimingTest, RightToLeftLyricSwapsTheArrowsAndWalksFromTheLastWord) {
    const std::u16string a = u"\u05D0\u05D1", b = u"\u05D2\u05D3";
    editor.Form_Load(music);
    editor.chkRighttoleft_Click(true);
    editor.txtEdit_Change(a + u" " + b);
    editor.cmdNext_Click();
    // Stored in visual order: b, blank, a.
    Press(kKeyLeft, 100);   // next: the line
    Press(kKeyLeft, 200);   // next: the last word, a (the first sung)
    Press(kKeyLeft, 300);   // the blank is skipped: b
    Press(kKeyRight, 350);  // again: b corrected
    EXPECT_EQ(Records(), u"[100]<350>" + b + u"<> <200>" + a + u"\r\n");
}

TEST_F(TimingTest, MouseHitsWordsLinesAndNothing) {
    StartTiming(u"ab cd\r\nlonger line here");
    // Line 0: "ab" 0-20, " " 20-30, "cd" 30-50; y 0-16.
    Click(600, 35.4, 3);  // "cd"
    Click(700, 120, 8);   // beside the words: the line
    Click(800, 5, 500);   // below every line: nothing
    EXPECT_EQ(std::pair(editor.newLine(), editor.curLine()), std::pair(kUnset, kUnset));
    Click(900, 1e300, 5);  // no integer coordinate
    EXPECT_EQ(Records(), u"[700]<>ab<> <600>cd\r\n[]<>longer<> <>line<> <>here\r\n");
    // Outside the timing step the mouse does nothing.
    editor.cmdNext_Click();
    Click(1000, 5, 20);
    EXPECT_EQ(Records(), u"[700]<>ab<> <600>cd\r\n[]<>longer<> <>line<> <>here\r\n");
}

TEST_F(TimingTest, MenuDeletesAndEditsTheClickedElementsTimes) {
    StartTiming(u"ab cd\r\nef gh");
    PressRight({100, 200});
    Press(kKeyLeft, 210);
    Click(800, 5, 20);  // "ef"
    Click(900, 5, 3);   // "ab" again: a word sung twice has two times
    // Edit the second time by text; a time before its neighbour is allowed.
    view.onMenu = [](const cEditorMenu&) { return cMenuChoice{cMenuChoice::EditTime, 2}; };
    view.onEditTime = [](cEditTime& dialog) {
        dialog.setTxtEdit(u"00:00.1");
        return std::vector<int32_t>{'x', kKeyEnter};
    };
    editor.pb_Main_MouseDown(kButtonRight, 0, 5, 3);
    EXPECT_EQ(view.editTimeShown, std::vector<std::u16string>{u"00:00.900"});
    EXPECT_EQ(Records(), u"[100]<210><100>ab<> <>cd\r\n[]<800>ef<> <>gh\r\n");
    // "Delete from" the first time of "ab" cuts every time from 210 on, on
    // every line and word; earlier ones stay. One undo step brings them back.
    view.onMenu = [](const cEditorMenu&) { return cMenuChoice{cMenuChoice::DelTime, 1}; };
    editor.pb_Main_MouseDown(kButtonRight, 0, 5, 3);
    EXPECT_EQ(Records(), u"[100]<100>ab<> <>cd\r\n[]<>ef<> <>gh\r\n");
    EXPECT_TRUE(editor.Undo());
    // An empty field removes that time.
    view.onMenu = [](const cEditorMenu&) { return cMenuChoice{cMenuChoice::EditTime, 2}; };
    view.onEditTime = [](cEditTime& dialog) {
        dialog.setTxtEdit(u"");
        return std::vector<int32_t>{kKeyEnter};
    };
    editor.pb_Main_MouseDown(kButtonRight, 0, 5, 3);
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
    // Half of 25 ms, halves to even.
    EXPECT_EQ(std::tuple(timer.enabled, timer.interval, editor.lastTimeSet()),
              std::tuple(true, 12, false));
    globals.PlayPosition = 2500;
    globals.TrackID = 1;  // another track: the preview stands where the timing left it
    timer.tick();
    EXPECT_EQ(editor.curLine(), 1);
    globals.TrackID = 4242;
    timer.tick();
    EXPECT_EQ(std::pair(editor.curLine(), editor.curWord()), std::pair(0, 2));
    // Keys do nothing in the preview.
    const std::u16string timed = Records();
    Press(kKeyRight, 5000);
    EXPECT_EQ(Records(), timed);
    // Back to timing: the timer stops and the highlight is reset.
    editor.cmdBack_Click();
    EXPECT_EQ(std::tuple(timer.enabled, editor.curLine(), editor.Stream() == nullptr),
              std::tuple(false, kUnset, true));
}

}  // namespace
}  // namespace toval::test
