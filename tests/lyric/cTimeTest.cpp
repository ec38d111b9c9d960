#include "lyric/cTime.h"

#include <gtest/gtest.h>

#include "base/mNumber.h"
#include "lyric/cDelta.h"

namespace toval {
namespace {

TEST(cTime, PrintsLongAndShortForms) {
    const struct {
        int32_t ms;
        const char16_t *text, *simple;
    } cases[] = {
        // clang-format off
        {0, u"00:00.000", u"00:00.00"},
        {kUnset, u"00:00.000", u"00:00.00"},  // no time prints as zero
        {-61005, u"-01:01.005", u"-01:01.00"}, {6000000, u"100:00.000", u"100:00.00"},
        {1996, u"00:01.996", u"00:01.100"},  // no carry into the seconds
        {15, u"00:00.015", u"00:00.02"}, {25, u"00:00.025", u"00:00.02"},
        {-INT32_MAX, u"-35791:23.647", u"-35791:23.65"},
        // clang-format on
    };
    for (const auto& c : cases) {
        cTime t(c.ms);
        EXPECT_EQ(t.Text(), c.text) << c.ms;
        EXPECT_EQ(t.TextSimple(), c.simple) << c.ms;
    }
}

TEST(cTime, ParsesNumbersAndMinuteSecondForms) {
    const struct {
        const char16_t* text;
        int32_t ms;
    } cases[] = {
        // clang-format off
        {u"01:02.5", 62500}, {u"-00:01.25", -1250}, {u"abc", 0}, {u"01:xx", kUnset},
        {u"01:02.", kUnset}, {u"+00:10.5", 10500}, {u"1500", 1500}, {u"00:01.1234", 2234},
        {u"3.5", 4}, {u"2147483648", kUnset},
        {u"32768:00", kUnset},  // minutes are 16-bit
        {u"32767:59.999", 1966079999},
        {u"-32768:00", kUnset},  // the sign comes off first, 32768 overflows
        {u"--1:00", 60000},
        // clang-format on
    };
    for (const auto& c : cases) {
        cTime t(777);
        t.setText(c.text);
        EXPECT_EQ(t.Time(), c.ms) << testing::PrintToString(std::u16string(c.text));
    }
}

TEST(cTime, ComparesWithTheirOwnConventions) {
    // Compare: 1 when the other is later, 2 when earlier. LongCompare: zero
    // answers 0 whatever ms is; 1 when this one is later; equal and not zero: 2.
    const struct {
        int32_t time, other, compare, longCompare;
    } cases[] = {{5, 5, 0, 2},    {5, 7, 1, 2}, {7, 5, 2, 1},          {0, 0, 0, 0},
                 {0, -100, 2, 0}, {5, 0, 2, 1}, {kUnset, kUnset, 0, 2}};
    for (const auto& c : cases) {
        EXPECT_EQ(cTime(c.time).Compare(cTime(c.other)), c.compare) << c.time << " " << c.other;
        EXPECT_EQ(cTime(c.time).LongCompare(c.other), c.longCompare) << c.time << " " << c.other;
    }
}

TEST(cTime, SplitsAndJoinsFields) {
    cTime t;
    t.setTime(1, 75, 1500, false);  // fields add up unchecked
    EXPECT_EQ(t.Time(), 60000 + 75000 + 1500);
    t.setTime(0, 1, 250, true);
    EXPECT_EQ(t.Time(), -1250);
    int32_t m = 9, s = 9, ms = 9;
    bool negative = true;
    cTime(-61005).GetTime(m, s, ms, negative);
    EXPECT_EQ(std::tie(m, s, ms, negative), std::make_tuple(1, 1, 5, true));
    for (const auto& [time, seconds] : {std::pair{-1500, -2}, {1999, 1}, {kUnset, -2147484}})
        EXPECT_EQ(cTime(time).Seconds(), seconds) << time;

    // A sum beyond 32 bits, or negating the smallest value, changes nothing.
    t.setTime(123);
    t.setTime(40000, 0, 0, false);
    EXPECT_EQ(t.Time(), 123);
    t.setTime(0, 0, INT32_MIN, true);
    EXPECT_EQ(t.Time(), INT32_MIN);
}

TEST(cDelta, DiffIsTheAbsoluteSpanOfSetCoordinates) {
    cDelta d;
    const auto diff = [&] { return std::pair(d.Diff()->X(), d.Diff()->Y()); };
    const auto set = [&](int32_t x0, int32_t y0, int32_t x1, int32_t y1) {
        d.setInitial(std::make_shared<c2DPoint>(x0, y0));
        d.setFinal(std::make_shared<c2DPoint>(x1, y1));
    };
    EXPECT_EQ(diff(), std::pair(kUnset, kUnset));
    set(30, 5, 10, kUnset);
    EXPECT_EQ(diff(), std::pair(20, kUnset));  // a span has no direction
    // Replacing a point refreshes the span; editing one in place does not.
    d.Final()->setX(100);
    EXPECT_EQ(diff(), std::pair(20, kUnset));
    d.setFinal(std::make_shared<c2DPoint>(100, 25));
    EXPECT_EQ(diff(), std::pair(70, 20));
    // A span too wide for 32 bits keeps the previous size from there on:
    // X is recomputed before Y.
    set(-INT32_MAX, 0, INT32_MAX, 0);
    EXPECT_EQ(diff(), std::pair(70, 20));
    set(1, -INT32_MAX, 4, INT32_MAX);
    EXPECT_EQ(diff(), std::pair(3, 20));
}

}  // namespace
}  // namespace toval
