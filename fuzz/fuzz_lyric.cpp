// A whole lyric text: loading, laying out and writing every form never
// crashes, whatever the text.
#include <cstddef>
#include <cstdint>
#include <string>

#include "fakes/FakeMeasureSurface.h"
#include "lyric/cLyric.h"

#include "FuzzText.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::u16string text = FuzzText(data, size);

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
