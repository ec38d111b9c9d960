#include "net/cNetError.h"

namespace toval {

std::string cNetError::Printable(std::string_view bytes, size_t limit) {
    std::string out;
    for (const char c : bytes.substr(0, limit)) {
        const auto byte = static_cast<unsigned char>(c);
        out.push_back(byte >= 0x20 && byte < 0x7F ? c : '?');
    }
    if (bytes.size() > limit) out += "...";
    return out;
}

std::string cNetError::Seconds(int64_t ms) {
    const bool negative = ms < 0;
    // Magnitude as unsigned, so that the smallest value needs no negation.
    const uint64_t magnitude = negative ? 0 - static_cast<uint64_t>(ms) : static_cast<uint64_t>(ms);
    // Appended piece by piece: GCC 12 for 32-bit targets warns falsely about
    // `const char* + std::string` here.
    std::string text;
    if (negative) text.push_back('-');
    text.append(std::to_string(magnitude / 1000));
    if (const uint64_t rest = magnitude % 1000; rest != 0) {
        std::string fraction = std::to_string(1000 + rest).substr(1);
        while (fraction.back() == '0')
            fraction.pop_back();
        text.push_back('.');
        text.append(fraction);
    }
    text.append(" s");
    return text;
}

}  // namespace toval
