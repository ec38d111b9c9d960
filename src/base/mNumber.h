// Numbers as the program reads and writes them: the unset mark, rounding to
// nearest with halves to even, range-checked conversions to 32-, 16- and 8-bit
// integers, the general numeric test for texts, and wrap-around arithmetic.
// Everything that turns text into a number goes through here.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace toval {

// An unknown time, length, coordinate, index or revision.
inline constexpr int32_t kUnset = INT32_MIN;
// "There is no next event."
inline constexpr int32_t kNoNext = INT32_MAX;

// Rounds to the nearest integer, halves to the even neighbour (2.5 -> 2, 3.5 -> 4).
double RoundHalfEven(double value);

// Rounds half to even and stores the result when it fits; false (out untouched)
// for NaN, infinities and values outside the target range.
bool ToInt32(double value, int32_t& out);
bool ToInt16(double value, int16_t& out);
bool ToByte(double value, uint8_t& out);

// The general numeric test: optional blanks, an optional sign, digits with an
// optional decimal point (at least one digit), an optional exponent (E or D,
// with an optional sign and at least one digit), optional blanks.
// " -12.5e3 " is numeric; "", "+", ".", "1e", "0x10", "1,5" are not.
bool IsNumeric(std::u16string_view text);
bool IsNumeric(std::string_view text);
// Parses a numeric text (see IsNumeric) into a double; false when not numeric.
bool ParseNumber(std::u16string_view text, double& out);
bool ParseNumber(std::string_view text, double& out);

// Numeric text -> integer with rounding half to even; false on a non-numeric
// text or an overflow, leaving out untouched.
bool TextToInt32(std::u16string_view text, int32_t& out);
bool TextToInt16(std::u16string_view text, int16_t& out);
bool TextToByte(std::u16string_view text, uint8_t& out);

// Decimal text of an integer: "-" and digits, no padding.
std::u16string DecimalText(int64_t value);
std::string DecimalBytes(int64_t value);

// 32-bit arithmetic that wraps around instead of overflowing (two's complement).
constexpr int32_t WrapAdd(int32_t a, int32_t b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}
constexpr int32_t WrapSub(int32_t a, int32_t b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
}
constexpr int32_t WrapMul(int32_t a, int32_t b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b));
}

}  // namespace toval
