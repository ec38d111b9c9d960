#include "net/mHasher.h"

#include <array>

namespace toval {

namespace {

std::array<uint8_t, 4> HashBytes(std::string_view text) {
    std::array<uint8_t, 4> sums{};
    for (size_t i = 0; i < text.size(); ++i) {
        // uint8_t arithmetic wraps at 256, as the accumulators must.
        sums[i % 4] = static_cast<uint8_t>(sums[i % 4] + static_cast<uint8_t>(text[i]));
    }
    return sums;
}

}  // namespace

std::string GetHash(std::string_view text) {
    const auto sums = HashBytes(text);
    return std::string(sums.begin(), sums.end());
}

int32_t GetLngHash(std::string_view text) {
    const auto s = HashBytes(text);
    const uint32_t value = static_cast<uint32_t>(s[0]) | (static_cast<uint32_t>(s[1]) << 8) |
                           (static_cast<uint32_t>(s[2]) << 16) |
                           (static_cast<uint32_t>(s[3]) << 24);
    return static_cast<int32_t>(value);
}

std::string GetStrHash(std::string_view text, int32_t length) {
    if (length < 1) return {};
    const size_t n = static_cast<size_t>(length);
    std::string sums(n, '\0');
    for (size_t i = 0; i < text.size(); ++i) {
        const size_t k = i % n;
        sums[k] = static_cast<char>(
            static_cast<uint8_t>(static_cast<uint8_t>(sums[k]) + static_cast<uint8_t>(text[i])));
    }
    return sums;
}

}  // namespace toval
