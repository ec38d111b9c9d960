// One whole lyric in memory: its lines, its property section, the ID tags
// kept from an LRC text, and the layout of every line and word in pixels.
// It reads the tvl, LRC and plain text forms alike (setLoad) and writes them
// back (TVL, LRC, TextRebuild).
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "base/mNumber.h"
#include "lyric/cDelta.h"
#include "lyric/cLyricLine.h"
#include "lyric/cObjectArray.h"
#include "platform/MeasureSurface.h"
#include "platform/Random.h"

namespace toval {

class cMusic;

class cLyric {
  public:
    // random: the source for Mutate (not owned); without one Mutate does nothing.
    explicit cLyric(Random* random = nullptr);

    // Every line's Text + CR LF; a line of exactly one blank gives only CR LF.
    std::u16string Text() const;
    // The same with every line's display text (TextRebuild).
    std::u16string TextRebuild() const;
    // Average line height (bottom of the layout / lines), rounded half to
    // even; kUnset without lines.
    int32_t TextHeight() const;
    // The leading ID tag lines of an LRC text, each with its CR LF.
    const std::u16string& IDTags() const { return idTags_; }

    int32_t Mutation() const { return mutation_; }
    void setMutation(int32_t v) { mutation_ = v; }
    // 0, 1 left; 2 right; 3 centred; anything else leaves X positions alone.
    int32_t Alignment() const { return alignment_; }
    void setAlignment(int32_t v) { alignment_ = v; }
    bool RightToLeft() const { return rightToLeft_; }
    void setRightToLeft(bool v) { rightToLeft_ = v; }
    int32_t TrackLength() const { return trackLength_; }
    void setTrackLength(int32_t v) { trackLength_ = v; }

    // A new random revision number: draw * 2147483647 + 1 rounded half to
    // even, clamped into 1..2147483647 (the largest draws below 1 round to
    // 2147483648, which becomes 2147483647).
    void Mutate();
    Random* RandomSource() const { return random_; }
    void setRandomSource(Random* random) { random_ = random; }

    // The size of the laid-out text: Final = (widest line, bottom of last line).
    std::shared_ptr<cDelta> Delta() const { return delta_; }
    // True when no line and no word has a time; recomputed by setLoad only.
    bool Simple() const { return simple_; }

    // Not owned; the owner selects the display font into it.
    MeasureSurface* AuxPictureBox() const { return aux_; }
    void setAuxPictureBox(MeasureSurface* surface) { aux_ = surface; }

    // Lines, 0-based; nullptr out of range.
    std::shared_ptr<cLyricLine> GetLine(int32_t index) const { return lines_.Element(index); }
    void RemoveLine(int32_t index) { lines_.Remove(index); }
    int32_t GetLineSize() const { return lines_.Size(); }
    void AddLine(std::shared_ptr<cLyricLine> line) { lines_.Add(std::move(line)); }
    // Inserts before index (clamped to 0..GetLineSize()).
    void InsertLine(int32_t index, std::shared_ptr<cLyricLine> line) {
        lines_.Insert(index, std::move(line));
    }

    // The property section, "[PROPERTY]" ... "[\PROPERTY]" (no CR LF after it).
    std::u16string Properties() const;
    // Reads the text between the markers: "KEY:value" pieces, each ended by CR LF.
    void setProperties(std::u16string_view section);

    // Every line in LRC form + CR LF.
    std::u16string LoadLRC() const;
    // Every line record + CR LF.
    std::u16string Load() const;
    // Reads a whole lyric text (tvl, LRC or plain), then lays it out.
    void setLoad(std::u16string_view text);

    bool Editable() const { return editable_; }
    void setEditable(bool v) { editable_ = v; }
    const std::u16string& URL() const { return url_; }
    void setURL(std::u16string url) { url_ = std::move(url); }

    // Lays out every line and word on the measuring surface.
    void Resize();

    // The tvl document: properties, then the line records (or the plain
    // display text when Simple).
    std::u16string TVL() const;
    // The LRC document: the kept ID tags, else the track's tag header (when a
    // track is given), then every line in LRC form.
    std::u16string LRC(std::shared_ptr<cMusic> track) const;

  private:
    cObjectArray<cLyricLine> lines_;
    std::u16string idTags_;
    bool simple_ = true;
    std::shared_ptr<cDelta> delta_;
    int32_t mutation_ = kUnset;
    int32_t alignment_ = 0;
    bool rightToLeft_ = false;
    int32_t trackLength_ = kUnset;
    bool editable_ = true;
    std::u16string url_;
    MeasureSurface* aux_ = nullptr;
    Random* random_ = nullptr;
};

}  // namespace toval
