// The record of one track as the player plug-in describes it: tags, length,
// file, and the numeric identifier derived from the file path.
#pragma once

#include <cstdint>
#include <string>

#include "base/mNumber.h"

namespace toval {

class cMusic {
  public:
    const std::u16string& Title() const { return title_; }
    void setTitle(const std::u16string& value) { title_ = value; }
    const std::u16string& Artist() const { return artist_; }
    void setArtist(const std::u16string& value) { artist_ = value; }
    const std::u16string& Album() const { return album_; }
    void setAlbum(const std::u16string& value) { album_ = value; }

    // Length in milliseconds; kUnset when unknown.
    int32_t MiliDuration() const { return miliDuration_; }
    void setMiliDuration(int32_t value) { miliDuration_ = value; }
    // Length in seconds: MiliDuration / 1000 rounded half to even. Writing
    // multiplies by 1000 with 32-bit wrap-around.
    int32_t Duration() const;
    void setDuration(int32_t seconds);

    const std::u16string& FileAddress() const { return fileAddress_; }
    // Stores a changed path and recomputes ID; always measures the file again
    // (FileSize keeps its value when the file cannot be measured).
    void setFileAddress(const std::u16string& path);
    int32_t FileSize() const { return fileSize_; }
    void setFileSize(int32_t value) { fileSize_ = value; }
    int32_t ID() const { return id_; }
    void setID(int32_t value) { id_ = value; }

    bool IsValidArtist() const { return !artist_.empty(); }
    bool IsValidTitle() const { return !title_.empty(); }
    bool IsValid() const { return IsValidArtist() && IsValidTitle(); }

    // Empties the tags and sets Duration and ID to kUnset (MiliDuration then
    // reads 0: kUnset * 1000 wraps to 0).
    void Reset();

    // "Artist - Title", or whichever of the two is known, else the file path.
    std::u16string MusicTitle() const;
    // Artist, album and title in UTF-8 and the seconds, joined by blanks.
    std::string Info() const;
    // Artist, album, title and seconds joined by " - ".
    std::u16string InfoW() const;
    // Lyric-file header lines: [al:], [ar:], [ti:] when known, then [re:] and
    // [ve:], each ending in CR LF.
    std::u16string IDTag() const;

    // The identifier of a path: kUnset plus, for each character (1-based
    // position i), its 8-bit code page value times i in 16-bit arithmetic.
    static int32_t ComputeID(const std::u16string& path);

  private:
    // A new record is in the state that Reset leaves.
    std::u16string title_, artist_, album_, fileAddress_;
    int32_t miliDuration_ = 0;
    int32_t fileSize_ = 0;
    int32_t id_ = kUnset;
};

}  // namespace toval
