// The lyric display as the program drives it: the shown lyric and track, the
// display mode, the highlight of the current line and word, and a click on a
// lyric that carries a link. The windows (task-bar or free window) own the
// surface, follow onWindowChanged / onReajustWindow / onCurrentLine, and
// forward clicks; everything about which piece is painted in which colour
// lives here.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "config/cSettings.h"
#include "platform/DrawSurface.h"

namespace toval {

class Shell;
class cLyric;
class cLyricLine;
class cLyricWord;
class cMusic;

// Colour slots.
enum ColorSlot : int32_t {
    kSlotBackground = 0,
    kSlotBackText = 1,
    kSlotNormalText = 2,
    kSlotHighlight = 3,
};

// Display modes.
inline constexpr int32_t kModeDetached = 0;
inline constexpr int32_t kModeTray = 1;
inline constexpr int32_t kModeWindow = 2;

class cDisplay {
  public:
    cDisplay(cGlobals& globals, DrawSurface& surface, Shell& shell);
    virtual ~cDisplay();
    cDisplay(const cDisplay&) = delete;
    cDisplay& operator=(const cDisplay&) = delete;

    // Display mode: 0 detached, 1 task bar, 2 window.
    virtual int32_t Window() const { return window_; }
    virtual void setWindow(int32_t mode);

    // Takes the colour slots from the settings and draws the lyric afresh.
    virtual void Load();
    // Removes the lyric and blanks the display.
    virtual void Clear();
    // Asks the window to refit itself.
    virtual void ReajustWindow();

    virtual std::shared_ptr<cLyric> Lyric() const { return lyric_; }
    // Shows a lyric (laid out already, or laid out here when it has a
    // measuring surface) with nothing highlighted.
    virtual void setLyric(std::shared_ptr<cLyric> lyric);
    virtual std::shared_ptr<cMusic> Music() const { return music_; }
    virtual void setMusic(std::shared_ptr<cMusic> music) { music_ = std::move(music); }

    // Moves the highlight to line and word (kUnset word: the whole line).
    virtual void ChooseText(int32_t line, int32_t word);
    // Repaints one line (each of its words, or the line itself without words).
    void DrawTextLine(const std::shared_ptr<cLyricLine>& line, int32_t slot, bool isTitle);
    // Repaints one word, or one line without words.
    void DrawText(const std::shared_ptr<cLyricWord>& word, int32_t slot, bool isTitle);
    void DrawText(const std::shared_ptr<cLyricLine>& line, int32_t slot, bool isTitle);

    // The full redraw: background, every line in the back-text colour, no
    // highlight.
    void Redraw();

    // A click on the shown lyric: a lyric with a link opens it.
    void Click();

    cColor SlotColor(int32_t slot) const;
    void setSlotColor(int32_t slot, cColor color);
    int32_t CurrentLine() const { return line_; }
    int32_t CurrentWord() const { return word_; }
    DrawSurface& Surface() { return surface_; }

    // For the windows.
    std::function<void(int32_t mode)> onWindowChanged;
    std::function<void()> onReajustWindow;
    // A new current line; its box, so that the window can keep it in view.
    std::function<void(const cRect& box)> onCurrentLine;
    // After a full redraw; the lyric's whole box.
    std::function<void(const cRect& box)> onRedrawn;
    // A lyric's link was opened.
    std::function<void(const std::u16string& url)> onLinkOpened;

  private:
    void ChooseTextBody(int32_t line, int32_t word);
    void Paint(const std::u16string& text, const cRect& box, int32_t slot, bool isTitle);
    bool Underlined(bool isTitle) const;

    cGlobals& globals_;
    DrawSurface& surface_;
    Shell& shell_;
    std::shared_ptr<cLyric> lyric_;
    std::shared_ptr<cMusic> music_;
    int32_t window_ = kModeDetached;
    int32_t line_ = kUnset;
    int32_t word_ = kUnset;
    std::array<cColor, 4> slots_{};
};

}  // namespace toval
