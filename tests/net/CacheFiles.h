// The little-endian int32 values that cache.id and cache.dat hold, as bytes.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>

namespace toval::test {

inline std::string Le(std::initializer_list<int32_t> values) {
    std::string out;
    for (const int32_t v : values) {
        for (int i = 0; i < 4; ++i)
            out.push_back(static_cast<char>((static_cast<uint32_t>(v) >> (8 * i)) & 0xFF));
    }
    return out;
}

inline int32_t IntAt(const std::string& bytes, size_t at) {
    uint32_t u = 0;
    for (size_t i = 0; i < 4; ++i)
        u |= static_cast<uint32_t>(static_cast<uint8_t>(bytes.at(at + i))) << (8 * i);
    return static_cast<int32_t>(u);
}

}  // namespace toval::test
