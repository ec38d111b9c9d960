#include "lyric/cTime.h"

#include <gtest/gtest.h>

#include <array>
#include <tuple>
#include <utility>

#include "base/mNumber.h"
#include "lyric/cDelta.h"

namespace toval {
namespace {

TEST(cTime, PrintsLongAndShortFormsAndParsesNumbersAndMinuteSecondForms) {
    const std::tuple<int32_t, const char16_t*, const char16_t*> cases[] = {
        // clang-format off
        {kUnset, u"00:00.000", u"00:00.00"},  // no time prints as zero
        {-61005, u"-01:01.005", u"-01:01.00"}, {6000000, u"100:00.000", u"100:00.00"},
        {1996, u"00:01.996", u"00:01.100"},  // no carry into the seconds
        {15, u"00:00.015", u"00:00.02"}, {25, u"00:00.025", u"00:00.02"},
        {-INT32_MAX, u"-35791:23.647", u"-35791:23.65"},
        // clang-format on
    };
    for (const auto& [ms, text, simple] : cases) {
        cTime t(ms);
        EXPECT_EQ(t.Text(), text) << ms;
        EXPECT_EQ(t.TextSimple(), simple) << ms;
    }

    const std::pair<const char16_t*, int32_t> texts[] = {
        // clang-format off
        {u"01:02.5", 62500}, {u"-00:01.25", -1250}, {u"abc", 0}, {u"01:xx", kUnset},
        {u"01:02.", kUnset}, {u"+00:10.5", 10500}, {u"00:01.1234", 2234}, {u"3.5", 4},
        {u"2147483648", kUnset},
        {u"32768:00", kUnset},  // minutes are 16-bit
        {u"32767:59.999", 1966079999},
        {u"--1:00", 60000},
        // clang-format on
    };
    for (const auto& [text, ms] : texts) {
        cTime t(777);
        t.setText(text);
        EXPECT_EQ(t.Time(), ms) << testing::PrintToString(std::u16string(text));
    }
}

TEST(cTime, ComparesWithTheirOwnConventionsAndSplitsAndJoinsFields) {
    // Compare: 1 when the other is later, 2 when earlier. LongCompare: zero
    // answers 0 whatever ms is; 1 when this one is later; equal and not zero: 2.
    const std::array<int32_t, 4> cases[] = {
        {5, 5, 0, 2}, {5, 7, 1, 2}, {7, 5, 2, 1}, {0, -100, 2, 0}};
    for (const auto& [time, other, compare, longCompare] : cases) {
        EXPECT_EQ(cTime(time).Compare(cTime(other)), compare) << time << " " << other;
        EXPECT_EQ(cTime(time).LongCompare(other), longCompare) << time << " " << other;
    }

    cTime t;
    t.setTime(1, 75, 1500, false);  // fields add up unchecked
    EXPECT_EQ(t.Time(), 60000 + 75000 + 1500);
    // Seconds are floored, not truncated.
    EXPECT_EQ(std::pair(cTime(-1500).Seconds(), cTime(1999).Seconds()), std::pair(-2, 1));

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
