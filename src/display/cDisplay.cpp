#include "display/cDisplay.h"

#include "base/cErrorLog.h"
#include "lyric/cLyric.h"
#include "lyric/cLyricLine.h"
#include "lyric/cLyricWord.h"
#include "platform/Shell.h"

namespace toval {

namespace {

// The box of a laid-out piece; false while any corner is unset (not laid out).
bool BoxOf(const std::shared_ptr<cDelta>& delta, cRect& box) {
    if (!delta) return false;
    const auto from = delta->Initial();
    const auto to = delta->Final();
    if (!from || !to) return false;
    box = cRect{from->X(), from->Y(), to->X(), to->Y()};
    return box.Left != kUnset && box.Top != kUnset && box.Right != kUnset && box.Bottom != kUnset;
}

}  // namespace

cDisplay::cDisplay(cGlobals& globals, DrawSurface& surface, Shell& shell)
    : globals_(globals), surface_(surface), shell_(shell) {
    const cSettings& s = globals_.Settings;
    slots_ = {s.color_Backround, s.color_BackText, s.color_NormalText, s.color_HighlighText};
}

cDisplay::~cDisplay() = default;

cColor cDisplay::SlotColor(int32_t slot) const {
    if (slot < 0 || slot >= static_cast<int32_t>(slots_.size())) return 0;
    return slots_[static_cast<size_t>(slot)];
}

void cDisplay::setSlotColor(int32_t slot, cColor color) {
    if (slot < 0 || slot >= static_cast<int32_t>(slots_.size())) return;
    slots_[static_cast<size_t>(slot)] = color;
}

void cDisplay::setWindow(int32_t mode) {
    window_ = mode;
    if (onWindowChanged) onWindowChanged(mode);
}

void cDisplay::Load() {
    Guarded("fTray.Load", [&] {
        const cSettings& s = globals_.Settings;
        slots_ = {s.color_Backround, s.color_BackText, s.color_NormalText, s.color_HighlighText};
        Redraw();
    });
}

void cDisplay::Clear() {
    Guarded("fTray.Clear", [&] {
        lyric_.reset();
        line_ = kUnset;
        word_ = kUnset;
        surface_.Blank(SlotColor(kSlotBackground));
        surface_.Refresh();
    });
}

void cDisplay::ReajustWindow() {
    if (onReajustWindow) onReajustWindow();
}

void cDisplay::setLyric(std::shared_ptr<cLyric> lyric) {
    lyric_ = std::move(lyric);
    Redraw();
}

bool cDisplay::Underlined(bool isTitle) const {
    const cSettings& s = globals_.Settings;
    return (isTitle && s.font_UnderlineTitle) || s.font_Underline;
}

void cDisplay::Paint(const std::u16string& text, const cRect& box, int32_t slot, bool isTitle) {
    surface_.FillRectangle(box, SlotColor(kSlotBackground));
    surface_.setTextColor(SlotColor(slot));
    surface_.setUnderline(Underlined(isTitle));
    surface_.PaintText(text, box, kDtLyricText);
}

void cDisplay::DrawText(const std::shared_ptr<cLyricWord>& word, int32_t slot, bool isTitle) {
    Guarded("fTray.DrawText", [&] {
        cRect box;
        if (word && BoxOf(word->Delta(), box)) Paint(word->Text(), box, slot, isTitle);
    });
}

void cDisplay::DrawText(const std::shared_ptr<cLyricLine>& line, int32_t slot, bool isTitle) {
    Guarded("fTray.DrawText", [&] {
        cRect box;
        if (line && BoxOf(line->Delta(), box)) Paint(line->Text(), box, slot, isTitle);
    });
}

void cDisplay::DrawTextLine(const std::shared_ptr<cLyricLine>& line, int32_t slot, bool isTitle) {
    Guarded("fTray.DrawTextLine", [&] {
        if (!line) return;
        const int32_t words = line->GetWordSize();
        if (words == 0) {
            DrawText(line, slot, isTitle);
            return;
        }
        // The blanks between words are the background between their boxes.
        for (int32_t w = 0; w < words; ++w)
            DrawText(line->GetWord(w), slot, isTitle);
    });
}

void cDisplay::ChooseText(int32_t line, int32_t word) {
    Guarded("fTray.ChooseText", [&] { ChooseTextBody(line, word); });
}

void cDisplay::ChooseTextBody(int32_t line, int32_t word) {
    const auto lineAt = [&](int32_t index) {
        return lyric_ ? lyric_->GetLine(index) : std::shared_ptr<cLyricLine>();
    };
    const bool sameLine = line_ != kUnset && line == line_ && (word != kUnset || word_ == word);
    if (!sameLine) {
        if (line_ != kUnset) {
            DrawTextLine(lineAt(line_), kSlotBackText, line_ == 0);
            word_ = kUnset;
        }
        if (line != kUnset) {
            const auto shown = lineAt(line);
            DrawTextLine(shown, kSlotNormalText, line == 0);
            cRect box;
            if (shown && BoxOf(shown->Delta(), box) && onCurrentLine) onCurrentLine(box);
        }
        line_ = line;
    }
    if (word != kUnset && (word_ == kUnset || word != word_)) {
        const auto current = lineAt(line_);
        const auto wordAt = [&](int32_t index) {
            return current ? current->GetWord(index) : std::shared_ptr<cLyricWord>();
        };
        if (word_ != kUnset) DrawText(wordAt(word_), kSlotNormalText, line_ == 0);
        DrawText(wordAt(word), kSlotHighlight, line_ == 0);
        word_ = word;
    }
    surface_.Refresh();
}

void cDisplay::Redraw() {
    Guarded("fTray.Redraw", [&] {
        line_ = kUnset;
        word_ = kUnset;
        surface_.Blank(SlotColor(kSlotBackground));
        cRect whole;
        // Held: measuring runs a turn of the message loop, in which the
        // display may be cleared or given another lyric.
        const std::shared_ptr<cLyric> lyric = lyric_;
        if (lyric) {
            if (lyric->AuxPictureBox()) {
                lyric->setAlignment(globals_.Settings.text_alignment);
                lyric->Resize();
                // Replaced meanwhile: the newer state has drawn itself.
                if (lyric_ != lyric) return;
            }
            const int32_t lines = lyric->GetLineSize();
            for (int32_t i = 0; i < lines; ++i)
                DrawTextLine(lyric->GetLine(i), kSlotBackText, i == 0);
            BoxOf(lyric->Delta(), whole);
        }
        surface_.Refresh();
        if (onRedrawn) onRedrawn(whole);
    });
}

void cDisplay::Click() {
    Guarded("fTray.Click", [&] {
        if (!lyric_ || lyric_->URL().empty()) return;
        const std::u16string url = lyric_->URL();
        shell_.OpenLink(url);
        if (onLinkOpened) onLinkOpened(url);
    });
}

}  // namespace toval
