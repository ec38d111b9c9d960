// One lyric line: its start times, its words (a karaoke line) or its plain
// text, and its box in the layout.
//
// Record form: "[ms]" per time (or "[]"), then the word records or the text.
// LRC form: "[mm:ss.cc]" of the first time, then the display text.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "lyric/cDelta.h"
#include "lyric/cLyricWord.h"
#include "lyric/cObjectArray.h"
#include "lyric/cTime.h"
#include "platform/MeasureSurface.h"

namespace toval {

class cLyricLine {
  public:
    cLyricLine() = default;

    // Created on first request.
    std::shared_ptr<cDelta> Delta() const;
    void setDelta(std::shared_ptr<cDelta> delta) { delta_ = std::move(delta); }
    bool Karaoke() const { return karaoke_; }
    void setKaraoke(bool karaoke) { karaoke_ = karaoke; }

    // The line's own start times (0-based; nullptr out of range).
    std::shared_ptr<cTime> GetTime(int32_t index) const { return times_.Element(index); }
    int32_t GetTimeSize() const { return times_.Size(); }
    void AddTime(std::shared_ptr<cTime> time) { times_.Add(std::move(time)); }
    void RemoveTime(int32_t index) { times_.Remove(index); }
    void RemoveTimeAll() { times_.Free(true); }

    // Words (0-based; nullptr out of range). The line's Text is not touched.
    std::shared_ptr<cLyricWord> GetWord(int32_t index) const { return words_.Element(index); }
    int32_t GetWordSize() const { return words_.Size(); }
    void AddWord(std::shared_ptr<cLyricWord> word) { words_.Add(std::move(word)); }
    // Inserts before index (clamped to 0..GetWordSize()).
    void InsertWord(int32_t index, std::shared_ptr<cLyricWord> word) {
        words_.Insert(index, std::move(word));
    }
    void RemoveWord(int32_t index) { words_.Remove(index); }
    void RemoveWordAll() { words_.Free(true); }

    // No words, and the text is empty or blanks (U+0020) only.
    bool IsEmpty() const;
    // Neither the line nor any of its words has a time.
    bool Simple() const;

    // Display text: the words joined (from two words on), right-to-left words
    // placed on the left of what is joined so far; else the line's Text.
    std::u16string TextRebuild() const;
    // "[mm:ss.cc]" of the first time ("[00:00.00]" when untimed), then the
    // text joined as TextRebuild joins it, starting from that tag.
    std::u16string LoadLRC() const;

    const std::u16string& Text() const { return text_; }
    void setText(std::u16string text) { text_ = std::move(text); }

    // The line record.
    std::u16string Load() const;
    // Reads a line record: line tags (bad ones skipped), then either the text
    // or, from the first "<" on, the words.
    void setLoad(std::u16string_view record);

    // Lays the words out from the line's box: each word spans the measured
    // width of all words up to it (kerning and blanks included).
    void Resize();
    MeasureSurface* AuxPictureBox() const { return aux_; }
    void setAuxPictureBox(MeasureSurface* surface) { aux_ = surface; }

    // Appends the record / the LRC line to out (the document writers build one string).
    void AppendLoad(std::u16string& out) const;
    void AppendLoadLRC(std::u16string& out) const;
    void AppendTextRebuild(std::u16string& out) const;

  private:
    void AppendJoined(std::u16string& out, std::u16string_view head) const;

    std::u16string text_;
    mutable std::shared_ptr<cDelta> delta_;
    cObjectArray<cTime> times_;
    cObjectArray<cLyricWord> words_;
    bool karaoke_ = false;
    MeasureSurface* aux_ = nullptr;
};

}  // namespace toval
