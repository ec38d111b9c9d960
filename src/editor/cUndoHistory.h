// The editor's undo history: copies of the lyric's lines, words and times
// taken before each change (stamps, deletions, range operations, folds), with
// undo and redo. It holds at most Capacity() steps; the oldest goes first.
// A copy is of values only, so restoring gives the lyric new line, word and
// time objects. Steps share the copies of lines that did not change, so a
// step of one stamp costs one line, not the whole lyric.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <vector>

namespace toval {

class cLyric;

class cUndoHistory {
  public:
    explicit cUndoHistory(size_t capacity = 200) : capacity_(capacity) {}

    // Call before a change: remembers the lyric as it is and forgets the redo steps.
    void Record(const cLyric& lyric);
    // Undoes the last change: lyric goes back to the state before it; false
    // when there is nothing to undo.
    bool Undo(cLyric& lyric);
    bool Redo(cLyric& lyric);

    // Call after the change: when the lyric is still as Record found it, the
    // step is dropped and true answered (nothing changed).
    bool DropIfUnchanged(const cLyric& lyric);

    bool CanUndo() const { return !undo_.empty(); }
    bool CanRedo() const { return !redo_.empty(); }
    size_t UndoSize() const { return undo_.size(); }
    size_t Capacity() const { return capacity_; }
    void Clear();
    // Line copies held by all steps, each shared copy counted once.
    size_t HeldLines() const;

  private:
    struct Word {
        std::u16string text;
        std::vector<int32_t> times;
        bool operator==(const Word&) const = default;
    };
    struct Line {
        std::u16string text;
        bool karaoke = false;
        std::vector<int32_t> times;
        std::vector<Word> words;
        bool operator==(const Line&) const = default;
    };
    using Snapshot = std::vector<std::shared_ptr<const Line>>;

    // The lyric's lines; a line equal to the one at the same index of
    // `previous` shares its copy.
    static Snapshot Take(const cLyric& lyric, const Snapshot* previous);
    static bool Same(const Snapshot& a, const Snapshot& b);
    const Snapshot* Newest() const;
    static void Restore(const Snapshot& snapshot, cLyric& lyric);
    static void Push(std::deque<Snapshot>& stack, Snapshot snapshot, size_t capacity);

    size_t capacity_;
    std::deque<Snapshot> undo_;
    std::deque<Snapshot> redo_;
};

}  // namespace toval
