// The time-ordered list of highlight events of one lyric: every line start and
// every word time, sorted by time. Each tick compares the play position with
// the current and the next event's times and raises LoadEvent(line, word) when
// the position has left the current interval. The records hold the lyric's own
// time objects, so later changes of those times (fitting, the editor) are seen.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "base/mNumber.h"

namespace toval {

class cLyric;
class cTime;

class cEventStream {
  public:
    // Builds the list from the lyric's line and word times (empty for nullptr).
    void Load(const std::shared_ptr<cLyric>& lyric);
    void setLoad(const std::shared_ptr<cLyric>& lyric) { Load(lyric); }

    // One tick: raises LoadEvent when the play position (ms) has left the
    // current interval.
    void UpdateTimeEvent(int32_t position);

    // Compresses every event time by trackLength / lyricLength (ms), but only
    // when |lyricLength| - |trackLength| > 100 and both are positive.
    void TimeMix(int32_t lyricLength, int32_t trackLength);

    int32_t NumEvents() const { return static_cast<int32_t>(events_.size()); }

    // The line and word (kUnset for the whole line) to highlight.
    std::function<void(int32_t& line, int32_t& word)> onLoadEvent;

    // The list itself, for inspection (index out of range: kUnset / nullptr).
    int32_t EventLine(int32_t index) const;
    int32_t EventWord(int32_t index) const;
    int32_t EventTime(int32_t index) const;
    std::shared_ptr<cTime> EventTimeObject(int32_t index) const;

    // Index of the event last raised (0 after Clear) and the bounds of the
    // current interval.
    int32_t Current() const { return current_; }
    int32_t CurrentTime() const { return currentTime_; }
    int32_t NextTime() const { return nextTime_; }

    // Building blocks of Load, open for tests and tools.
    void Clear();
    void AddEvent(int32_t line, int32_t word, const std::shared_ptr<cTime>& time);
    // Partitioning a range of m events takes at most m + 3 comparisons, and
    // each partition leaves ranges at least one event shorter, so n events
    // take at most n(n + 1)/2 + 3n: 200,070,000 for 20,000 events. With this
    // budget every list of up to 20,000 events is sorted exactly as the
    // procedure says; a longer list built to defeat the middle pivot has the
    // rest of its ranges sorted stably once the budget is spent.
    static constexpr int64_t kSortBudget = 201'000'000;
    void QuickSort(int32_t low, int32_t high, int64_t budget = kSortBudget);

  private:
    struct Event {
        std::shared_ptr<cTime> time;
        int32_t line = 0;
        int32_t word = kUnset;
    };

    int32_t TimeAt(size_t index) const;
    void SetNextEvent(int32_t position);
    void SetPrevEvent(int32_t position);
    void Raise();

    std::vector<Event> events_;
    int32_t current_ = 0;
    int32_t currentTime_ = kUnset;
    int32_t nextTime_ = kNoNext;
    // Index of the event whose time nextTime_ holds; NumEvents() when none.
    int32_t nextIndex_ = 0;
};

}  // namespace toval
