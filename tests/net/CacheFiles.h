// The cache files' bytes in tests: whole files read and written, and the
// little-endian int32 values that cache.id and cache.dat hold.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <string>

namespace toval::test {

inline std::string Slurp(const std::filesystem::path& p) {
    std::ifstream in(p, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

inline void Spit(const std::filesystem::path& p, const std::string& bytes) {
    std::ofstream(p, std::ios::binary | std::ios::trunc) << bytes;
}

inline std::string Le(std::initializer_list<int32_t> values) {
    std::string out;
    for (const int32_t v : values) {
        for (int i = 0; i < 4; ++i)
            out.push_back(static_cast<char>((static_cast<uint32_t>(v) >> (8 * i)) & 0xFF));
    }
    return out;
}
inline std::string Le(int32_t value) {
    return Le({value});
}

inline int32_t IntAt(const std::string& bytes, size_t at) {
    uint32_t u = 0;
    for (size_t i = 0; i < 4; ++i)
        u |= static_cast<uint32_t>(static_cast<uint8_t>(bytes.at(at + i))) << (8 * i);
    return static_cast<int32_t>(u);
}

}  // namespace toval::test
