// The lyric picture: the DrawSurface the display paints on and the
// MeasureSurface the layout measures with (the lyric font). It keeps what was
// drawn as a list of marks (filled boxes and texts) rather than pixels, so a
// long lyric costs neither a tall image nor the time to rasterise lines that
// are never on the screen; the window paints the marks it shows. Refresh
// tells it to repaint, so nothing is shown half-done and the highlight never
// flickers.
#pragma once

#include <QColor>
#include <QFont>
#include <QRect>
#include <QStaticText>
#include <QString>
#include <functional>
#include <unordered_map>
#include <vector>

#include "platform/DrawSurface.h"
#include "platform/MeasureSurface.h"

class QPainter;
class QPoint;

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

    void FillRectangle(const cRect& rect, cColor color) override;
    void Blank(cColor color) override;
    void setTextColor(cColor color) override { text_ = color; }
    void setUnderline(bool underline) override { underline_ = underline; }
    void PaintText(const std::u16string& text, const cRect& rect, int32_t flags) override;
    void Refresh() override;

    cTextExtent TextExtent(const std::u16string& text) override;
    void DoEvents() override {}

    cColor Background() const { return background_; }
    // Changes whenever the picture does: a copy of its pixels made at one
    // generation shows it as long as the generation stays.
    uint64_t Generation() const { return generation_; }
    // The marks kept, dead ones included.
    size_t MarkCount() const { return marks_.size(); }
    // Paints the marks that meet clip (window pixels) with the picture's top
    // left corner at origin, over a clip already filled with erase: the
    // background boxes are painted in erase where they cover something.
    void Paint(QPainter& painter, const QPoint& origin, const QRect& clip,
               const QColor& erase) const;
    // Raised by Refresh with the part of the picture drawn since the last
    // one (logical pixels); an empty rectangle: all of it.
    std::function<void(const QRect& drawn)> onRefresh;

  private:
    struct Mark {
        QRect box;
        uint64_t key = 0;  // of box, in at_
        bool live = true;
        bool isText = false;
        bool underline = false;
        cColor color = 0;
        QString text;
        // Laid out at its first paint: the window repaints it without shaping it again.
        mutable QStaticText shown;
        mutable bool laidOut = false;
    };
    // Whether rect lies in the picture's bounds; marks outside are dropped.
    static bool Fits(const cRect& rect);
    static uint64_t Key(const cRect& rect);
    void Add(const cRect& rect, Mark mark);
    // Drops the dead marks once they are the greater part.
    void Compact();
    // Adds rect to what the next Refresh shows.
    void Drawn(const cRect& rect);

    // The faces texts are painted in, from the lyric font.
    void setFaces();

    QFont font_;
    QFont plain_;
    QFont underlined_;
    bool underline_ = false;
    cColor background_ = 0;
    cColor text_ = 0;
    // In the order drawn; a box drawn again replaces what was drawn in it.
    std::vector<Mark> marks_;
    std::unordered_map<uint64_t, std::vector<size_t>> at_;
    size_t dead_ = 0;
    // The texts last painted over: a word drawn again in another colour
    // takes its layout from here instead of shaping its text again.
    std::vector<Mark> recycled_;
    uint64_t generation_ = 0;
    QRect drawn_;
    bool all_ = true;
};

}  // namespace toval
