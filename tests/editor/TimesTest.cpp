// Range operations on times, and the advanced dialog's checks and actions.
#include <cmath>

#include "EditorFixture.h"
#include "editor/cEditAdvTime.h"

namespace toval::test {
namespace {

class TimesTest : public EditorTest {
  protected:
    // The timing step; each test then loads its lyric.
    void SetUp() override {
        editor.Form_Load(music);
        editor.updateStep(2);
    }
};

TEST_F(TimesTest, LimitsDeleteDelayAndAdjustOverARange) {
    // Line times, word times, a word sung twice.
    editor.Lyric()->setLoad(u"[200]<200>a <12000>b\r\n[5000][30000]<5000>c <5500><31000>d\r\n");
    int32_t low = 0, high = 0;
    editor.getTimerLimits(low, high);
    EXPECT_EQ(std::pair(low, high), std::pair(200, 31000));
    // Nothing clamped: 200 becomes -300.
    editor.setDelay(-500, 0, 5000);
    EXPECT_EQ(Records(), u"[-300]<-300>a <12000>b\r\n[4500][30000]<4500>c <5500><31000>d\r\n");
    // Adjust is linear, (t - 4500) * 0.5 + 1000, and 0.5 of 1 rounds to 0 (even).
    editor.setAdjust(0.5, 1000, 4500, 5500);
    editor.setAdjust(0.5, 0, 12000, 12001);
    EXPECT_EQ(Records(), u"[-300]<-300>a <0>b\r\n[1000][30000]<1000>c <1500><31000>d\r\n");
    editor.delTimes(0, 1000);  // inclusive
    EXPECT_EQ(Records(), u"[-300]<-300>a <>b\r\n[30000]<>c <1500><31000>d\r\n");
    editor.delTimes(INT32_MIN, INT32_MAX);
    editor.getTimerLimits(low, high);
    EXPECT_EQ(std::pair(low, high), std::pair(INT32_MAX, INT32_MIN));  // no time: start values
}

TEST_F(TimesTest, ArithmeticThatLeaves32BitsStopsWithoutWrapping) {
    editor.Lyric()->setLoad(u"[2147483000]<10>a <2147483600>b\r\n");
    // A time that would leave 32 bits stops the walk there: what came
    // before it has moved, nothing after it (the line's time comes first).
    editor.setDelay(1000, 0, INT32_MAX);
    EXPECT_EQ(Records(), u"[2147483000]<10>a <2147483600>b\r\n");
    editor.setDelay(INT32_MIN, 0, 100);  // 10 - 2^31 still fits
    editor.setDelay(-10, INT32_MIN, 0);  // and -2^31 exactly
    const std::u16string lowest = u"[2147483000]<-2147483648>a <2147483600>b\r\n";
    EXPECT_EQ(Records(), lowest);
    editor.setAdjust(std::nan(""), 0, 0, INT32_MAX);
    editor.setAdjust(-1.0, 0, INT32_MIN, INT32_MAX);  // t - from needs 64 bits
    EXPECT_EQ(Records(), lowest);
}

TEST(EditAdvTime, PrefillsFromTheLimitsAndChecksFieldsInOrder) {
    cEditAdvTime dialog;
    dialog.Prefill(INT32_MAX, INT32_MIN);  // a lyric without times
    EXPECT_EQ(dialog.txtEdit(cEditAdvTime::kTo), u"00:00.000");
    dialog.Prefill(1500, 61005);
    EXPECT_EQ(dialog.txtEdit(cEditAdvTime::kNewStart), u"00:01.500");  // kNewEnd: read below

    // Only the fields of the chosen options are read: a bad adjust field does
    // not matter for a delay over everything.
    dialog.optAll_Click();
    dialog.optDelay_Click();
    dialog.setTxtEdit(cEditAdvTime::kNewStart, u"01:xx");
    dialog.setTxtEdit(cEditAdvTime::kDelayBy, u"-00:00.5");
    EXPECT_EQ(dialog.cmdOk(), -1);
    EXPECT_EQ(dialog.ResultBits(), cEditAdvTime::kDelay);
    EXPECT_EQ(dialog.Delay(), -500);

    // Range from, range to, then the action's fields.
    dialog.optFrom_Click();
    dialog.optAdjust_Click();
    dialog.setTxtEdit(cEditAdvTime::kTo, u"01:02.");
    dialog.setTxtEdit(cEditAdvTime::kFrom, u"x:1");
    EXPECT_EQ(dialog.cmdOk(), cEditAdvTime::kFrom);
    dialog.setTxtEdit(cEditAdvTime::kFrom, u"2000");  // a number is milliseconds
    dialog.setTxtEdit(cEditAdvTime::kTo, u"00:01");
    dialog.setTxtEdit(cEditAdvTime::kNewStart, u"0");
    EXPECT_EQ(dialog.cmdOk(), -1);
    EXPECT_EQ(dialog.ResultBits(), cEditAdvTime::kRange | cEditAdvTime::kAdjust);
    // A range typed backwards is taken from its lower end.
    EXPECT_EQ(std::tuple(dialog.From(), dialog.To(), dialog.NewEnd()),
              std::tuple(1000, 2000, 61005));
}

TEST_F(TimesTest, AdvancedEditingAppliesTheChosenAction) {
    editor.Lyric()->setLoad(u"[1000]<1000>a <2000>b\r\n[3000]<3000>c <5000>d\r\n");
    editor.mnuAdv_Click();  // cancelled: no undo step

    // Adjust over the whole lyric: limits 1000..5000 onto 0..8000 (x2).
    view.onAdv = [](cEditAdvTime& d) {
        d.optAll_Click();
        d.optAdjust_Click();
        d.setTxtEdit(cEditAdvTime::kNewStart, u"0");
        d.setTxtEdit(cEditAdvTime::kNewEnd, u"00:08");
        return true;
    };
    editor.mnuAdv_Click();
    EXPECT_EQ(Records(), u"[0]<0>a <2000>b\r\n[4000]<4000>c <8000>d\r\n");

    // A delay over a range.
    view.onAdv = [](cEditAdvTime& d) {
        d.optFrom_Click();
        d.optDelay_Click();
        d.setTxtEdit(cEditAdvTime::kFrom, u"00:02");
        d.setTxtEdit(cEditAdvTime::kTo, u"00:04");
        d.setTxtEdit(cEditAdvTime::kDelayBy, u"250");
        return true;
    };
    editor.mnuAdv_Click();
    EXPECT_EQ(Records(), u"[0]<0>a <2250>b\r\n[4250]<4250>c <8000>d\r\n");
    // Every step that changed something undoes.
    EXPECT_EQ(editor.History().UndoSize(), 2u);
    editor.Undo();
    editor.Undo();
    EXPECT_EQ(Records(), u"[1000]<1000>a <2000>b\r\n[3000]<3000>c <5000>d\r\n");
}

}  // namespace
}  // namespace toval::test
