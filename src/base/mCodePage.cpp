#include "base/mCodePage.h"

#include <array>
#include <cstdint>

namespace toval {

namespace {

// Bytes 80 to 9F of Windows-1252; the undefined ones keep their own number.
constexpr std::array<char16_t, 32> kHigh = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,  // 80
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,  // 88
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,  // 90
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,  // 98
};

char ToAnsi(char16_t c) {
    if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) return static_cast<char>(c);
    for (size_t i = 0; i < kHigh.size(); ++i) {
        if (kHigh[i] == c) return static_cast<char>(0x80 + i);
    }
    return '?';
}

}  // namespace

std::string wstringTOansi(const std::u16string& text) {
    std::string bytes(text.size(), '\0');
    for (size_t i = 0; i < text.size(); ++i)
        bytes[i] = ToAnsi(text[i]);
    return bytes;
}

char16_t ansiTOwchar(unsigned char b) {
    return (b >= 0x80 && b < 0xA0) ? kHigh[b - 0x80] : static_cast<char16_t>(b);
}

std::u16string ansiTOwstring(const std::string& bytes) {
    std::u16string text(bytes.size(), u'\0');
    for (size_t i = 0; i < bytes.size(); ++i)
        text[i] = ansiTOwchar(static_cast<unsigned char>(bytes[i]));
    return text;
}

}  // namespace toval
