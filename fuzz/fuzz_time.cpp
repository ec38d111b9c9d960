// Time text parsing: never crashes, and every printed time that fits the
// 16-bit minute field reads back as the same instant.
#include <cstddef>
#include <cstdint>
#include <string>

#include "base/mNumber.h"
#include "lyric/cTime.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::u16string text;
    text.reserve(size);
    for (size_t i = 0; i < size; ++i)
        text.push_back(static_cast<char16_t>(data[i]));

    toval::cTime t;
    t.setText(text);
    int32_t m = 0, s = 0, ms = 0;
    bool negative = false;
    t.GetTime(m, s, ms, negative);
    (void)t.Seconds();
    (void)t.TextSimple();

    const int32_t value = t.Time();
    toval::cTime back;
    back.setText(t.Text());
    const int64_t magnitude = value < 0 ? -static_cast<int64_t>(value) : value;
    if (value != toval::kUnset && magnitude < int64_t{32768} * 60000 && back.Time() != value)
        __builtin_trap();
    return 0;
}
