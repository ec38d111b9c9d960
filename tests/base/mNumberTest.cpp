#include "base/mNumber.h"

#include <gtest/gtest.h>

namespace toval {
namespace {

TEST(mNumber, NumericTestAcceptsSignsBlanksPointAndExponent) {
    const char16_t* yes[] = {u"\t12 ", u"+5", u"- 5", u"1.", u".5", u"1E+3", u"2.5d-1"};
    const char16_t* no[] = {u"", u"-", u".", u"1e", u"1,5", u"1 2"};
    for (auto* t : yes)
        EXPECT_TRUE(IsNumeric(std::u16string_view(t))) << "yes";
    for (auto* t : no)
        EXPECT_FALSE(IsNumeric(std::u16string_view(t))) << "no";
}

TEST(mNumber, IntegerConversionsRoundAndRefuseOverflow) {
    int32_t i32 = 7;
    EXPECT_TRUE(TextToInt32(u"2147483647", i32));
    EXPECT_EQ(i32, 2147483647);
    EXPECT_TRUE(TextToInt32(u"-2147483648", i32));
    EXPECT_EQ(i32, INT32_MIN);
    EXPECT_FALSE(TextToInt32(u"2147483648", i32));
    EXPECT_FALSE(TextToInt32(u"x", i32));
    EXPECT_EQ(i32, INT32_MIN) << "a failed conversion leaves the value as it was";
    EXPECT_TRUE(TextToInt32(u"2.5", i32));
    EXPECT_EQ(i32, 2);
    // Beyond a double's range the size decides, not whether the exponent is negative.
    const std::u16string zeros(400, u'0');
    EXPECT_TRUE(TextToInt32(u"-0." + zeros + u"7", i32));
    EXPECT_EQ(i32, 0);
    EXPECT_FALSE(TextToInt32(u"1" + zeros + u"e-10", i32));
    EXPECT_TRUE(TextToInt32(u"0.000" + zeros + u"e+400", i32));
    EXPECT_EQ(i32, 0);

    // Below the smallest value; the 8- and 16-bit upper limits are pinned where
    // a user meets them (a setting, the minutes of a time).
    uint8_t b = 0;
    EXPECT_FALSE(TextToByte(u"-1", b));
}

// Positive halves, and a negative one whose floor is odd, are pinned where a
// user meets them (times, durations, centred windows), and so are WrapAdd,
// WrapMul and the smallest number's text (mirrored geometry, track durations,
// a word record without a time).
TEST(mNumber, RoundingAndWrapAroundArithmetic) {
    EXPECT_EQ(RoundHalfEven(-1.5), -2);  // a negative half whose floor is even
    EXPECT_EQ(WrapSub(INT32_MIN, 1), INT32_MAX);
    EXPECT_EQ(WrapMul(-1, INT32_MIN), INT32_MIN);
}

}  // namespace
}  // namespace toval
