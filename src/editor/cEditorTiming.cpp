// Timing: the editing cursor, the arrow keys and the mouse, stamping, hit
// tests on the layout, the pop-up menu, and the preview's event stream.
#include <memory>

#include "base/cErrorLog.h"
#include "core/cEventStream.h"
#include "editor/cEditTime.h"
#include "editor/cEditor.h"
#include "lyric/cLyric.h"
#include "lyric/cTime.h"

namespace toval {

void cEditor::pb_Main_KeyDown(int32_t keyCode, int32_t shift) {
    Guarded("fEdit.pb_Main_KeyDown", [&] {
        if ((shift & kCtrlMask) != 0 && (keyCode == kKeyZ || keyCode == kKeyY)) {
            if (keyCode == kKeyZ)
                Undo();
            else
                Redo();
            return;
        }
        if (step_ != 2) return;
        // A right-to-left line holds its words in visual order, so the two
        // horizontal arrows swap.
        const bool rtl = lyric_->RightToLeft();
        switch (keyCode) {
            case kKeyRight:
                if (rtl)
                    newWord_ = curWord_;
                else
                    locateNextWord(curWord_);
                break;
            case kKeyLeft:
                if (rtl)
                    locateNextWord(curWord_);
                else
                    newWord_ = curWord_;
                break;
            case kKeyDown:
                locateNextLine(curLine_);
                break;
            default:
                return;
        }
        setTime(globals_.PlayPosition);
        ChooseText(newLine_, newWord_);
    });
}

void cEditor::locateNextWord(int32_t word) {
    Guarded("fEdit.locateNextWord", [&] {
        const bool rtl = lyric_->RightToLeft();
        int32_t w = word;
        // Separator words are skipped by moving on from them, as often as
        // needed (a loop, so that a long run of separators costs no stack).
        for (;;) {
            int64_t target;
            if (!rtl) {
                target = w == kUnset ? 0 : static_cast<int64_t>(w) + 1;
            } else if (w != kUnset) {
                target = static_cast<int64_t>(w) - 1;
            } else {
                if (curLine_ == kUnset) locateNextLine(curLine_);
                const auto line = lyric_->GetLine(curLine_);
                target = static_cast<int64_t>(line ? line->GetWordSize() : 0) - 1;
            }
            if (curLine_ == kUnset) {
                // The first press goes to line 0 itself.
                locateNextLine(curLine_);
                return;
            }
            const auto line = lyric_->GetLine(curLine_);
            const int32_t count = line ? line->GetWordSize() : 0;
            if (target < 0 || target >= count) {
                locateNextLine(curLine_);
                return;
            }
            const auto candidate = line->GetWord(static_cast<int32_t>(target));
            const std::u16string& text = candidate ? candidate->Text() : std::u16string();
            if (text.size() == 1 && findSepChar(static_cast<int16_t>(text[0])) != kNoSep) {
                w = static_cast<int32_t>(target);
                continue;
            }
            newWord_ = static_cast<int32_t>(target);
            return;
        }
    });
}

void cEditor::locateNextLine(int32_t line) {
    Guarded("fEdit.locateNextLine", [&] {
        const int64_t next = line == kUnset ? 0 : static_cast<int64_t>(line) + 1;
        // At the last line the target stays where it was.
        if (next < lyric_->GetLineSize()) {
            newLine_ = static_cast<int32_t>(next);
            newWord_ = kUnset;
        }
    });
}

void cEditor::setTime(int32_t position) {
    Guarded("fEdit.setTime", [&] {
        if (!IsPlayingTrack() || newLine_ == kUnset) return;
        if (newWord_ == curWord_ && newLine_ == curLine_ && lastTimeSet_ && lastTime_) {
            // The again action: the last stamp takes the new position and
            // keeps its place in its element's list.
            BeforeChange();
            lastTime_->setTime(position);
            AfterChange();
            return;
        }
        const auto line = lyric_->GetLine(newLine_);
        if (!line) return;
        cTimedElement element{line, nullptr};
        if (newWord_ != kUnset) {
            element.Word = line->GetWord(newWord_);
            if (!element.Word) return;
        }
        BeforeChange();
        auto time = std::make_shared<cTime>(position);
        element.AddTime(time);
        lastTime_ = std::move(time);
        lastTimeSet_ = true;
        AfterChange();
    });
}

void cEditor::ChooseText(int32_t line, int32_t word) {
    Guarded("fEdit.ChooseText", [&] {
        if (line != curLine_) {
            if (curLine_ != kUnset) view_->RedrawElement(curLine_, kUnset, false);
            curWord_ = kUnset;
            if (line != kUnset) view_->RedrawElement(line, kUnset, true);
            curLine_ = line;
        }
        if (word != kUnset && (word != curWord_ || curWord_ == kUnset)) {
            if (curWord_ != kUnset) view_->RedrawElement(curLine_, curWord_, false);
            view_->RedrawElement(curLine_, word, true);
            curWord_ = word;
        }
    });
}

void cEditor::pb_Main_MouseDown(int32_t button, int32_t /*shift*/, double x, double y) {
    Guarded("fEdit.pb_Main_MouseDown", [&] {
        if (step_ != 2) return;
        locateLineWord(x, y);
        if (button == kButtonRight) {
            const int32_t savedLine = curLine_, savedWord = curWord_;
            ChooseText(newLine_, newWord_);
            updateMenu(true);
            const cMenuChoice choice = view_->PopupMenu(menu_);
            switch (choice.What) {
                case cMenuChoice::EditTime:
                    mnuEditTime_Click(choice.Index);
                    break;
                case cMenuChoice::DelTime:
                    mnuDelTime_Click(choice.Index);
                    break;
                case cMenuChoice::DelTimes:
                    mnuDelTimes_Click();
                    break;
                case cMenuChoice::Adv:
                    mnuAdv_Click();
                    break;
                case cMenuChoice::None:
                    break;
            }
            newLine_ = savedLine;
            newWord_ = savedWord;
            ChooseText(newLine_, newWord_);
            return;
        }
        setTime(globals_.PlayPosition);
        ChooseText(newLine_, newWord_);
    });
}

void cEditor::locateLineWord(double x, double y) {
    Guarded("fEdit.locateLineWord", [&] {
        newLine_ = kUnset;
        newWord_ = kUnset;
        int32_t ix = 0, iy = 0;
        if (!ToInt32(x, ix) || !ToInt32(y, iy) || ix == kUnset || iy == kUnset) return;
        newLine_ = searchLine(iy, 0, lyric_->GetLineSize() - 1);
        if (newLine_ == kUnset) return;
        if (const auto line = lyric_->GetLine(newLine_))
            newWord_ = searchWord(*line, ix, 0, line->GetWordSize() - 1);
    });
}

int32_t cEditor::searchLine(int32_t y, int32_t low, int32_t high) const {
    return Guarded("fEdit.searchLine", kUnset, [&] {
        if (low > high) return kUnset;
        const int32_t mid = Middle(low, high);
        const auto line = lyric_->GetLine(mid);
        if (!line) return kUnset;
        const auto delta = line->Delta();
        if (y > delta->Final()->Y()) return searchLine(y, mid + 1, high);
        if (y < delta->Initial()->Y()) return searchLine(y, low, mid - 1);
        return mid;
    });
}

int32_t cEditor::searchWord(const cLyricLine& line, int32_t x, int32_t low, int32_t high) const {
    return Guarded("fEdit.searchWord", kUnset, [&] {
        if (low > high) return kUnset;
        const int32_t mid = Middle(low, high);
        const auto word = line.GetWord(mid);
        if (!word) return kUnset;
        const auto delta = word->Delta();
        if (x > delta->Final()->X()) return searchWord(line, x, mid + 1, high);
        if (x < delta->Initial()->X()) return searchWord(line, x, low, mid - 1);
        return mid;
    });
}

void cEditor::updateMenu(bool show) {
    Guarded("fEdit.updateMenu", [&] {
        menu_ = cEditorMenu();
        if (!show) return;
        const cTimedElement element = getMnuObject();
        if (!element.IsSet()) return;
        const bool any = addTimeMenu(element);
        menu_.EditTimesEnabled = any;
        menu_.DelFromEnabled = any;
    });
}

bool cEditor::addTimeMenu(const cTimedElement& element) {
    return Guarded("fEdit.addTimeMenu", false, [&] {
        for (int32_t i = 0; i < element.GetTimeSize(); ++i) {
            const auto time = element.GetTime(i);
            const std::u16string caption = time ? time->Text() : std::u16string();
            menu_.EditTimes.push_back(caption);
            menu_.DelTimes.push_back(caption);
        }
        return element.GetTimeSize() > 0;
    });
}

cTimedElement cEditor::getMnuObject() const {
    return Guarded("fEdit.getMnuObject", cTimedElement(), [&] {
        cTimedElement element;
        if (newLine_ == kUnset) return element;
        element.Line = lyric_->GetLine(newLine_);
        if (!element.Line) return cTimedElement();
        if (newWord_ != kUnset) {
            element.Word = element.Line->GetWord(newWord_);
            if (!element.Word) return cTimedElement();
        }
        return element;
    });
}

void cEditor::mnuEditTime_Click(int32_t index) {
    Guarded("fEdit.mnuEditTime_Click", [&] {
        const cTimedElement element = getMnuObject();
        if (index < 1 || index > element.GetTimeSize()) return;
        cEditTime dialog;
        dialog.OpenFormObj(element, index - 1);
        dialog.onBeforeApply = [this] { BeforeChange(); };
        view_->OpenEditTime(dialog);
        if (dialog.Applied()) AfterChange();
    });
}

void cEditor::mnuDelTime_Click(int32_t index) {
    Guarded("fEdit.mnuDelTime_Click", [&] {
        const cTimedElement element = getMnuObject();
        if (index < 1 || index > element.GetTimeSize()) return;
        const auto time = element.GetTime(index - 1);
        if (!time) return;
        // Cuts the whole lyric off from that moment on, every line and word.
        const int32_t from = time->Time();
        BeforeChange();
        delTimes(from, kNoNext);
        AfterChange();
    });
}

void cEditor::mnuDelTimes_Click() {
    Guarded("fEdit.mnuDelTimes_Click", [&] {
        const cTimedElement element = getMnuObject();
        if (!element.IsSet()) return;
        BeforeChange();
        element.RemoveTimeAll();
        lastTime_ = nullptr;
        lastTimeSet_ = false;
        AfterChange();
    });
}

void cEditor::tmr_Stream_Timer() {
    Guarded("fEdit.tmr_Stream_Timer", [&] {
        if (step_ != 3 || !stream_ || !IsPlayingTrack()) return;
        stream_->UpdateTimeEvent(globals_.PlayPosition);
    });
}

void cEditor::ces_Stream_LoadEvent(int32_t& line, int32_t& word) {
    Guarded("fEdit.ces_Stream_LoadEvent", [&] { ChooseText(line, word); });
}

}  // namespace toval
