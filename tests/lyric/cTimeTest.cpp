#include "lyric/cTime.h"

#include <gtest/gtest.h>

#include "base/mNumber.h"

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

}  // namespace
}  // namespace toval
