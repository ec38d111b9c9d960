// The lyric picture: the DrawSurface the display paints on, an image in the
// lyric font that grows to hold what is drawn, and the MeasureSurface the
// layout measures with (the same font). The window shows a part of the
// picture; Refresh tells it to repaint, so nothing is drawn on the screen
// half-done and the highlight never flickers.
#pragma once

#include <QFont>
#include <QImage>
#include <QRect>
#include <functional>

#include "platform/DrawSurface.h"
#include "platform/MeasureSurface.h"

namespace toval {

struct cSettings;

// 0x00BBGGRR to a QColor.
QColor ColorOf(cColor color);

class cQtPicture final : public DrawSurface, public MeasureSurface {
  public:
    cQtPicture();

    // The lyric font from the settings (name, size in points, styles).
    void setFont(const cSettings& settings);
    const QFont& Font() const { return font_; }
    // Device pixels per logical pixel of the screen shown on.
    void setPixelRatio(qreal ratio);

    void FillRectangle(const cRect& rect, cColor color) override;
    void Blank(cColor color) override;
    void setTextColor(cColor color) override { text_ = color; }
    void setUnderline(bool underline) override { font_.setUnderline(underline); }
    void PaintText(const std::u16string& text, const cRect& rect, int32_t flags) override;
    void Refresh() override;

    cTextExtent TextExtent(const std::u16string& text) override;
    void DoEvents() override {}

    const QImage& Image() const { return image_; }
    cColor Background() const { return background_; }
    // Raised by Refresh with the part of the picture drawn since the last
    // one (logical pixels); an empty rectangle: all of it.
    std::function<void(const QRect& drawn)> onRefresh;

  private:
    // Makes the image hold rect (logical pixels); false when it cannot.
    bool Hold(const cRect& rect);
    // Adds rect to what the next Refresh shows.
    void Drawn(const cRect& rect);

    QFont font_;
    QImage image_;
    qreal ratio_ = 1.0;
    cColor background_ = 0;
    cColor text_ = 0;
    QRect drawn_;
    bool all_ = true;
};

}  // namespace toval
