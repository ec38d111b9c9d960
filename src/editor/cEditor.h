// The lyric editor (the logic of the editor window fEdit). Three steps: 1 the
// text, 2 timing while the track plays, 3 preview. Plain text becomes an
// untimed lyric (every word and every separator character a word of its own);
// the user stamps words and lines with the play position by arrow keys or the
// mouse; repeated blocks can be folded into their first copy; times can be
// deleted, shifted and scaled over a range; the result is saved as tvl, lrc or
// text, or sent to the lyrics service.
//
// The window only forwards input and draws what the editor says (iEditorView).
// Without a view the editor still works: its text procedures are usable right
// after construction.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/mNumber.h"
#include "config/cSettings.h"
#include "editor/cTimedElement.h"
#include "editor/cUndoHistory.h"
#include "editor/iEditorView.h"
#include "lyric/cLyricBlock.h"
#include "lyric/cMusic.h"
#include "lyric/cObjectArray.h"

namespace toval {

class cConfig;
class cEventStream;
class cLyric;
class iLyricSender;
class MeasureSurface;
class Random;
class Timer;

// Key codes and mouse buttons the editor acts on.
inline constexpr int32_t kKeyLeft = 37;
inline constexpr int32_t kKeyUp = 38;
inline constexpr int32_t kKeyRight = 39;
inline constexpr int32_t kKeyDown = 40;
inline constexpr int32_t kKeyY = 89;
inline constexpr int32_t kKeyZ = 90;
inline constexpr int32_t kShiftMask = 1;
inline constexpr int32_t kCtrlMask = 2;
inline constexpr int32_t kButtonLeft = 1;
inline constexpr int32_t kButtonRight = 2;

// "Not a separator": no character of the separator set has this code.
inline constexpr int16_t kNoSep = -32768;

class cEditor {
  public:
    // texts: the language text of a message key (empty texts without one).
    cEditor(cGlobals& globals, Random& random,
            std::function<std::u16string(std::u16string_view key)> texts = {});
    ~cEditor();
    cEditor(const cEditor&) = delete;
    cEditor& operator=(const cEditor&) = delete;

    // --- Wiring (all optional; not owned) ---
    void setView(iEditorView* view);
    // The measuring surface lent to the lyric for its layout (pbAux).
    void setAuxPictureBox(MeasureSurface* surface) { aux_ = surface; }
    // The preview timer (tmr_Stream).
    void setStreamTimer(Timer* timer);
    // Read for the timing help flag on every use; without it the settings
    // record's editmode_splash is used.
    void setConfig(cConfig* config) { config_ = config; }
    // Makes the service object on the first send.
    void setSenderFactory(std::function<std::shared_ptr<iLyricSender>()> factory) {
        senderFactory_ = std::move(factory);
    }
    // Raised after a successful save with the file written (the main window
    // shows the saved lyric), and when the window has closed.
    std::function<void(const std::u16string& path)> onSaved;
    std::function<void()> onClosed;

    // --- Separator set and text conversion ---
    void loadSepChars();
    void addSepChar(int16_t code);
    // code itself when it is in the separator set, else kNoSep.
    int16_t findSepChar(int16_t code) const;
    // Binary search of the set between indexes low and high; 0 when not found.
    int32_t findSepIndex(int16_t code, int32_t low, int32_t high) const;
    int32_t SepCount() const { return lastSep_ + 1; }
    std::u16string textToLyric(std::u16string_view text) const;
    std::u16string wordSep(std::u16string_view line, std::u16string_view sep) const;

    // --- Blocks and folding (on the editor's lyric) ---
    cObjectArray<cLyricBlock> getBlocks() const;
    bool blSimilarBlocks(const cLyricBlock& a, const cLyricBlock& b) const;
    void implodeBlocks(const cLyricBlock& target, const cLyricBlock& source);
    void implodeLines(cLyricLine& target, const cLyricLine& source);
    void delLinesBlock(const cLyricBlock& block);
    void implodeToval();

    // --- Timing ---
    void pb_Main_KeyDown(int32_t keyCode, int32_t shift);
    void pb_Main_MouseDown(int32_t button, int32_t shift, double x, double y);
    // Stamps the chosen word or line with the play position (ms).
    void setTime(int32_t position);
    void locateNextWord(int32_t word);
    void locateNextLine(int32_t line);
    void locateLineWord(double x, double y);
    int32_t searchLine(int32_t y, int32_t low, int32_t high) const;
    int32_t searchWord(const cLyricLine& line, int32_t x, int32_t low, int32_t high) const;
    void ChooseText(int32_t line, int32_t word);
    // The pop-up menu.
    void updateMenu(bool show);
    bool addTimeMenu(const cTimedElement& element);
    cTimedElement getMnuObject() const;
    const cEditorMenu& Menu() const { return menu_; }
    void mnuEditTime_Click(int32_t index);
    void mnuDelTime_Click(int32_t index);
    void mnuDelTimes_Click();
    void mnuAdv_Click();
    // Preview.
    void tmr_Stream_Timer();
    void ces_Stream_LoadEvent(int32_t& line, int32_t& word);

