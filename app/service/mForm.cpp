#include "mForm.h"

#include <cstdint>

namespace toval::service {

namespace {

int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

}  // namespace

bool DecodeFormText(std::string_view text, std::string& out) {
    out.clear();
    out.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '+') {
            out.push_back(' ');
        } else if (c == '%') {
            if (text.size() - i < 3) return false;
            const int high = HexDigit(text[i + 1]);
            const int low = HexDigit(text[i + 2]);
            if (high < 0 || low < 0) return false;
            out.push_back(static_cast<char>(high * 16 + low));
            i += 2;
        } else {
            out.push_back(c);
        }
    }
    return true;
}

bool ParseForm(std::string_view text, cForm& form, size_t maxFields) {
    form.clear();
    while (!text.empty()) {
        const size_t amp = text.find('&');
        const std::string_view piece = text.substr(0, amp);
        text = amp == std::string_view::npos ? std::string_view() : text.substr(amp + 1);
        if (piece.empty()) continue;
        if (form.size() == maxFields) return false;
        const size_t eq = piece.find('=');
        std::string key, value;
        if (!DecodeFormText(piece.substr(0, eq), key)) return false;
        if (eq != std::string_view::npos && !DecodeFormText(piece.substr(eq + 1), value)) {
            return false;
        }
        form.emplace_back(std::move(key), std::move(value));
    }
    return true;
}

const std::string* FormValue(const cForm& form, std::string_view key) {
    for (const auto& [k, v] : form) {
        if (k == key) return &v;
    }
    return nullptr;
}

bool FormNumber(const cForm& form, std::string_view key, int32_t& value) {
    const std::string* text = FormValue(form, key);
    if (!text || text->empty() || text->size() > 11) return false;
    size_t i = (*text)[0] == '-' ? 1 : 0;
    if (i == text->size()) return false;
    int64_t number = 0;
    for (; i < text->size(); ++i) {
        const char c = (*text)[i];
        if (c < '0' || c > '9') return false;
        number = number * 10 + (c - '0');
    }
    if ((*text)[0] == '-') number = -number;
    if (number < INT32_MIN || number > INT32_MAX) return false;
    value = static_cast<int32_t>(number);
    return true;
}

}  // namespace toval::service
