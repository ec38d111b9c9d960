#include "editor/cEditTime.h"

#include "base/cErrorLog.h"

namespace toval {

void cEditTime::OpenFormObj(const cTimedElement& element, int32_t index) {
    element_ = element;
    index_ = index;
    time_ = nullptr;
    applied_ = false;
    const auto time = element.GetTime(index);
    text_ = time ? time->Text() : std::u16string();
}

void cEditTime::OpenFormTmr(std::shared_ptr<cTime> time) {
    element_ = {};
    index_ = -1;
    time_ = std::move(time);
    applied_ = false;
    text_ = time_ ? time_->Text() : std::u16string();
}

bool cEditTime::txtEdit_KeyPress(int32_t keyAscii) {
    if (keyAscii == kKeyEscape) return true;
    if (keyAscii != kKeyEnter) return false;
    Guarded("fEditTime.txtEdit_KeyPress", [&] { Apply(); });
    return true;
}

void cEditTime::Apply() {
    if (time_) {
        // A bare time has no owner to be removed from.
        if (text_.empty()) return;
        if (onBeforeApply) onBeforeApply();
        time_->setText(text_);
        applied_ = true;
        return;
    }
    const auto time = element_.GetTime(index_);
    if (!time) return;
    if (onBeforeApply) onBeforeApply();
    if (text_.empty())
        element_.RemoveTime(index_);
    else
        time->setText(text_);
    applied_ = true;
}

}  // namespace toval
