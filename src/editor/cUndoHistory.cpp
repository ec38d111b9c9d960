#include "editor/cUndoHistory.h"

#include <memory>
#include <set>
#include <utility>

#include "lyric/cLyric.h"
#include "lyric/cLyricLine.h"
#include "lyric/cLyricWord.h"
#include "lyric/cTime.h"

namespace toval {

namespace {

template <class Element>
std::vector<int32_t> TimesOf(const Element& element) {
    std::vector<int32_t> times;
    times.reserve(static_cast<size_t>(element.GetTimeSize()));
    for (int32_t i = 0; i < element.GetTimeSize(); ++i)
        if (const auto time = element.GetTime(i)) times.push_back(time->Time());
    return times;
}

template <class Element>
void AddTimes(Element& element, const std::vector<int32_t>& times) {
    for (const int32_t ms : times)
        element.AddTime(std::make_shared<cTime>(ms));
}

}  // namespace

cUndoHistory::Snapshot cUndoHistory::Take(const cLyric& lyric, const Snapshot* previous) {
    Snapshot snapshot;
    snapshot.reserve(static_cast<size_t>(lyric.GetLineSize()));
    for (int32_t l = 0; l < lyric.GetLineSize(); ++l) {
        const auto line = lyric.GetLine(l);
        if (!line) continue;
        Line copy{line->Text(), line->Karaoke(), TimesOf(*line), {}};
        copy.words.reserve(static_cast<size_t>(line->GetWordSize()));
        for (int32_t w = 0; w < line->GetWordSize(); ++w)
            if (const auto word = line->GetWord(w))
                copy.words.push_back({word->Text(), TimesOf(*word)});
        const size_t index = snapshot.size();
        if (previous && index < previous->size() && *(*previous)[index] == copy)
            snapshot.push_back((*previous)[index]);
        else
            snapshot.push_back(std::make_shared<const Line>(std::move(copy)));
    }
    return snapshot;
}

bool cUndoHistory::Same(const Snapshot& a, const Snapshot& b) {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i)
        if (a[i] != b[i] && !(*a[i] == *b[i])) return false;
    return true;
}

const cUndoHistory::Snapshot* cUndoHistory::Newest() const {
    return undo_.empty() ? nullptr : &undo_.back();
}

size_t cUndoHistory::HeldLines() const {
    std::set<const Line*> lines;
    for (const auto* stack : {&undo_, &redo_})
        for (const Snapshot& snapshot : *stack)
            for (const auto& line : snapshot)
                lines.insert(line.get());
    return lines.size();
}

void cUndoHistory::Restore(const Snapshot& snapshot, cLyric& lyric) {
    while (lyric.GetLineSize() > 0)
        lyric.RemoveLine(lyric.GetLineSize() - 1);
    for (const auto& shared : snapshot) {
        const Line& copy = *shared;
        auto line = std::make_shared<cLyricLine>();
        line->setText(copy.text);
        line->setKaraoke(copy.karaoke);
        AddTimes(*line, copy.times);
        for (const Word& wordCopy : copy.words) {
            auto word = std::make_shared<cLyricWord>();
            word->setText(wordCopy.text);
            AddTimes(*word, wordCopy.times);
            line->AddWord(std::move(word));
        }
        lyric.AddLine(std::move(line));
    }
}

void cUndoHistory::Push(std::deque<Snapshot>& stack, Snapshot snapshot, size_t capacity) {
    if (capacity == 0) return;
    while (stack.size() >= capacity)
        stack.pop_front();
    stack.push_back(std::move(snapshot));
}

void cUndoHistory::Record(const cLyric& lyric) {
    Push(undo_, Take(lyric, Newest()), capacity_);
    redo_.clear();
}

bool cUndoHistory::DropIfUnchanged(const cLyric& lyric) {
    if (undo_.empty() || !Same(undo_.back(), Take(lyric, &undo_.back()))) return false;
    undo_.pop_back();
    return true;
}

bool cUndoHistory::Undo(cLyric& lyric) {
    if (undo_.empty()) return false;
    Snapshot previous = std::move(undo_.back());
    undo_.pop_back();
    Push(redo_, Take(lyric, &previous), capacity_);
    Restore(previous, lyric);
    return true;
}

bool cUndoHistory::Redo(cLyric& lyric) {
    if (redo_.empty()) return false;
    Snapshot next = std::move(redo_.back());
    redo_.pop_back();
    Push(undo_, Take(lyric, &next), capacity_);
    Restore(next, lyric);
    return true;
}

void cUndoHistory::Clear() {
    undo_.clear();
    redo_.clear();
}

}  // namespace toval
