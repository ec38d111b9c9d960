#include "cQtPicture.h"

#include <QFontMetrics>
#include <QFontMetricsF>
#include <QPainter>
#include <QPoint>
#include <algorithm>

#include "config/cSettings.h"

namespace toval {

namespace {

// The largest picture side in logical pixels: a lyric is never taller.
constexpr int32_t kMaxSide = 32000;

QString QtText(const std::u16string& text) {
    return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace

QColor ColorOf(cColor color) {
    const auto c = static_cast<uint32_t>(color);
    return QColor(static_cast<int>(c & 0xFF), static_cast<int>((c >> 8) & 0xFF),
                  static_cast<int>((c >> 16) & 0xFF));
}

cQtPicture::cQtPicture() {
    font_.setStyleStrategy(QFont::PreferAntialias);
    setFaces();
}

void cQtPicture::setFaces() {
    // The display says for each text whether it is underlined.
    plain_ = underlined_ = font_;
    plain_.setUnderline(false);
    underlined_.setUnderline(true);
}

void cQtPicture::setFont(const cSettings& s) {
    font_ = QFont(QString::fromStdU16String(s.font_Name));
    font_.setPointSizeF(std::clamp<double>(s.font_Size, 4, 200));
    font_.setBold(s.font_Bold);
    font_.setItalic(s.font_Italic);
    font_.setStrikeOut(s.font_Strikethru);
    font_.setUnderline(s.font_Underline);
    setFaces();
    recycled_.clear();
    ++generation_;
}

bool cQtPicture::Fits(const cRect& rect) {
    return rect.Left >= 0 && rect.Top >= 0 && rect.Right <= kMaxSide && rect.Bottom <= kMaxSide &&
           rect.Right > rect.Left && rect.Bottom > rect.Top;
}

uint64_t cQtPicture::Key(const cRect& rect) {
    // Every side is within 0..kMaxSide, which 16 bits hold.
    return static_cast<uint64_t>(rect.Left) << 48 | static_cast<uint64_t>(rect.Top) << 32 |
           static_cast<uint64_t>(rect.Right) << 16 | static_cast<uint64_t>(rect.Bottom);
}

void cQtPicture::Add(const cRect& rect, Mark mark) {
    Drawn(rect);
    ++generation_;
    mark.box = QRect(rect.Left, rect.Top, rect.Right - rect.Left, rect.Bottom - rect.Top);
    mark.key = Key(rect);
    at_[mark.key].push_back(marks_.size());
    marks_.push_back(std::move(mark));
}

void cQtPicture::FillRectangle(const cRect& rect, cColor color) {
    if (!Fits(rect)) return;
    // The box is painted over whole: what was drawn in it before is gone.
    const auto found = at_.find(Key(rect));
    if (found != at_.end()) {
        recycled_.clear();
        for (const size_t index : found->second) {
            Mark& old = marks_[index];
            old.live = false;
            if (old.isText && old.laidOut) recycled_.push_back(old);
        }
        dead_ += found->second.size();
        at_.erase(found);
    }
    Mark mark;
    mark.color = color;
    Add(rect, std::move(mark));
    Compact();
}

void cQtPicture::Blank(cColor color) {
    background_ = color;
    ++generation_;
    marks_.clear();
    recycled_.clear();
    at_.clear();
    dead_ = 0;
    all_ = true;
}

void cQtPicture::PaintText(const std::u16string& text, const cRect& rect, int32_t /*flags*/) {
    if (!Fits(rect)) return;
    Mark mark;
    mark.isText = true;
    mark.underline = underline_;
    mark.color = text_;
    mark.text = QtText(text);
    for (const Mark& old : recycled_) {
        if (old.underline != mark.underline || old.text != mark.text) continue;
        mark.shown = old.shown;  // shared, not copied
        mark.laidOut = true;
        break;
    }
    Add(rect, std::move(mark));
}

void cQtPicture::Compact() {
    if (dead_ < 64 || dead_ < marks_.size() / 2) return;
    std::vector<Mark> live;
    live.reserve(marks_.size() - dead_);
    at_.clear();
    for (Mark& mark : marks_) {
        if (!mark.live) continue;
        at_[mark.key].push_back(live.size());
        live.push_back(std::move(mark));
    }
    marks_ = std::move(live);
    dead_ = 0;
}

void cQtPicture::Paint(QPainter& painter, const QPoint& origin, const QRect& clip,
                       const QColor& erase) const {
    painter.setRenderHint(QPainter::TextAntialiasing);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    // What this paint has put over the window's own colour: a background
    // box elsewhere has nothing to erase.
    std::vector<QRect> painted;
    const QFont* face = nullptr;
    cColor pen = -1;
    // The clip in the picture's pixels: most marks lie in other rows.
    const QRect want = clip.translated(-origin);
    for (const Mark& mark : marks_) {
        if (!mark.live || mark.box.bottom() < want.top() || mark.box.top() > want.bottom() ||
            mark.box.right() < want.left() || mark.box.left() > want.right())
            continue;
        const QRect box = mark.box.translated(origin);
        if (!mark.isText && mark.color == background_) {
            const bool covers = std::any_of(painted.begin(), painted.end(),
                                            [&](const QRect& r) { return r.intersects(box); });
            if (!covers) continue;
            painter.setCompositionMode(QPainter::CompositionMode_Source);
            painter.fillRect(box, erase);
            painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
            continue;
        }
        painted.push_back(box);
        if (!mark.isText) {
            painter.fillRect(box, ColorOf(mark.color));
            continue;
        }
        const QFont& font = mark.underline ? underlined_ : plain_;
        if (face != &font) painter.setFont(font);
        face = &font;
        if (pen != mark.color) painter.setPen(ColorOf(mark.color));
        pen = mark.color;
        // One line, vertically centred, ampersands as they are (no mnemonics).
        if (!mark.laidOut) {
            mark.shown.setTextFormat(Qt::PlainText);
            mark.shown.setText(mark.text);
            mark.shown.prepare(QTransform(), font);
            mark.laidOut = true;
        }
        const qreal top = box.top() + (box.height() - mark.shown.size().height()) / 2.0;
        // Qt draws a static text's underline in the wrong place when the
        // screen's scale is fractional (1.5): underlined text, the title's,
        // is drawn as text.
        if (mark.underline)
            painter.drawText(QPointF(box.left(), top + QFontMetricsF(font).ascent()), mark.text);
        else
            painter.drawStaticText(QPointF(box.left(), top), mark.shown);
    }
}

void cQtPicture::Drawn(const cRect& rect) {
    drawn_ |= QRect(rect.Left, rect.Top, rect.Right - rect.Left, rect.Bottom - rect.Top);
}

void cQtPicture::Refresh() {
    const QRect drawn = all_ ? QRect() : drawn_;
    all_ = false;
    drawn_ = QRect();
    if (auto handler = onRefresh) handler(drawn);
}

cTextExtent cQtPicture::TextExtent(const std::u16string& text) {
    const QFontMetrics metrics(font_);
    const int width = text.empty() ? 0 : metrics.horizontalAdvance(QtText(text));
    return cTextExtent{std::min(width, kMaxSide), metrics.height()};
}

}  // namespace toval
