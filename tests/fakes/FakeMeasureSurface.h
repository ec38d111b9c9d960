// A measuring surface with fixed-width metrics: every character is charWidth
// pixels wide, every run (the empty one too) height pixels high.
#pragma once

#include <cstdint>
#include <string>

#include "platform/MeasureSurface.h"

namespace toval::test {

class FakeMeasureSurface : public MeasureSurface {
  public:
    FakeMeasureSurface() = default;
    FakeMeasureSurface(int32_t width, int32_t h) : charWidth(width), height(h) {}

    cTextExtent TextExtent(const std::u16string& text) override {
        return {static_cast<int32_t>(text.size()) * charWidth, height};
    }
    void DoEvents() override { ++doEvents; }

    int32_t charWidth = 10;
    int32_t height = 16;
    int32_t doEvents = 0;
};

}  // namespace toval::test
