// The lyric picture keeps marks, not pixels: what the window paints of it.
#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>

#include "cQtPicture.h"
#include "config/cSettings.h"

namespace toval::test {
namespace {

constexpr cColor kBack = 0x000000, kRed = 0x0000FF, kBlue = 0xFF0000;

// How many pixels of image are mostly the colour (0x00BBGGRR).
int PixelsOf(const QImage& image, cColor color) {
    const QColor want = ColorOf(color);
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QColor c = image.pixelColor(x, y);
            if (std::abs(c.red() - want.red()) < 60 && std::abs(c.green() - want.green()) < 60 &&
                std::abs(c.blue() - want.blue()) < 60 && c.alpha() > 200)
                ++count;
        }
    return count;
}

TEST(QtPicture, ABoxPaintedAgainShowsItsLastTextAloneAndKeepsNoHistory) {
    cQtPicture picture;
    cSettings settings;
    settings.font_Size = 24;
    settings.font_Bold = true;
    picture.setFont(settings);
    picture.Blank(kBack);
    const cRect word{10, 10, 190, 50}, far{10, 20000, 190, 20040};
    const auto paint = [&](const cRect& box, cColor color) {
        picture.FillRectangle(box, kBack);
        picture.setTextColor(color);
        picture.PaintText(u"WWWWW", box, kDtLyricText);
    };
    paint(far, kRed);
    // A word highlighted and put back a thousand times: the list stays small.
    for (int i = 0; i < 1000; ++i)
        paint(word, i % 2 ? kRed : kBlue);
    EXPECT_LE(picture.MarkCount(), 4u + 64u);
    paint(word, kBlue);

    QImage image(200, 60, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter p(&image);
    picture.Paint(p, QPoint(0, 0), image.rect(), QColor(0, 0, 0, 255));
    p.end();
    EXPECT_GT(PixelsOf(image, kBlue), 100);
    EXPECT_EQ(PixelsOf(image, kRed), 0);  // nothing of what was painted before shows through

    // A mark far down the picture is painted where the window shows it.
    image.fill(Qt::transparent);
    p.begin(&image);
    picture.Paint(p, QPoint(0, -20000 + 10), image.rect(), QColor(0, 0, 0, 255));
    p.end();
    EXPECT_GT(PixelsOf(image, kRed), 100);
    EXPECT_EQ(PixelsOf(image, kBlue), 0);

    // Underlined, on a screen scaled by 1.5: the underline stays in its box.
    picture.setUnderline(true);
    paint(word, kBlue);
    QImage scaled(450, 300, QImage::Format_ARGB32_Premultiplied);
    scaled.setDevicePixelRatio(1.5);
    scaled.fill(Qt::transparent);
    p.begin(&scaled);
    picture.Paint(p, QPoint(0, 0), QRect(0, 0, 300, 200), QColor(0, 0, 0, 255));
    p.end();
    EXPECT_GT(PixelsOf(scaled.copy(0, 15, 450, 60), kBlue), 100);
    EXPECT_EQ(PixelsOf(scaled.copy(0, 75, 450, 225), kBlue), 0);
}

}  // namespace
}  // namespace toval::test
