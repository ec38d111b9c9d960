// The event stream on any lyric text and any sequence of positions (the
// player's answers are untrusted too): the stream never reads outside its list,
// never hangs, and raises only events that exist.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

#include "core/cEventStream.h"
#include "lyric/cLyric.h"

using namespace toval;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1) return 0;
    // The first byte tells how many 4-byte positions sit at the end.
    const size_t positions = std::min<size_t>(data[0], (size - 1) / 4);
    const size_t textBytes = size - 1 - positions * 4;
    std::u16string text;
    for (size_t i = 0; i + 1 < textBytes; i += 2)
        text.push_back(static_cast<char16_t>(data[1 + i] | (data[2 + i] << 8)));

    auto lyric = std::make_shared<cLyric>();
    lyric->setLoad(text);
    int32_t position = 0;
    cEventStream stream;
    stream.onLoadEvent = [&](int32_t& line, int32_t&) {
        if (line < 0 || line >= lyric->GetLineSize()) __builtin_trap();
    };
    stream.Load(lyric);
    for (int32_t i = 1; i < stream.NumEvents(); ++i)
        if (stream.EventTime(i - 1) > stream.EventTime(i)) __builtin_trap();

    const uint8_t* at = data + 1 + textBytes;
    for (size_t k = 0; k < positions; ++k, at += 4) {
        uint32_t bits;
        std::memcpy(&bits, at, 4);
        position = static_cast<int32_t>(bits);
        stream.UpdateTimeEvent(position);
        if (stream.NumEvents() > 0 &&
            (stream.Current() < 0 || stream.Current() >= stream.NumEvents()))
            __builtin_trap();
    }
    stream.TimeMix(static_cast<int32_t>(size) * 1000, static_cast<int32_t>(size));
    return 0;
}
