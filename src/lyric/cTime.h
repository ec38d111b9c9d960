// One instant of a lyric (or the playing position): a signed count of
// milliseconds with its text forms "[-]MM:SS.mmm" and "[-]MM:SS.cc".
// kUnset (the smallest 32-bit value) means "no time"; the text forms and
// GetTime treat it as zero.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace toval {

class cTime {
  public:
    cTime() = default;
    explicit cTime(int32_t ms) : time_(ms) {}

    // 0 when other is the same instant, 1 when other is later, 2 otherwise.
    int32_t Compare(const cTime& other) const;
    // 0 when this time is 0 (whatever ms is); 1 when this time is later than
    // ms; 2 when it is earlier or equal. Callers rely on exactly these values.
    int32_t LongCompare(int32_t ms) const;

    int32_t Time() const { return time_; }
    void setTime(int32_t ms) { time_ = ms; }

    // Whole seconds, rounded down (-1500 ms gives -2).
    int32_t Seconds() const;

    // ms + (seconds + minutes * 60) * 1000, negated when negative. Fields are
    // not range-checked; a sum outside 32 bits leaves the time unchanged and
    // writes an error-trail line.
    void setTime(int32_t minutes, int32_t seconds, int32_t ms, bool negative);
    // Splits the magnitude into minutes (unbounded), seconds and milliseconds;
    // all zero for the no-time mark.
    void GetTime(int32_t& minutes, int32_t& seconds, int32_t& ms, bool& negative) const;

    // "[-]MM:SS.mmm"; minutes take as many digits as they need (at least 2).
    std::u16string Text() const;
    // Parses a plain number (milliseconds) or "[+|-]m:s[.f]" where f has 1, 2
    // or any other number of digits (tenths, hundredths, milliseconds). A bad
    // field gives the no-time mark.
    void setText(std::u16string_view text);
    // "[-]MM:SS.cc": hundredths rounded half to even, with no carry into the
    // seconds (1996 ms is "00:01.100").
    std::u16string TextSimple() const;

  private:
    int32_t time_ = 0;
};

}  // namespace toval
