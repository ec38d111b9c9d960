// The INI engine on arbitrary file bytes: reading never fails, and a value
// written under plain names reads back while every other key keeps its value.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "config/cIniEngine.h"

namespace {

std::string PlainName(std::string_view raw) {
    std::string name;
    for (char c : raw) {
        if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
            c == '_') {
            name.push_back(c);
        }
    }
    return name.empty() ? "k" : name;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    // Layout: section \x01 key \x01 value \x01 file content.
    std::string_view parts[4];
    std::string_view rest = input;
    for (int i = 0; i < 3; ++i) {
        const size_t cut = rest.find('\x01');
        if (cut == std::string_view::npos) {
            parts[3] = rest;
            rest = {};
            break;
        }
        parts[i] = rest.substr(0, cut);
        rest.remove_prefix(cut + 1);
    }
    if (!rest.empty()) parts[3] = rest;
    const std::string_view content = parts[3];

    using toval::cIniEngine;
    const size_t buffer = 1 + size % 1100;
    const std::string raw = cIniEngine::Lookup(content, parts[0], parts[1], "def", buffer);
    if (raw.size() >= buffer) std::abort();

    const std::string section = PlainName(parts[0]);
    const std::string key = PlainName(parts[1]);
    std::string value;
    for (char c : parts[2]) {
        if (c > ' ' && c != '"' && c != '\'' && c != 0x7f) value.push_back(c);
    }
    const std::string updated = cIniEngine::Update(content, section, key, value);
    if (cIniEngine::Lookup(updated, section, key, "", 1u << 20) != value) std::abort();
    // Every other key of the section reads as it did.
    const std::string other = key + "_other";
    if (cIniEngine::Lookup(content, section, other, "none", 1u << 20) !=
        cIniEngine::Lookup(updated, section, other, "none", 1u << 20)) {
        std::abort();
    }
    return 0;
}
