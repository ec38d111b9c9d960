// A lyric element that carries times: a word, or a line's own times when no
// word is named. The editor's menu, single-time dialog and range operations
// treat both alike.
#pragma once

#include <cstdint>
#include <memory>

#include "lyric/cLyricLine.h"
#include "lyric/cLyricWord.h"
#include "lyric/cTime.h"

namespace toval {

struct cTimedElement {
    std::shared_ptr<cLyricLine> Line;
    std::shared_ptr<cLyricWord> Word;  // when set, the element is this word

    bool IsSet() const { return Word != nullptr || Line != nullptr; }

    int32_t GetTimeSize() const {
        if (Word) return Word->GetTimeSize();
        return Line ? Line->GetTimeSize() : 0;
    }
    std::shared_ptr<cTime> GetTime(int32_t index) const {
        if (Word) return Word->GetTime(index);
        return Line ? Line->GetTime(index) : nullptr;
    }
    void RemoveTime(int32_t index) const {
        if (Word)
            Word->RemoveTime(index);
        else if (Line)
            Line->RemoveTime(index);
    }
    void RemoveTimeAll() const {
        if (Word)
            Word->RemoveTimeAll();
        else if (Line)
            Line->RemoveTimeAll();
    }
    void AddTime(std::shared_ptr<cTime> time) const {
        if (Word)
            Word->AddTime(std::move(time));
        else if (Line)
            Line->AddTime(std::move(time));
    }
};

}  // namespace toval
