// The display's window: shows the lyric picture with the current line in the
// middle. In window mode it is frameless, translucent by effect_Alpha, on top
// when effect_AlwaysOnTop is set, moved by dragging and resized by dragging
// its edges, and its geometry goes back into the settings. In the docked mode
// it is a thin strip along the bottom edge of the screen that stands in for
// the Windows task bar and shows the current line only.
#pragma once

#include <QElapsedTimer>
#include <QImage>
#include <QTimer>
#include <QWidget>
#include <functional>

#include "config/cSettings.h"
#include "platform/DrawSurface.h"

namespace toval {

class cDisplay;
class cQtPicture;

class cDisplayWindow final : public QWidget {
    Q_OBJECT

  public:
    cDisplayWindow(cGlobals& globals, cQtPicture& picture);

    // Follows the display's mode, current line and redraws.
    void Attach(cDisplay& display);
    void Detach();
    // Shows the window in a display mode (0 hidden, 1 docked strip, 2 window).
    void ApplyMode(int32_t mode);
    // The settings changed (colours, alpha, on top, font).
    void ApplySettings();

    // The right button: the program's menu at this point.
    std::function<void(const QPoint& global)> onMenu;
    // After every repaint that showed a new highlight (the program's trace).
    std::function<void()> onPainted;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    // Where the picture's top left corner is drawn in the window.
    QPoint PictureOrigin() const;
    // In window mode, widens the window to show the lyric's widest line whole,
    // as far as the screen allows; a window wide enough keeps its size.
    void FitWidth();
    void ScrollTo(const cRect& line);
    void Step();
    // Paints the window from the band when it holds what the window shows.
    bool PaintBand(QPainter& painter, const QRect& rect, const QColor& background);
    void StoreGeometry();
    Qt::Edges EdgesAt(const QPoint& local) const;

    cGlobals& globals_;
    cQtPicture& picture_;
    cDisplay* display_ = nullptr;
    int32_t mode_ = 0;
    bool applying_ = false;
    // The middle of the current line in the picture, and the shown one, which
    // glides to it.
    double targetY_ = 0, shownY_ = 0;
    int32_t lyricWidth_ = 0;
    int32_t lineTop_ = 0, lineBottom_ = 0;
    QTimer glide_;
    QElapsedTimer glideClock_;
    // A glide paints the lines it passes once, into this band of the picture
    // as wide as the window, and each frame copies its part of it: the text
    // is not rasterised again for every frame.
    QImage band_;
    int bandTop_ = 0, bandLeft_ = 0;  // the picture's pixel at the band's top left
    uint64_t bandGeneration_ = 0;
    bool bandStale_ = true;
    QColor bandBackground_;
    // Dragging: what is dragged, from where.
    Qt::Edges dragEdges_;
    bool dragging_ = false, moved_ = false;
    QPoint pressGlobal_;
    QRect pressGeometry_;
};

}  // namespace toval
