#include "cQtPicture.h"

#include <QFontMetrics>
#include <QPainter>
#include <algorithm>
#include <cmath>

#include "config/cSettings.h"

namespace toval {

namespace {

// The largest picture side in logical pixels: a lyric is never taller, and a
// hostile layout never makes the program allocate gigabytes.
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
}

void cQtPicture::setFont(const cSettings& s) {
    font_ = QFont(QString::fromStdU16String(s.font_Name));
    font_.setPointSizeF(std::clamp<double>(s.font_Size, 4, 200));
    font_.setBold(s.font_Bold);
    font_.setItalic(s.font_Italic);
    font_.setStrikeOut(s.font_Strikethru);
    font_.setUnderline(s.font_Underline);
}

void cQtPicture::setPixelRatio(qreal ratio) {
    if (!(ratio >= 1.0) || ratio > 8.0) ratio = 1.0;
    ratio_ = ratio;
}

bool cQtPicture::Hold(const cRect& rect) {
    if (rect.Left < 0 || rect.Top < 0 || rect.Right > kMaxSide || rect.Bottom > kMaxSide)
        return false;
    const int width = image_.isNull() ? 0 : static_cast<int>(image_.width() / ratio_);
    const int height = image_.isNull() ? 0 : static_cast<int>(image_.height() / ratio_);
    if (rect.Right <= width && rect.Bottom <= height) return true;
    // Grow by half again at least, so that a long lyric is copied a few times only.
    const int newWidth = rect.Right <= width
                             ? width
                             : std::min(kMaxSide, std::max<int>(rect.Right, width + width / 2));
    const int newHeight = rect.Bottom <= height
                              ? height
                              : std::min(kMaxSide, std::max<int>(rect.Bottom, height + height / 2));
    QImage grown(static_cast<int>(std::ceil(newWidth * ratio_)),
                 static_cast<int>(std::ceil(newHeight * ratio_)),
                 QImage::Format_ARGB32_Premultiplied);
    if (grown.isNull()) return false;
    grown.setDevicePixelRatio(ratio_);
    grown.fill(Qt::transparent);
    if (!image_.isNull()) {
        QPainter p(&grown);
        p.drawImage(0, 0, image_);
    }
    image_ = std::move(grown);
    return true;
}

void cQtPicture::FillRectangle(const cRect& rect, cColor color) {
    if (rect.Right <= rect.Left || rect.Bottom <= rect.Top || !Hold(rect)) return;
    Drawn(rect);
    QPainter p(&image_);
    // The background stays clear: the window lays its translucent colour under the picture.
    p.setCompositionMode(QPainter::CompositionMode_Source);
    p.fillRect(QRect(rect.Left, rect.Top, rect.Right - rect.Left, rect.Bottom - rect.Top),
               color == background_ ? QColor(Qt::transparent) : ColorOf(color));
}

void cQtPicture::Blank(cColor color) {
    background_ = color;
    // A new lyric starts from an empty picture, sized by what it draws.
    image_ = QImage();
    all_ = true;
}

void cQtPicture::PaintText(const std::u16string& text, const cRect& rect, int32_t /*flags*/) {
    if (rect.Right <= rect.Left || rect.Bottom <= rect.Top || !Hold(rect)) return;
    Drawn(rect);
    QPainter p(&image_);
    p.setRenderHint(QPainter::TextAntialiasing);
    p.setFont(font_);
    p.setPen(ColorOf(text_));
    // One line, vertically centred, ampersands as they are (no mnemonics in QPainter).
    p.drawText(QRect(rect.Left, rect.Top, rect.Right - rect.Left, rect.Bottom - rect.Top),
               Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, QtText(text));
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
