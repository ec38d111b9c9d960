// The advanced time dialog (fEditAdvTime) without its window: an action
// (delete, delay by, adjust to a new start and end) over the whole lyric or a
// chosen range. Five time fields: 0 and 1 the range, 2 the delay, 3 and 4 the
// adjust targets. OK (cmdOk) checks the fields that the chosen options use, in
// the order range from, range to, then the action's fields; the first that is
// not a valid time takes the focus with its text selected, and the dialog
// stays open without a message.
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace toval {

class cEditAdvTime {
  public:
    // Action bits of the result, tested one by one.
    enum Bits : int32_t { kRange = 1, kDelete = 2, kDelay = 4, kAdjust = 8 };
    enum Field : int32_t { kFrom = 0, kTo = 1, kDelayBy = 2, kNewStart = 3, kNewEnd = 4 };
    static constexpr int32_t kFieldCount = 5;

    cEditAdvTime();

    // Pre-fills the fields from the lyric's smallest and largest time. A lyric
    // without times (smallest > largest) leaves every field at "00:00.000".
    void Prefill(int32_t smallest, int32_t largest);

    // The option buttons. Each click enables only the fields that belong to it.
    void optAll_Click() { range_ = false; }
    void optFrom_Click() { range_ = true; }
    void optDelete_Click() { action_ = kDelete; }
    void optDelay_Click() { action_ = kDelay; }
    void optAdjust_Click() { action_ = kAdjust; }
    bool optFrom() const { return range_; }
    int32_t Action() const { return action_; }
    bool FieldEnabled(int32_t field) const;

    const std::u16string& txtEdit(int32_t field) const;
    void setTxtEdit(int32_t field, std::u16string text);

    // Reads the used fields. Answers -1 when all are valid (the results below
    // are then set and the dialog closes), else the index of the field that
    // takes the focus.
    int32_t cmdOk();
    // Results of an accepted OK: the action bits, the range (ordered: a range
    // typed backwards is taken from its lower to its upper end), the delay and
    // the adjust targets, in milliseconds.
    int32_t ResultBits() const { return bits_; }
    int32_t From() const { return values_[kFrom]; }
    int32_t To() const { return values_[kTo]; }
    int32_t Delay() const { return values_[kDelayBy]; }
    int32_t NewStart() const { return values_[kNewStart]; }
    int32_t NewEnd() const { return values_[kNewEnd]; }

  private:
    std::array<std::u16string, kFieldCount> fields_;
    std::array<int32_t, kFieldCount> values_{};
    bool range_ = false;
    int32_t action_ = kDelay;
    int32_t bits_ = 0;
};

}  // namespace toval
