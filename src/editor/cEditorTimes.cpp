// Range operations on the lyric's times: limits, delete, delay, adjust, and
// the advanced dialog that chooses among them.
//
// Arithmetic: a new time is computed exactly (64-bit, or double for the
// scaled product) and stored when it fits 32 bits; nothing is clamped, so a
// delay can make a time negative or move it past its neighbours. A result that
// does not fit stops the operation there with an error-trail line; the times
// already changed stay changed (undo brings them back).
#include <cmath>

#include "base/cErrorLog.h"
#include "editor/cEditAdvTime.h"
#include "editor/cEditor.h"
#include "lyric/cLyric.h"
#include "lyric/cTime.h"

namespace toval {

// Visits every time of the lyric: line by line, first the line's own times,
// then each word's; within one element from the last time to the first, so a
// removal does not disturb the indexes still to visit. visit(element, index,
// time) answers false to stop the walk.
template <class F>
void cEditor::ForEachTime(F&& visit) const {
    for (int32_t l = 0; l < lyric_->GetLineSize(); ++l) {
        const auto line = lyric_->GetLine(l);
        if (!line) continue;
        const cTimedElement lineElement{line, nullptr};
        for (int32_t t = line->GetTimeSize() - 1; t >= 0; --t)
            if (const auto time = line->GetTime(t))
                if (!visit(lineElement, t, *time)) return;
        for (int32_t w = 0; w < line->GetWordSize(); ++w) {
            const auto word = line->GetWord(w);
            if (!word) continue;
            const cTimedElement wordElement{line, word};
            for (int32_t t = word->GetTimeSize() - 1; t >= 0; --t)
                if (const auto time = word->GetTime(t))
                    if (!visit(wordElement, t, *time)) return;
        }
    }
}

bool cEditor::HasTimes() const {
    bool timed = false;
    ForEachTime([&](const cTimedElement&, int32_t, cTime&) {
        timed = true;
        return false;
    });
    return timed;
}

void cEditor::getTimerLimits(int32_t& smallest, int32_t& largest) const {
    smallest = kNoNext;
    largest = kUnset;
    int32_t low = kNoNext, high = kUnset;
    Guarded("fEdit.getTimerLimits", [&] {
        ForEachTime([&](const cTimedElement&, int32_t, cTime& time) {
            if (time.Time() < low) low = time.Time();
            if (time.Time() > high) high = time.Time();
            return true;
        });
    });
    smallest = low;
    largest = high;
}

void cEditor::delTimes(int32_t from, int32_t to) {
    Guarded("fEdit.delTimes", [&] {
        ForEachTime([&](const cTimedElement& element, int32_t index, cTime& time) {
            if (from <= time.Time() && time.Time() <= to) element.RemoveTime(index);
            return true;
        });
    });
}

void cEditor::setDelay(int32_t delta, int32_t from, int32_t to) {
    Guarded("fEdit.setDelay", [&] {
        ForEachTime([&](const cTimedElement&, int32_t, cTime& time) {
            const int32_t t = time.Time();
            if (t < from || t > to) return true;
            const int64_t moved = static_cast<int64_t>(t) + delta;
            if (moved < INT32_MIN || moved > INT32_MAX) {
                ErrorTrail({"fEdit.setDelay", "Overflow"});
                return false;
            }
            time.setTime(static_cast<int32_t>(moved));
            return true;
        });
    });
}

void cEditor::setAdjust(double factor, int32_t newStart, int32_t from, int32_t to) {
    Guarded("fEdit.setAdjust", [&] {
        ForEachTime([&](const cTimedElement&, int32_t, cTime& time) {
            const int32_t t = time.Time();
            if (t < from || t > to) return true;
            const double offset = static_cast<double>(t) - static_cast<double>(from);
            const double scaled = RoundHalfEven(offset * factor) + static_cast<double>(newStart);
            int32_t result = 0;
            if (!ToInt32(scaled, result)) {
                ErrorTrail({"fEdit.setAdjust", "Overflow"});
                return false;
            }
            time.setTime(result);
            return true;
        });
    });
}

void cEditor::mnuAdv_Click() {
    Guarded("fEdit.mnuAdv_Click", [&] {
        int32_t smallest = 0, largest = 0;
        getTimerLimits(smallest, largest);
        cEditAdvTime dialog;
        dialog.Prefill(smallest, largest);
        if (!view_->OpenAdvTime(dialog)) return;
        const int32_t bits = dialog.ResultBits();
        const bool range = (bits & cEditAdvTime::kRange) != 0;
        const int32_t from = range ? dialog.From() : INT32_MIN;
        const int32_t to = range ? dialog.To() : INT32_MAX;
        const bool any =
            (bits & (cEditAdvTime::kDelete | cEditAdvTime::kDelay | cEditAdvTime::kAdjust)) != 0;
        if (!any) return;
        BeforeChange();
        if (bits & cEditAdvTime::kDelete) delTimes(from, to);
        if (bits & cEditAdvTime::kDelay) setDelay(dialog.Delay(), from, to);
        if (bits & cEditAdvTime::kAdjust) {
            int32_t oldStart = dialog.From(), oldEnd = dialog.To();
            if (!range) getTimerLimits(oldStart, oldEnd);
            // A lyric without times, or a span of zero length, stays as it is.
            if (oldEnd > oldStart) {
                const double factor = (static_cast<double>(dialog.NewEnd()) - dialog.NewStart()) /
                                      (static_cast<double>(oldEnd) - oldStart);
                setAdjust(factor, dialog.NewStart(), oldStart, oldEnd);
            }
        }
        AfterChange();
    });
}

}  // namespace toval
