// The lyric picture that the display draws on: rectangles of background,
// text in a colour with or without underline, and a refresh that makes the
// changes appear. Coordinates are pixels of the laid-out lyric.
// Win32: GDI on the picture's device context (DrawTextW); Qt: QPainter;
// tests: a surface that records every call.
#pragma once

#include <cstdint>
#include <string>

namespace toval {

// DrawTextW flags: ampersands drawn as they are; one line centred vertically.
inline constexpr int32_t kDtVCenter = 0x4;
inline constexpr int32_t kDtNoPrefix = 0x800;
inline constexpr int32_t kDtLyricText = kDtNoPrefix | kDtVCenter;  // 2052

// A colour reference 0x00BBGGRR.
using cColor = int32_t;

struct cRect {
    int32_t Left = 0, Top = 0, Right = 0, Bottom = 0;
    friend bool operator==(const cRect&, const cRect&) = default;
};

class DrawSurface {
  public:
    virtual ~DrawSurface() = default;

    virtual void FillRectangle(const cRect& rect, cColor color) = 0;
    // Fills the whole picture.
    virtual void Blank(cColor color) = 0;
    virtual void setTextColor(cColor color) = 0;
    // Underline of the lyric font for the text drawn next.
    virtual void setUnderline(bool underline) = 0;
    // Draws text into rect with DrawTextW-style flags (kDtLyricText).
    virtual void PaintText(const std::u16string& text, const cRect& rect, int32_t flags) = 0;
    // Makes what was drawn appear on the screen.
    virtual void Refresh() = 0;
};

}  // namespace toval