    int32_t curLine() const { return curLine_; }
    int32_t curWord() const { return curWord_; }
    int32_t newLine() const { return newLine_; }
    int32_t newWord() const { return newWord_; }
    bool lastTimeSet() const { return lastTimeSet_; }

    // --- Range operations ---
    // Smallest and largest time of the lyric; INT32_MAX and INT32_MIN when it
    // has none.
    void getTimerLimits(int32_t& smallest, int32_t& largest) const;
    // True when any line or word of the lyric has a time.
    bool HasTimes() const;
    void delTimes(int32_t from, int32_t to);
    void setDelay(int32_t delta, int32_t from, int32_t to);
    void setAdjust(double factor, int32_t newStart, int32_t from, int32_t to);

    // --- Undo (lyric content and times) ---
    bool Undo();
    bool Redo();
    bool CanUndo() const { return history_.CanUndo(); }
    bool CanRedo() const { return history_.CanRedo(); }
    const cUndoHistory& History() const { return history_; }

    // --- Steps, files, sending, the window's life ---
    void Form_Load(const cMusic& playing);
    // Sets cancel while a send is under way; otherwise stores the window's
    // settings and closes.
    void Form_Unload(bool& cancel);
    void updateStep(int32_t step);
    void cmdNext_Click() { updateStep(WrapAdd(step_, 1)); }
    void cmdBack_Click() { updateStep(WrapSub(step_, 1)); }
    void cmdLoad_Click();
    void cmdSave_Click();
    void cmdReset_Click();
    void cmdInternet_Click();
    void chkRighttoleft_Click(bool checked);
    void chkAutoImplode_Click(bool checked);
    // The text box changed by the user.
    void txtEdit_Change(const std::u16string& text);
    // The service's answer to a send.
    void tvl_Site_Toval(int32_t result, int32_t id);

    int32_t Step() const { return step_; }
    bool Sending() const { return sending_; }
    bool Sent() const { return sent_; }
    const std::u16string& EditText() const { return editText_; }
    bool EditRightToLeft() const { return editRightToLeft_; }
    std::shared_ptr<cLyric> Lyric() const { return lyric_; }
    const cMusic& Music() const { return music_; }
    std::shared_ptr<cEventStream> Stream() const { return stream_; }
    const std::u16string& Caption() const { return caption_; }
    bool Enabled(eEditorControl control) const;
    bool Visible(eEditorControl control) const;
    bool Checked(eEditorControl control) const;

    // The text written by a save with filter 1 (tvl), 2 (lrc) or 3 (text).
    std::u16string SaveText(int32_t filterIndex) const;
    // True when the editor's track is the one the player is playing.
    bool IsPlayingTrack() const { return music_.ID() == globals_.TrackID; }

  private:
    // (low + high) / 2 to the nearest integer, halves to even.
    static int32_t Middle(int32_t low, int32_t high);
    void Mutated();
    void BeforeChange();
    void AfterChange();
    void AfterRestore();
    void ResetCursor();
    void BuildLyricFromText();
    void StartPreview();
    void StopPreview();
    void Relayout();
    std::u16string Text(std::u16string_view key) const;
    std::u16string TrackFolder() const;
    void setEnabled(eEditorControl control, bool enabled);
    void setVisible(eEditorControl control, bool visible);
    void setChecked(eEditorControl control, bool checked);
    template <class F>
    void ForEachTime(F&& visit) const;

    cGlobals& globals_;
    Random& random_;
    std::function<std::u16string(std::u16string_view)> texts_;
    std::unique_ptr<iEditorView> noView_;  // stands in while there is no window
    iEditorView* view_;
    MeasureSurface* aux_ = nullptr;
    Timer* streamTimer_ = nullptr;
    cConfig* config_ = nullptr;
    std::function<std::shared_ptr<iLyricSender>()> senderFactory_;
    std::shared_ptr<iLyricSender> sender_;

    // The separator set, ascending as signed 16-bit values.
    std::vector<int16_t> sepChars_;
    std::vector<std::u16string> sepStrings_;
    int32_t lastSep_ = -1;

    std::shared_ptr<cLyric> lyric_;
    cMusic music_;
    std::shared_ptr<cEventStream> stream_;
    cUndoHistory history_;

    int32_t step_ = 1;
    int32_t curLine_ = kUnset, curWord_ = kUnset;
    int32_t newLine_ = kUnset, newWord_ = kUnset;
    std::shared_ptr<cTime> lastTime_;
    bool lastTimeSet_ = false;
    cEditorMenu menu_;

    std::u16string caption_;
    std::u16string editText_;
    bool editRightToLeft_ = false;
    // The lyric came from a file and the text box still shows it unchanged.
    bool fileLyric_ = false;
    bool sending_ = false;
    bool sent_ = false;
    int32_t sendId_ = 0;
    std::array<bool, kEditorControlCount> enabled_{};
    std::array<bool, kEditorControlCount> visible_{};
    std::array<bool, kEditorControlCount> checked_{};
};

}  // namespace toval
