// The single-time dialog (fEditTime) without its window: the text field shows
// one time; Enter applies the field (empty removes the time, anything else is
// parsed as a time text), Escape closes without a change. No neighbour or
// range check is made: a time may be moved past its neighbours.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "editor/cTimedElement.h"
#include "lyric/cTime.h"

namespace toval {

inline constexpr int32_t kKeyEnter = 13;
inline constexpr int32_t kKeyEscape = 27;

class cEditTime {
  public:
    // On the element's time at index.
    void OpenFormObj(const cTimedElement& element, int32_t index);
    // On a bare time.
    void OpenFormTmr(std::shared_ptr<cTime> time);

    const std::u16string& txtEdit() const { return text_; }
    void setTxtEdit(std::u16string text) { text_ = std::move(text); }

    // A key pressed in the field; answers true when the dialog closes (after
    // Enter has applied the field, or on Escape).
    bool txtEdit_KeyPress(int32_t keyAscii);

    // Raised just before Enter changes a time (the editor keeps its undo step).
    std::function<void()> onBeforeApply;

    // Whether Enter applied a change.
    bool Applied() const { return applied_; }

  private:
    void Apply();

    cTimedElement element_;
    int32_t index_ = -1;
    std::shared_ptr<cTime> time_;  // the bare time of OpenFormTmr
    std::u16string text_;
    bool applied_ = false;
};

}  // namespace toval
