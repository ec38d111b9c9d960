#include "base/mNumber.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace toval {

namespace {

constexpr bool IsBlank(char32_t c) {
    return c == u' ' || c == u'\t';
}
constexpr bool IsDigit(char32_t c) {
    return c >= u'0' && c <= u'9';
}

// Shared scanner for both text widths. Builds the accepted characters into an
// ASCII buffer for from_chars ("D" exponents become "e", a "+" sign is dropped).
// from_chars ignores the C locale, so a front-end that sets one cannot change
// what "1.5" means.
template <class Char>
bool ScanNumber(std::basic_string_view<Char> text, double* out) {
    size_t i = 0;
    const size_t n = text.size();
    while (i < n && IsBlank(text[i]))
        ++i;
    std::string ascii;
    ascii.reserve(n - i);
    if (i < n && (text[i] == '+' || text[i] == '-')) {
        if (text[i] == '-') ascii.push_back('-');
        ++i;
        while (i < n && IsBlank(text[i]))
            ++i;
    }
    // The power of ten of the first significant digit, kept to tell a value
    // too large for a double from one too small when from_chars refuses both.
    size_t digits = 0, intDigits = 0;
    int64_t firstSignificant = -1;  // index among all mantissa digits
    const auto mantissaDigit = [&](char c) {
        if (c != '0' && firstSignificant < 0) firstSignificant = static_cast<int64_t>(digits);
        ascii.push_back(c);
        ++digits;
    };
    while (i < n && IsDigit(text[i])) {
        mantissaDigit(static_cast<char>(text[i]));
        ++i;
    }
    intDigits = digits;
    if (i < n && text[i] == '.') {
        ascii.push_back('.');
        ++i;
        while (i < n && IsDigit(text[i])) {
            mantissaDigit(static_cast<char>(text[i]));
            ++i;
        }
    }
    if (digits == 0) return false;
    int64_t exponent = 0;  // saturates far beyond any double's range
    if (i < n && (text[i] == 'e' || text[i] == 'E' || text[i] == 'd' || text[i] == 'D')) {
        ascii.push_back('e');
        ++i;
        bool negative = false;
        if (i < n && (text[i] == '+' || text[i] == '-')) {
            negative = text[i] == '-';
            ascii.push_back(static_cast<char>(text[i]));
            ++i;
        }
        size_t expDigits = 0;
        while (i < n && IsDigit(text[i])) {
            ascii.push_back(static_cast<char>(text[i]));
            if (exponent < 1000000000) exponent = exponent * 10 + (text[i] - '0');
            ++i;
            ++expDigits;
        }
        if (expDigits == 0) return false;
        if (negative) exponent = -exponent;
    }
    while (i < n && IsBlank(text[i]))
        ++i;
    if (i != n) return false;
    if (out) {
        double value = 0;
        const auto result = std::from_chars(ascii.data(), ascii.data() + ascii.size(), value);
        if (result.ec == std::errc::result_out_of_range) {
            // Too large: infinity, so that every integer conversion refuses it.
            // Too small: zero.
            const int64_t power = static_cast<int64_t>(intDigits) - 1 - firstSignificant + exponent;
            const bool huge = firstSignificant >= 0 && power > 0;
            value = huge ? std::numeric_limits<double>::infinity() : 0.0;
            if (huge && ascii[0] == '-') value = -value;
        }
        *out = value;
    }
    return true;
}

template <class Int>
bool ToInt(double value, Int& out) {
    if (!std::isfinite(value)) return false;
    const double r = RoundHalfEven(value);
    if (r < static_cast<double>(std::numeric_limits<Int>::min()) ||
        r > static_cast<double>(std::numeric_limits<Int>::max()))
        return false;
    out = static_cast<Int>(r);
    return true;
}

template <class Int>
bool TextToInt(std::u16string_view text, Int& out) {
    double value = 0;
    return ScanNumber(text, &value) && ToInt(value, out);
}

}  // namespace

double RoundHalfEven(double value) {
    if (!std::isfinite(value)) return value;
    const double lower = std::floor(value);
    const double diff = value - lower;
    if (diff < 0.5) return lower;
    if (diff > 0.5) return lower + 1.0;
    return std::fmod(lower, 2.0) == 0.0 ? lower : lower + 1.0;
}

bool ToInt32(double value, int32_t& out) {
    return ToInt(value, out);
}
bool ToInt16(double value, int16_t& out) {
    return ToInt(value, out);
}
bool ToByte(double value, uint8_t& out) {
    return ToInt(value, out);
}

bool IsNumeric(std::u16string_view text) {
    return ScanNumber(text, nullptr);
}
bool IsNumeric(std::string_view text) {
    return ScanNumber(text, nullptr);
}
bool ParseNumber(std::u16string_view text, double& out) {
    return ScanNumber(text, &out);
}
bool ParseNumber(std::string_view text, double& out) {
    return ScanNumber(text, &out);
}

bool TextToInt32(std::u16string_view text, int32_t& out) {
    return TextToInt(text, out);
}
bool TextToInt16(std::u16string_view text, int16_t& out) {
    return TextToInt(text, out);
}
bool TextToByte(std::u16string_view text, uint8_t& out) {
    return TextToInt(text, out);
}

std::string DecimalBytes(int64_t value) {
    return std::to_string(value);
}

std::u16string DecimalText(int64_t value) {
    const std::string bytes = std::to_string(value);
    return std::u16string(bytes.begin(), bytes.end());
}

}  // namespace toval
