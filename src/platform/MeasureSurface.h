// The measuring surface the lyric layout borrows from its owner: an off-screen
// drawing context with the display font selected.
#pragma once

#include <cstdint>
#include <string>

namespace toval {

// The size of a run of text in pixels.
struct cTextExtent {
    int32_t cx = 0, cy = 0;
};

class MeasureSurface {
  public:
    virtual ~MeasureSurface() = default;
    // Width and height of the text as one run in the current font (kerning
    // and blanks included). An empty text gives the font's line height.
    virtual cTextExtent TextExtent(const std::u16string& text) = 0;
    // One turn of the message loop, so that a pending font change is applied
    // before measuring.
    virtual void DoEvents() = 0;
};

}  // namespace toval
