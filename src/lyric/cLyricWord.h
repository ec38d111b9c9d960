// One word of a karaoke line: its text (blanks that follow it included), the
// instants at which it is sung, and its box in the layout.
//
// Record form: every time as "<ms>", then the text; an untimed word is "<>text".
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "lyric/cDelta.h"
#include "lyric/cObjectArray.h"
#include "lyric/cTime.h"

namespace toval {

class cLyricWord {
  public:
    cLyricWord() = default;

    // Made on first request (most words of a long lyric are never laid out
    // before they are shown), then kept.
    std::shared_ptr<cDelta> Delta() const;
    void setDelta(std::shared_ptr<cDelta> delta) { delta_ = std::move(delta); }

    // 0-based; nullptr out of range.
    std::shared_ptr<cTime> GetTime(int32_t index) const { return times_.Element(index); }
    int32_t GetTimeSize() const { return times_.Size(); }
    // True when the word has no time.
    bool Simple() const { return times_.Size() == 0; }
    // Appends the time itself (shared, not copied).
    void AddTime(std::shared_ptr<cTime> time) { times_.Add(std::move(time)); }
    void RemoveTime(int32_t index) { times_.Remove(index); }
    void RemoveTimeAll() { times_.Free(true); }

    const std::u16string& Text() const { return text_; }
    void setText(std::u16string text) { text_ = std::move(text); }

    // The word record: "<ms>" per time (or "<>"), then the text.
    std::u16string Load() const;
    // Reads a word record. Every non-empty tag becomes a time, a bad one the
    // no-time mark; a ">" with no "<" before it closes a tag that starts at
    // the beginning of the record.
    void setLoad(std::u16string_view record);

    // Appends the record to out (the line writer builds one string).
    void AppendLoad(std::u16string& out) const;

  private:
    std::u16string text_;
    mutable std::shared_ptr<cDelta> delta_;
    cObjectArray<cTime> times_;
};

}  // namespace toval
