#include "cGdiSurface.h"

#include <algorithm>

#include "cWindow.h"

namespace toval {

namespace {

RECT ToRect(const cRect& r) {
    return RECT{r.Left, r.Top, r.Right, r.Bottom};
}

}  // namespace

HFONT SettingsFont(const cSettings& s, int dpi, bool underline) {
    const int height = -MulDiv(s.font_Size > 0 ? s.font_Size : 8, dpi > 0 ? dpi : 96, 72);
    return CreateFontW(height, 0, 0, 0, s.font_Bold ? FW_BOLD : FW_NORMAL, s.font_Italic, underline,
                       s.font_Strikethru, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS,
                       CLEARTYPE_QUALITY, DEFAULT_PITCH | FF_DONTCARE, Wide(s.font_Name));
}

void PaintPicture(HWND hwnd, const cGdiSurface& picture, int left, int top, COLORREF background) {
    PAINTSTRUCT ps;
    const HDC dc = BeginPaint(hwnd, &ps);
    RECT client;
    GetClientRect(hwnd, &client);
    const HDC buffer = CreateCompatibleDC(dc);
    const HBITMAP bitmap =
        CreateCompatibleBitmap(dc, std::max(1L, client.right), std::max(1L, client.bottom));
    const HGDIOBJ old = SelectObject(buffer, bitmap);
    const HBRUSH brush = CreateSolidBrush(background);
    FillRect(buffer, &client, brush);
    DeleteObject(brush);
    BitBlt(buffer, std::max(0, -left), std::max(0, -top),
           std::min(static_cast<int>(client.right), picture.Width() - std::max(0, left)),
           std::min(static_cast<int>(client.bottom), picture.Height() - std::max(0, top)),
           picture.Dc(), std::max(0, left), std::max(0, top), SRCCOPY);
    // A mirrored (right-to-left) window must not mirror the text's picture.
    BitBlt(dc, 0, 0, client.right, client.bottom, buffer, 0, 0, SRCCOPY | NOMIRRORBITMAP);
    SelectObject(buffer, old);
    DeleteObject(bitmap);
    DeleteDC(buffer);
    EndPaint(hwnd, &ps);
}

cGdiSurface::cGdiSurface() {
    const HDC screen = GetDC(nullptr);
    dc_ = CreateCompatibleDC(screen);
    ReleaseDC(nullptr, screen);
    SetBkMode(dc_, TRANSPARENT);
    setSize(64, 64);
}

cGdiSurface::~cGdiSurface() {
    if (oldFont_) SelectObject(dc_, oldFont_);
    if (oldBitmap_) SelectObject(dc_, oldBitmap_);
    if (font_) DeleteObject(font_);
    if (underlined_) DeleteObject(underlined_);
    if (bitmap_) DeleteObject(bitmap_);
    if (dc_) DeleteDC(dc_);
}

void cGdiSurface::setFont(const cSettings& settings, int dpi) {
    if (oldFont_) {
        SelectObject(dc_, oldFont_);
        oldFont_ = nullptr;
    }
    if (font_) DeleteObject(font_);
    if (underlined_) DeleteObject(underlined_);
    font_ = SettingsFont(settings, dpi, settings.font_Underline);
    underlined_ = SettingsFont(settings, dpi, true);
    SelectFont();
}

void cGdiSurface::SelectFont() {
    const HFONT want = underline_ ? underlined_ : font_;
    if (!want) return;
    const HGDIOBJ previous = SelectObject(dc_, want);
    if (!oldFont_) oldFont_ = previous;
}

void cGdiSurface::setSize(int width, int height) {
    width = width < 1 ? 1 : width;
    height = height < 1 ? 1 : height;
    if (bitmap_ && width == width_ && height == height_) return;
    const HDC screen = GetDC(nullptr);
    const HBITMAP bitmap = CreateCompatibleBitmap(screen, width, height);
    ReleaseDC(nullptr, screen);
    if (!bitmap) return;  // out of memory: keep the picture we have
    const HGDIOBJ previous = SelectObject(dc_, bitmap);
    if (!oldBitmap_) oldBitmap_ = previous;
    if (bitmap_) DeleteObject(bitmap_);
    bitmap_ = bitmap;
    width_ = width;
    height_ = height;
}

cTextExtent cGdiSurface::TextExtent(const std::u16string& text) {
    SIZE size{};
    if (text.empty()) {
        TEXTMETRICW metrics{};
        GetTextMetricsW(dc_, &metrics);
        return {0, metrics.tmHeight};
    }
    GetTextExtentPoint32W(dc_, Wide(text), static_cast<int>(text.size()), &size);
    return {size.cx, size.cy};
}

void cGdiSurface::DoEvents() {
    PumpMessages();
}

void cGdiSurface::FillRectangle(const cRect& rect, cColor color) {
    const HBRUSH brush = CreateSolidBrush(static_cast<COLORREF>(color));
    const RECT r = ToRect(rect);
    FillRect(dc_, &r, brush);
    DeleteObject(brush);
}

void cGdiSurface::Blank(cColor color) {
    FillRectangle(cRect{0, 0, width_, height_}, color);
}

void cGdiSurface::setTextColor(cColor color) {
    SetTextColor(dc_, static_cast<COLORREF>(color));
}

void cGdiSurface::setUnderline(bool underline) {
    if (underline == underline_) return;
    underline_ = underline;
    SelectFont();
}

void cGdiSurface::PaintText(const std::u16string& text, const cRect& rect, int32_t flags) {
    RECT r = ToRect(rect);
    DrawTextW(dc_, Wide(text), static_cast<int>(text.size()), &r,
              static_cast<UINT>(flags) | DT_SINGLELINE);
}

void cGdiSurface::Refresh() {
    if (onRefresh) onRefresh();
}

}  // namespace toval
