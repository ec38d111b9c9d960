#include "core/cEventStream.h"

#include <algorithm>
#include <cstdlib>
#include <utility>
#include <vector>

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
// even) are part of the program's behaviour, and every list within the budget
// (see kSortBudget) is sorted by exactly this procedure. The ranges left after
// a partition are disjoint, so the order in which they are sorted changes
// nothing: they wait on an explicit stack, the smaller one on top, which keeps
// the stack at O(log n) ranges whatever the input.
void cEventStream::QuickSort(int32_t low, int32_t high, int64_t budget) {
    Guarded("cEventStream.QuickSort", [&] {
        if (low < 0 || high >= NumEvents() || high <= low) return;
        // The times are read once: nothing can change them during the sort.
        std::vector<int32_t> key(events_.size());
        for (int32_t k = low; k <= high; ++k)
            key[static_cast<size_t>(k)] = TimeAt(static_cast<size_t>(k));
        const auto swap = [&](int32_t a, int32_t b) {
            std::swap(events_[static_cast<size_t>(a)], events_[static_cast<size_t>(b)]);
            std::swap(key[static_cast<size_t>(a)], key[static_cast<size_t>(b)]);
        };

        int64_t spent = 0;
        std::vector<std::pair<int32_t, int32_t>> ranges{{low, high}};
        while (!ranges.empty()) {
            auto [lo, hi] = ranges.back();
            ranges.pop_back();
            if (hi <= lo) continue;
            if (spent > budget) {
                // Past the budget the list was made to defeat this pivot: the
                // rest of each range is sorted stably in O(n log n).
                std::vector<size_t> order(static_cast<size_t>(hi - lo + 1));
                for (size_t k = 0; k < order.size(); ++k)
                    order[k] = static_cast<size_t>(lo) + k;
                std::stable_sort(order.begin(), order.end(),
                                 [&](size_t a, size_t b) { return key[a] < key[b]; });
                std::vector<Event> sorted;
                std::vector<int32_t> sortedKey;
                sorted.reserve(order.size());
                sortedKey.reserve(order.size());
                for (size_t k : order) {
                    sorted.push_back(std::move(events_[k]));
                    sortedKey.push_back(key[k]);
                }
                for (size_t k = 0; k < order.size(); ++k) {
                    events_[static_cast<size_t>(lo) + k] = std::move(sorted[k]);
                    key[static_cast<size_t>(lo) + k] = sortedKey[k];
                }
                continue;
            }
            int32_t i = lo, j = hi;
            const int64_t sum = int64_t{lo} + hi;
            int64_t mid = sum / 2;
            if (sum % 2 != 0 && mid % 2 != 0) ++mid;  // x.5 goes to the even neighbour
            const int32_t pivot = key[static_cast<size_t>(mid)];
            while (i <= j) {
                // The bounds are never what stops a scan (the pivot, or what a
                // swap left behind, stops it first); they keep every read in range.
                while (++spent, i < hi && key[static_cast<size_t>(i)] < pivot)
                    ++i;
                while (++spent, j > lo && pivot < key[static_cast<size_t>(j)])
                    --j;
                if (i <= j) swap(i++, j--);
            }
            if (int64_t{j} - lo < int64_t{hi} - i) {
                ranges.emplace_back(i, hi);
                ranges.emplace_back(lo, j);
            } else {
                ranges.emplace_back(lo, j);
                ranges.emplace_back(i, hi);
            }
        }
    });
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
