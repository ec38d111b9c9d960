#include "core/cEventStream.h"

#include <algorithm>
#include <cstdlib>

#include "base/cErrorLog.h"
#include "lyric/cLyric.h"
#include "lyric/cLyricLine.h"
#include "lyric/cLyricWord.h"
#include "lyric/cTime.h"

namespace toval {

void cEventStream::Clear() {
    std::vector<Event>().swap(events_);
    current_ = 0;
    currentTime_ = kUnset;
    nextTime_ = kNoNext;
    nextIndex_ = 0;
}

int32_t cEventStream::TimeAt(size_t index) const {
    const auto& time = events_[index].time;
    return time ? time->Time() : kUnset;
}

int32_t cEventStream::EventLine(int32_t index) const {
    if (index < 0 || index >= NumEvents()) return kUnset;
    return events_[static_cast<size_t>(index)].line;
}

int32_t cEventStream::EventWord(int32_t index) const {
    if (index < 0 || index >= NumEvents()) return kUnset;
    return events_[static_cast<size_t>(index)].word;
}

int32_t cEventStream::EventTime(int32_t index) const {
    if (index < 0 || index >= NumEvents()) return kUnset;
    return TimeAt(static_cast<size_t>(index));
}

std::shared_ptr<cTime> cEventStream::EventTimeObject(int32_t index) const {
    if (index < 0 || index >= NumEvents()) return nullptr;
    return events_[static_cast<size_t>(index)].time;
}

void cEventStream::AddEvent(int32_t line, int32_t word, const std::shared_ptr<cTime>& time) {
    Guarded("cEventStream.AddEvent", [&] {
        if (!time || events_.size() >= static_cast<size_t>(kNoNext)) return;
        events_.push_back(Event{time, line, word});
    });
}

void cEventStream::Load(const std::shared_ptr<cLyric>& lyric) {
    Guarded("cEventStream.Load [let]", [&] {
        Clear();
        if (!lyric) return;
        const int32_t lines = lyric->GetLineSize();
        for (int32_t i = 0; i < lines; ++i) {
            const auto line = lyric->GetLine(i);
            if (!line) continue;
            // Line starts count whatever their value; words only from 1 ms on.
            for (int32_t t = 0; t < line->GetTimeSize(); ++t)
                AddEvent(i, kUnset, line->GetTime(t));
            for (int32_t w = 0; w < line->GetWordSize(); ++w) {
                const auto word = line->GetWord(w);
                if (!word) continue;
                for (int32_t t = 0; t < word->GetTimeSize(); ++t) {
                    const auto time = word->GetTime(t);
                    if (time && time->Time() >= 1) AddEvent(i, w, time);
                }
            }
        }
        if (!events_.empty()) {
            QuickSort(0, NumEvents() - 1);
            nextTime_ = TimeAt(0);
        }
        nextIndex_ = 0;
    });
}

// The order of events with equal times decides which of them is raised, so
// this partition scheme and its pivot choice (the middle index rounded half to
// even) are part of the program's behaviour. The ranges left after a partition
// are disjoint, so sorting the smaller one first by recursion and the larger
// one in the loop gives the same result with a stack depth of O(log n).
void cEventStream::QuickSort(int32_t low, int32_t high) {
    Guarded("cEventStream.QuickSort", [&] {
        if (low < 0 || high >= NumEvents() || high <= low) return;
        int32_t depth = 32;
        for (int64_t n = int64_t{high} - low + 1; n > 1; n /= 2)
            depth += 4;
        SortRange(low, high, depth);
    });
}

// depth: partitions still allowed on the way down to any part of the range.
// Real lyrics need about log2(n) of them; a list built to make this pivot
// choice degrade would need n / 2 and so O(n^2) comparisons. Once the budget
// is spent, the rest of that range is sorted stably in O(n log n) instead.
void cEventStream::SortRange(int32_t low, int32_t high, int32_t depth) {
    while (high > low) {
        if (depth-- <= 0) {
            std::stable_sort(events_.begin() + low, events_.begin() + high + 1,
                             [](const Event& a, const Event& b) {
                                 return (a.time ? a.time->Time() : kUnset) <
                                        (b.time ? b.time->Time() : kUnset);
                             });
            return;
        }
        int32_t i = low, j = high;
        const int64_t sum = int64_t{low} + high;
        int64_t mid = sum / 2;
        if (sum % 2 != 0 && mid % 2 != 0) ++mid;  // x.5 goes to the even neighbour
        const Event pivot = events_[static_cast<size_t>(mid)];
        const int32_t pivotTime = pivot.time ? pivot.time->Time() : kUnset;
        while (i <= j) {
            while (i < high && TimeAt(static_cast<size_t>(i)) < pivotTime)
                ++i;
            while (j > low && pivotTime < TimeAt(static_cast<size_t>(j)))
                --j;
            if (i <= j) {
                std::swap(events_[static_cast<size_t>(i)], events_[static_cast<size_t>(j)]);
                ++i;
                --j;
            }
        }
        if (int64_t{j} - low < int64_t{high} - i) {
            SortRange(low, j, depth);
            low = i;
        } else {
            SortRange(i, high, depth);
            high = j;
        }
    }
}

void cEventStream::SetNextEvent(int32_t p) {
    const int32_t n = NumEvents();
    int32_t cursor = current_;
    while (nextTime_ <= p && nextIndex_ < n) {
        current_ = cursor;
        currentTime_ = nextTime_;
        ++cursor;
        nextIndex_ = cursor;
        nextTime_ = cursor < n ? TimeAt(static_cast<size_t>(cursor)) : kNoNext;
    }
}

void cEventStream::SetPrevEvent(int32_t p) {
    int32_t cursor = current_;
    while (currentTime_ > p) {
        nextTime_ = currentTime_;
        nextIndex_ = cursor;
        --cursor;
        if (cursor >= 0) {
            current_ = cursor;
            currentTime_ = TimeAt(static_cast<size_t>(cursor));
        } else {
            currentTime_ = kUnset;
        }
    }
}

void cEventStream::Raise() {
    if (current_ < 0 || current_ >= NumEvents()) return;
    const Event& event = events_[static_cast<size_t>(current_)];
    int32_t line = event.line, word = event.word;
    if (onLoadEvent) onLoadEvent(line, word);
}

void cEventStream::UpdateTimeEvent(int32_t p) {
    if (p < nextTime_) {
        if (p >= currentTime_) return;
        SetPrevEvent(p);
        Raise();
    } else if (nextIndex_ < NumEvents()) {
        // Past the last event there is nothing left to reach, even at the
        // largest position.
        SetNextEvent(p);
        Raise();
    }
}

void cEventStream::TimeMix(int32_t lyricLength, int32_t trackLength) {
    Guarded("cEventStream.TimeMix", [&] {
        const int64_t lyricAbs = std::llabs(int64_t{lyricLength});
        const int64_t trackAbs = std::llabs(int64_t{trackLength});
        // Only ever compresses: the difference of the absolute values, not
        // the absolute difference.
        if (!(lyricAbs - trackAbs > 100 && lyricLength > 0 && trackLength > 0)) return;
        const double ratio = static_cast<double>(trackLength) / static_cast<double>(lyricLength);
        for (const Event& event : events_) {
            if (!event.time) continue;
            int32_t scaled;
            if (ToInt32(static_cast<double>(event.time->Time()) * ratio, scaled))
                event.time->setTime(scaled);
        }
    });
}

}  // namespace toval
