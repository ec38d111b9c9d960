// The text a fuzz input stands for: an odd first byte makes the rest 16-bit
// little-endian units, otherwise the rest is one character per byte, so the
// fuzzer reaches both plain and wide characters cheaply.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

inline std::u16string FuzzText(const uint8_t* data, size_t size) {
    std::u16string text;
    if (size > 0 && (data[0] & 1)) {
        for (size_t i = 1; i + 1 < size; i += 2)
            text.push_back(static_cast<char16_t>(data[i] | (data[i + 1] << 8)));
    } else {
        for (size_t i = 1; i < size; ++i)
            text.push_back(static_cast<char16_t>(data[i]));
    }
    return text;
}
