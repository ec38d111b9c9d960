// The lyric's picture: an off-screen bitmap with the display font, on which
// the layout measures (GetTextExtentPoint32W) and the display draws
// (DrawTextW). The window shows part of it; drawing off screen and copying
// the result in one step is what keeps a word change free of flicker.
#pragma once

#include <windows.h>

#include <functional>

#include "config/cSettings.h"
#include "platform/DrawSurface.h"
#include "platform/MeasureSurface.h"

namespace toval {

class cGdiSurface final : public MeasureSurface, public DrawSurface {
  public:
    cGdiSurface();
    ~cGdiSurface() override;
    cGdiSurface(const cGdiSurface&) = delete;
    cGdiSurface& operator=(const cGdiSurface&) = delete;

    // The display font from the settings, at dpi dots per inch.
    void setFont(const cSettings& settings, int dpi);
    // Grows or shrinks the picture; its content is lost.
    void setSize(int width, int height);
    int Width() const { return width_; }
    int Height() const { return height_; }
    HDC Dc() const { return dc_; }

    cTextExtent TextExtent(const std::u16string& text) override;
    void DoEvents() override;

    void FillRectangle(const cRect& rect, cColor color) override;
    void Blank(cColor color) override;
    void setTextColor(cColor color) override;
    void setUnderline(bool underline) override;
    void PaintText(const std::u16string& text, const cRect& rect, int32_t flags) override;
    void Refresh() override;

    // The picture changed: the window shows it again.
    std::function<void()> onRefresh;

  private:
    void SelectFont();

    HDC dc_ = nullptr;
    HBITMAP bitmap_ = nullptr;
    HGDIOBJ oldBitmap_ = nullptr;
    HFONT font_ = nullptr;
    HFONT underlined_ = nullptr;
    HGDIOBJ oldFont_ = nullptr;
    bool underline_ = false;
    int width_ = 0, height_ = 0;
};

// The display font of the settings at dpi; the caller deletes it.
HFONT SettingsFont(const cSettings& settings, int dpi, bool underline);

// Paints a window whose client area shows the picture from its point (left,
// top) on, the rest in the background colour. All of it goes to one
// off-screen copy first: no flicker.
void PaintPicture(HWND hwnd, const cGdiSurface& picture, int left, int top, COLORREF background);

}  // namespace toval
