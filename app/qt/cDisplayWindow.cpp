#include "cDisplayWindow.h"

#include <QGuiApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <algorithm>
#include <cmath>

#include "cQtPicture.h"
#include "display/cDisplay.h"

namespace toval {

namespace {

constexpr int kEdge = 6;  // the width of the resizing border
// A change of line glides in four frames 40 ms apart, the first with the
// change itself: smooth for a glide this short, and three wake-ups.
constexpr int kGlideFrames = 4;
constexpr int kGlideStepMs = 40;
constexpr int kMinWidth = 120, kMinHeight = 32;

int Pixels(int32_t twips) {
    return static_cast<int>(twips / 15);
}

QRect AvailableArea() {
    const QScreen* screen = QGuiApplication::primaryScreen();
    return screen ? screen->availableGeometry() : QRect(0, 0, 1024, 768);
}

}  // namespace

cDisplayWindow::cDisplayWindow(cGlobals& globals, cQtPicture& picture)
    : QWidget(nullptr), globals_(globals), picture_(picture) {
    // Every pixel is painted, opaque: the window's alpha is the window
    // system's (effect_Alpha), and a glide can move the shown pixels instead
    // of sending them again.
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
    setWindowTitle(QStringLiteral("Toval"));
    glide_.setInterval(kGlideStepMs);
    connect(&glide_, &QTimer::timeout, this, &cDisplayWindow::Step);
    // A change of word repaints the two words, not the window.
    picture_.onRefresh = [this](const QRect& drawn) {
        if (drawn.isEmpty() || glide_.isActive())
            update();
        else
            update(drawn.translated(PictureOrigin()).adjusted(-1, -1, 1, 1));
    };
}

void cDisplayWindow::Attach(cDisplay& display) {
    display_ = &display;
    display.onWindowChanged = [this](int32_t mode) { ApplyMode(mode); };
    display.onCurrentLine = [this](const cRect& box) { ScrollTo(box); };
    display.onRedrawn = [this](const cRect& box) {
        lyricWidth_ = box.Right - box.Left;
        lineTop_ = lineBottom_ = 0;
        targetY_ = shownY_ = 0;
        FitWidth();
        update();
    };
    display.onReajustWindow = [this] { ApplyMode(mode_); };
}

void cDisplayWindow::Detach() {
    if (!display_) return;
    display_->onWindowChanged = nullptr;
    display_->onCurrentLine = nullptr;
    display_->onRedrawn = nullptr;
    display_->onReajustWindow = nullptr;
    display_ = nullptr;
}

void cDisplayWindow::ApplySettings() {
    ApplyMode(mode_);
}

void cDisplayWindow::ApplyMode(int32_t mode) {
    mode_ = mode;
    applying_ = true;
    const cSettings& s = globals_.Settings;
    Qt::WindowFlags flags = Qt::FramelessWindowHint | Qt::Tool;
    if (s.effect_AlwaysOnTop || mode == kModeTray) flags |= Qt::WindowStaysOnTopHint;
    if (mode == kModeTray) flags |= Qt::WindowDoesNotAcceptFocus;
    if (windowFlags() != flags) setWindowFlags(flags);
    // The whole window is translucent, text and all, as a layered window is.
    setWindowOpacity(mode == kModeWindow ? s.effect_Alpha / 255.0 : 1.0);
    const QRect area = AvailableArea();
    if (mode == kModeWindow) {
        QRect r(Pixels(s.pos_WinLeft), Pixels(s.pos_WinTop), Pixels(s.size_WinWidth),
                Pixels(s.size_WinHeight));
        r.setWidth(std::clamp(r.width(), kMinWidth, std::max(kMinWidth, area.width())));
        r.setHeight(std::clamp(r.height(), kMinHeight, std::max(kMinHeight, area.height())));
        // A window left on a screen that is gone comes back into view.
        if (!area.intersects(r)) r.moveCenter(area.center());
        setGeometry(r);
        FitWidth();
        show();
    } else if (mode == kModeTray) {
        const int line = picture_.TextExtent(u"").cy;
        const int height = std::max(line + 2 * std::clamp(s.tray_Border, 0, 40) / 3, 16);
        const int width = std::clamp(area.width() / 3, 200, std::max(200, area.width()));
        setGeometry(area.right() - width + 1, area.bottom() - height + 1, width, height);
        show();
    } else {
        hide();
    }
    applying_ = false;
    update();
}

void cDisplayWindow::FitWidth() {
    if (mode_ != kModeWindow || lyricWidth_ <= 0) return;
    // The widest line of the layout, clear of the resizing borders.
    const QRect area = AvailableArea();
    const int wanted = std::min(lyricWidth_ + 2 * kEdge, area.width());
    if (width() >= wanted) return;
    // Grows on both sides alike, and stays on the screen.
    QRect r = geometry();
    r.setLeft(r.left() - (wanted - r.width()) / 2);
    r.setWidth(wanted);
    if (r.left() < area.left()) r.moveLeft(area.left());
    if (r.right() > area.right()) r.moveRight(area.right());
    setGeometry(r);
}

void cDisplayWindow::ScrollTo(const cRect& line) {
    targetY_ = (line.Top + line.Bottom) / 2.0;
    lineTop_ = line.Top;
    lineBottom_ = line.Bottom;
    if (mode_ == kModeTray || !isVisible()) {
        // The picture moves at once: all of the window is new.
        shownY_ = targetY_;
        update();
        return;
    }
    glideClock_.start();
    if (!glide_.isActive()) glide_.start();
    bandStale_ = true;
    Step();
}

void cDisplayWindow::Step() {
    const double done = std::min(1.0, static_cast<double>(glideClock_.elapsed() + kGlideStepMs) /
                                          (kGlideFrames * kGlideStepMs));
    const int before = PictureOrigin().y();
    shownY_ += (targetY_ - shownY_) * done;
    if (done >= 1.0 || std::abs(targetY_ - shownY_) < 0.5) {
        shownY_ = targetY_;
        glide_.stop();
    }
    const int dy = PictureOrigin().y() - before;
    // The first frame paints the band; the next ones move what the window
    // shows and paint only the rows that come into view.
    if (bandStale_ || mode_ != kModeWindow || std::abs(dy) >= height())
        update();
    else if (dy != 0)
        scroll(0, dy);
}

void cDisplayWindow::paintEvent(QPaintEvent* event) {
    QPainter p(this);
    const QColor background = ColorOf(picture_.Background());
    p.setCompositionMode(QPainter::CompositionMode_Source);
    if (mode_ != kModeWindow || !PaintBand(p, event->rect(), background)) {
        p.fillRect(event->rect(), background);
        const QPoint at = PictureOrigin();
        QRect clip = event->rect();
        // The strip shows the current line alone, never a slice of its neighbours.
        if (mode_ == kModeTray)
            clip &= QRect(0, at.y() + lineTop_, width(), lineBottom_ - lineTop_);
        if (!clip.isEmpty()) {
            p.setClipRect(clip);
            picture_.Paint(p, at, clip, background);
        }
    }
    if (onPainted) onPainted();
}

bool cDisplayWindow::PaintBand(QPainter& p, const QRect& rect, const QColor& background) {
    const QPoint at = PictureOrigin();
    const qreal ratio = devicePixelRatioF();
    const bool valid = !bandStale_ && !band_.isNull() && bandGeneration_ == picture_.Generation() &&
                       bandLeft_ == -at.x() && bandBackground_ == background &&
                       band_.devicePixelRatio() == ratio &&
                       band_.deviceIndependentSize().width() == width();
    if (!valid) {
        // Only a glide paints a band; the last frame of one still shows it.
        if (!glide_.isActive()) return false;
        // From where the glide starts to where it ends, half a window above and below.
        const int from = static_cast<int>(std::floor(std::min(shownY_, targetY_)));
        const int to = static_cast<int>(std::ceil(std::max(shownY_, targetY_)));
        // A long jump (a seek) glides over lines not worth painting whole.
        if (to - from > 2 * height()) return false;
        bandTop_ = from - height() / 2 - 2;
        bandLeft_ = -at.x();
        bandGeneration_ = picture_.Generation();
        bandBackground_ = background;
        const QSize size(width(), to - from + height() + 4);
        // Kept between glides: most are the same height, one line apart.
        if (band_.size() != size * ratio)
            band_ = QImage(size * ratio, QImage::Format_ARGB32_Premultiplied);
        band_.setDevicePixelRatio(ratio);
        bandStale_ = false;
        band_.fill(background);
        QPainter bp(&band_);
        picture_.Paint(bp, QPoint(-bandLeft_, -bandTop_), QRect(QPoint(0, 0), size), background);
    }
    // The window's top row is the picture's row -at.y().
    const int top = -at.y() - bandTop_;
    if (top < 0 || top + height() > band_.deviceIndependentSize().height()) return false;
    p.drawImage(
        rect, band_,
        QRectF(QPointF(rect.left(), rect.top() + top) * ratio, QSizeF(rect.size()) * ratio));
    return true;
}

QPoint cDisplayWindow::PictureOrigin() const {
    return QPoint(static_cast<int>(std::round((width() - lyricWidth_) / 2.0)),
                  static_cast<int>(std::round(height() / 2.0 - shownY_)));
}

Qt::Edges cDisplayWindow::EdgesAt(const QPoint& pos) const {
    Qt::Edges edges;
    if (mode_ != kModeWindow) return edges;
    if (pos.x() < kEdge) edges |= Qt::LeftEdge;
    if (pos.x() >= width() - kEdge) edges |= Qt::RightEdge;
    if (pos.y() < kEdge) edges |= Qt::TopEdge;
    if (pos.y() >= height() - kEdge) edges |= Qt::BottomEdge;
    return edges;
}

void cDisplayWindow::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::RightButton) {
        if (onMenu) onMenu(event->globalPosition().toPoint());
        return;
    }
    if (event->button() != Qt::LeftButton) return;
    dragging_ = true;
    moved_ = false;
    dragEdges_ = EdgesAt(event->position().toPoint());
    pressGlobal_ = event->globalPosition().toPoint();
    pressGeometry_ = geometry();
}

