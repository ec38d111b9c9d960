#include "editor/cEditAdvTime.h"

#include <utility>

#include "base/mNumber.h"
#include "lyric/cTime.h"

namespace toval {

namespace {
constexpr char16_t kZeroTime[] = u"00:00.000";
}

cEditAdvTime::cEditAdvTime() {
    fields_.fill(kZeroTime);
}

void cEditAdvTime::Prefill(int32_t smallest, int32_t largest) {
    fields_.fill(kZeroTime);
    if (smallest > largest) return;
    cTime low(smallest), high(largest);
    fields_[kFrom] = fields_[kNewStart] = low.Text();
    fields_[kTo] = fields_[kNewEnd] = high.Text();
}

bool cEditAdvTime::FieldEnabled(int32_t field) const {
    switch (field) {
        case kFrom:
        case kTo:
            return range_;
        case kDelayBy:
            return action_ == kDelay;
        case kNewStart:
        case kNewEnd:
            return action_ == kAdjust;
        default:
            return false;
    }
}

const std::u16string& cEditAdvTime::txtEdit(int32_t field) const {
    static const std::u16string none;
    if (field < 0 || field >= kFieldCount) return none;
    return fields_[static_cast<size_t>(field)];
}

void cEditAdvTime::setTxtEdit(int32_t field, std::u16string text) {
    if (field < 0 || field >= kFieldCount) return;
    fields_[static_cast<size_t>(field)] = std::move(text);
}

int32_t cEditAdvTime::cmdOk() {
    // The order of this list is the order in which a bad field is found.
    for (int32_t field = 0; field < kFieldCount; ++field) {
        if (!FieldEnabled(field)) continue;
        cTime time;
        time.setText(fields_[static_cast<size_t>(field)]);
        if (time.Time() == kUnset) return field;
        values_[static_cast<size_t>(field)] = time.Time();
    }
    if (range_ && values_[kFrom] > values_[kTo]) std::swap(values_[kFrom], values_[kTo]);
    bits_ = (range_ ? kRange : 0) | action_;
    return -1;
}

}  // namespace toval
