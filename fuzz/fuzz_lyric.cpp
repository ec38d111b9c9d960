// A whole lyric text: loading, laying out and writing every form never
// crashes, whatever the text.
#include <cstddef>
#include <cstdint>
#include <string>

#include "fakes/FakeMeasureSurface.h"
#include "lyric/cLyric.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::u16string text;
    if (size > 0 && (data[0] & 1)) {
        for (size_t i = 1; i + 1 < size; i += 2)
            text.push_back(static_cast<char16_t>(data[i] | (data[i + 1] << 8)));
    } else {
        for (size_t i = 1; i < size; ++i)
            text.push_back(static_cast<char16_t>(data[i]));
    }

    toval::test::FakeMeasureSurface surface(7, 13);
    toval::cLyric lyric;
    lyric.setAuxPictureBox(&surface);
    lyric.setAlignment(size > 1 ? data[1] % 5 : 0);
    lyric.setLoad(text);
    (void)lyric.TextHeight();
    (void)lyric.Text();
    (void)lyric.LRC(nullptr);
    const std::u16string tvl = lyric.TVL();
    lyric.Resize();

    toval::cLyric back;
    back.setAuxPictureBox(&surface);
    back.setLoad(tvl);
    (void)back.TVL();
    return 0;
}