void cDisplayWindow::mouseMoveEvent(QMouseEvent* event) {
    if (!dragging_) {
        const Qt::Edges e = EdgesAt(event->position().toPoint());
        if ((e & (Qt::LeftEdge | Qt::RightEdge)) && (e & (Qt::TopEdge | Qt::BottomEdge)))
            setCursor((e == (Qt::LeftEdge | Qt::TopEdge) || e == (Qt::RightEdge | Qt::BottomEdge))
                          ? Qt::SizeFDiagCursor
                          : Qt::SizeBDiagCursor);
        else if (e & (Qt::LeftEdge | Qt::RightEdge))
            setCursor(Qt::SizeHorCursor);
        else if (e & (Qt::TopEdge | Qt::BottomEdge))
            setCursor(Qt::SizeVerCursor);
        else
            unsetCursor();
        return;
    }
    const QPoint delta = event->globalPosition().toPoint() - pressGlobal_;
    if (!moved_ && delta.manhattanLength() < 3) return;
    moved_ = true;
    if (mode_ != kModeWindow) return;
    QRect r = pressGeometry_;
    if (!dragEdges_) {
        r.translate(delta);
    } else {
        if (dragEdges_ & Qt::LeftEdge)
            r.setLeft(std::min(r.left() + delta.x(), r.right() - kMinWidth));
        if (dragEdges_ & Qt::RightEdge)
            r.setRight(std::max(r.right() + delta.x(), r.left() + kMinWidth));
        if (dragEdges_ & Qt::TopEdge)
            r.setTop(std::min(r.top() + delta.y(), r.bottom() - kMinHeight));
        if (dragEdges_ & Qt::BottomEdge)
            r.setBottom(std::max(r.bottom() + delta.y(), r.top() + kMinHeight));
    }
    setGeometry(r);
}

void cDisplayWindow::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !dragging_) return;
    dragging_ = false;
    // A click, not a drag: a lyric with a link opens it.
    if (!moved_ && display_) display_->Click();
}

void cDisplayWindow::StoreGeometry() {
    if (applying_ || mode_ != kModeWindow || !isVisible()) return;
    cSettings& s = globals_.Settings;
    const QRect r = geometry();
    s.pos_WinLeft = r.x() * 15;
    s.pos_WinTop = r.y() * 15;
    s.size_WinWidth = r.width() * 15;
    s.size_WinHeight = r.height() * 15;
}

void cDisplayWindow::moveEvent(QMoveEvent*) {
    StoreGeometry();
}

void cDisplayWindow::resizeEvent(QResizeEvent*) {
    StoreGeometry();
}

}  // namespace toval
