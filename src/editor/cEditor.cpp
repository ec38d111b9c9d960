// The editor's steps, loading, saving, resetting, sending, closing and undo.
#include "editor/cEditor.h"

#include <memory>

#include "base/cErrorLog.h"
#include "base/mFile.h"
#include "config/cConfig.h"
#include "core/cEventStream.h"
#include "editor/cEditAdvTime.h"
#include "editor/cEditTime.h"
#include "lyric/cLyric.h"
#include "net/iLyricSender.h"
#include "platform/Shell.h"
#include "platform/Timer.h"

namespace toval {

namespace {

constexpr char16_t kHelpText[] =
    u"Use the keyboard arrow keys to syncronize Toval to music. You can use the mouse either.";
constexpr char16_t kLoadFilter[] = u"Toval (*.tvl)|*.tvl|Lyric (*.lrc)|*.lrc|";
constexpr char16_t kSaveFilter[] = u"Toval (*.tvl)|*.tvl|Lyric (*.lrc)|*.lrc|Text (*.txt)|*.txt";
constexpr int32_t kSentOk = 1;
constexpr int32_t kSentSqlError = 2;
constexpr int32_t kSentFailure = 5;

// The editor without a window: every request is accepted and forgotten,
// dialogs are cancelled.
class cNoView final : public iEditorView {
  public:
    void setCaption(const std::u16string&) override {}
    void setEnabled(eEditorControl, bool) override {}
    void setVisible(eEditorControl, bool) override {}
    void setChecked(eEditorControl, bool) override {}
    void setEditText(const std::u16string&) override {}
    void setEditRightToLeft(bool) override {}
    bool ShowOpen(cFileDialog&) override { return false; }
    bool ShowSave(cFileDialog&) override { return false; }
    int32_t ShowMessage(const std::u16string&, const std::u16string&, int32_t) override {
        return kIdCancel;
    }
    cMenuChoice PopupMenu(const cEditorMenu&) override { return {}; }
    bool OpenAdvTime(cEditAdvTime&) override { return false; }
    void OpenEditTime(cEditTime&) override {}
    void ShowEditInfo(const std::u16string&) override {}
    void Redraw() override {}
    void RedrawElement(int32_t, int32_t, bool) override {}
    cWindowRect WindowRect() override { return rect_; }
    void setWindowRect(const cWindowRect& rect) override { rect_ = rect; }

  private:
    cWindowRect rect_;
};

size_t Index(eEditorControl control) {
    return static_cast<size_t>(control);
}

}  // namespace

cEditor::cEditor(cGlobals& globals, Random& random,
                 std::function<std::u16string(std::u16string_view key)> texts)
    : globals_(globals),
      random_(random),
      texts_(std::move(texts)),
      noView_(std::make_unique<cNoView>()),
      view_(noView_.get()),
      lyric_(std::make_shared<cLyric>(&random)) {
    setView(nullptr);
    enabled_.fill(true);
    visible_.fill(true);
    loadSepChars();
}

cEditor::~cEditor() {
    // The timer's tick must not reach a destroyed editor.
    if (streamTimer_) {
        streamTimer_->setEnabled(false);
        streamTimer_->onTimer = nullptr;
    }
    if (sender_) sender_->onToval = nullptr;
}

void cEditor::setView(iEditorView* view) {
    view_ = view ? view : noView_.get();
}

void cEditor::setStreamTimer(Timer* timer) {
    if (streamTimer_) streamTimer_->onTimer = nullptr;
    streamTimer_ = timer;
    if (streamTimer_) streamTimer_->onTimer = [this] { tmr_Stream_Timer(); };
}

std::u16string cEditor::Text(std::u16string_view key) const {
    return texts_ ? texts_(key) : std::u16string();
}

std::u16string cEditor::TrackFolder() const {
    return GetLyricPath(music_.FileAddress());
}

bool cEditor::Enabled(eEditorControl control) const {
    return enabled_[Index(control)];
}
bool cEditor::Visible(eEditorControl control) const {
    return visible_[Index(control)];
}
bool cEditor::Checked(eEditorControl control) const {
    return checked_[Index(control)];
}

void cEditor::setEnabled(eEditorControl control, bool enabled) {
    enabled_[Index(control)] = enabled;
    view_->setEnabled(control, enabled);
}
void cEditor::setVisible(eEditorControl control, bool visible) {
    visible_[Index(control)] = visible;
    view_->setVisible(control, visible);
}
void cEditor::setChecked(eEditorControl control, bool checked) {
    checked_[Index(control)] = checked;
    view_->setChecked(control, checked);
}

// --- Changes and undo ---

void cEditor::Mutated() {
    lyric_->Mutate();
    sent_ = false;
}

void cEditor::BeforeChange() {
    history_.Record(*lyric_);
}

void cEditor::AfterChange() {
    if (history_.DropIfUnchanged(*lyric_)) return;
    Mutated();
    if (step_ == 3 && stream_) stream_->Load(lyric_);
}

void cEditor::AfterRestore() {
    // The lyric now holds new time objects: the last stamp is gone, and the
    // preview must follow the new ones.
    lastTime_ = nullptr;
    lastTimeSet_ = false;
    Mutated();
    Relayout();
    if (curLine_ != kUnset && curLine_ >= lyric_->GetLineSize()) ResetCursor();
    if (step_ == 3 && stream_) stream_->Load(lyric_);
    view_->Redraw();
}

bool cEditor::Undo() {
    return Guarded("fEdit.Undo", false, [&] {
        if (step_ != 2 && step_ != 3) return false;
        if (!history_.Undo(*lyric_)) return false;
        AfterRestore();
        return true;
    });
}

bool cEditor::Redo() {
    return Guarded("fEdit.Redo", false, [&] {
        if (step_ != 2 && step_ != 3) return false;
        if (!history_.Redo(*lyric_)) return false;
        AfterRestore();
        return true;
    });
}

void cEditor::ResetCursor() {
    ChooseText(kUnset, kUnset);
    curWord_ = kUnset;
    newLine_ = kUnset;
    newWord_ = kUnset;
    lastTime_ = nullptr;
    lastTimeSet_ = false;
}

void cEditor::Relayout() {
    lyric_->setAuxPictureBox(aux_);
    lyric_->Resize();
}

// --- Steps ---

void cEditor::BuildLyricFromText() {
    if (!fileLyric_) {
        auto lyric = std::make_shared<cLyric>(&random_);
        lyric->setRightToLeft(editRightToLeft_);
        lyric->setAuxPictureBox(aux_);
        // Text with tags is taken as line records already.
        const bool records = editText_.find_first_of(u"<[") != std::u16string::npos;
        lyric->setLoad(records ? editText_ : textToLyric(editText_));
        lyric_ = std::move(lyric);
        Mutated();
    } else if (lyric_->RightToLeft() != editRightToLeft_) {
        // The direction box was changed after loading the file.
        lyric_->setRightToLeft(editRightToLeft_);
        Mutated();
    }
    if (music_.MiliDuration() > 0) lyric_->setTrackLength(music_.MiliDuration());
    history_.Clear();
    Relayout();
}

void cEditor::StartPreview() {
    stream_ = std::make_shared<cEventStream>();
    stream_->onLoadEvent = [this](int32_t& line, int32_t& word) {
        ces_Stream_LoadEvent(line, word);
    };
    stream_->Load(lyric_);
    if (!streamTimer_) return;
    // Half the display's redraw interval, so no highlight change is missed.
    int32_t interval = 1;
    if (!ToInt32(globals_.Settings.timer_PictureRefresh / 2.0, interval) || interval < 1)
        interval = 1;
    streamTimer_->setInterval(interval);
    streamTimer_->setEnabled(true);
}

void cEditor::StopPreview() {
    if (streamTimer_) streamTimer_->setEnabled(false);
    stream_ = nullptr;
}

void cEditor::updateStep(int32_t step) {
    Guarded("fEdit.updateStep", [&] {
        if (step < 1 || step > 3) return;
        const int32_t from = step_;
        step_ = step;
        static constexpr std::u16string_view kKeys[] = {u"TovalEditText", u"TovalEditTime",
                                                        u"TovalEditPreview"};
        caption_ = Text(kKeys[step - 1]) + u" - " + music_.MusicTitle();
        view_->setCaption(caption_);

        if (step == 1) {
            StopPreview();
            ResetCursor();
            setVisible(eEditorControl::fraText, true);
            setVisible(eEditorControl::pb_Main, false);
            setEnabled(eEditorControl::cmdNext, true);
            setEnabled(eEditorControl::cmdLoad, true);
            setEnabled(eEditorControl::cmdBack, false);
            setEnabled(eEditorControl::cmdReset, false);
            setEnabled(eEditorControl::cmdSave, false);
            setEnabled(eEditorControl::cmdInternet, false);
            setEnabled(eEditorControl::chkRighttoleft, true);
            return;
        }
        if (step == 2) {
            if (from == 3) {
                StopPreview();
                setEnabled(eEditorControl::cmdSave, false);
                setEnabled(eEditorControl::cmdInternet, false);
                ResetCursor();
            } else {
                setVisible(eEditorControl::fraText, false);
                setVisible(eEditorControl::pb_Main, true);
                setEnabled(eEditorControl::cmdLoad, false);
                setEnabled(eEditorControl::cmdBack, true);
                setEnabled(eEditorControl::chkRighttoleft, false);
                BuildLyricFromText();
                ResetCursor();
                view_->Redraw();
                const bool splash =
                    config_ ? config_->editModeSplash() : globals_.Settings.editmode_splash;
                if (splash) view_->ShowEditInfo(kHelpText);
            }
            setEnabled(eEditorControl::cmdReset, true);
            setEnabled(eEditorControl::cmdNext, true);
            return;
        }
        // Step 3, the preview.
        setEnabled(eEditorControl::cmdNext, false);
        bool fold = false;
        if (from == 2) {
            // Read before the box is disabled: a lyric is folded at most once.
            fold =
                Enabled(eEditorControl::chkAutoImplode) && Checked(eEditorControl::chkAutoImplode);
            setEnabled(eEditorControl::cmdReset, false);
            setEnabled(eEditorControl::chkAutoImplode, false);
            lastTime_ = nullptr;
            lastTimeSet_ = false;
        }
        if (fold) {
            BeforeChange();
            implodeToval();
            AfterChange();
            if (curLine_ != kUnset && curLine_ >= lyric_->GetLineSize()) ResetCursor();
        }
        Relayout();
        view_->Redraw();
        setEnabled(eEditorControl::cmdSave, true);
        setEnabled(eEditorControl::cmdInternet, true);
        StartPreview();
    });
}

// --- The window's life ---

void cEditor::Form_Load(const cMusic& playing) {
    Guarded("fEdit.Form_Load", [&] {
        loadSepChars();
        setChecked(eEditorControl::chkAutoImplode, globals_.Settings.edt_AutoImplode);
        setEnabled(eEditorControl::chkAutoImplode, true);
        setChecked(eEditorControl::chkRighttoleft, editRightToLeft_);
        const cSettings& s = globals_.Settings;
        view_->setWindowRect(
            {s.pos_EditWinTop, s.pos_EditWinLeft, s.size_EditWinWidth, s.size_EditWinHeight});
        music_ = playing;
        sent_ = false;
        step_ = 0;
        updateStep(1);
    });
}

void cEditor::Form_Unload(bool& cancel) {
    cancel = false;
    if (sending_) {
        // The service's answer is still to come.
        cancel = true;
        return;
    }
    Guarded("fEdit.Form_Unload", [&] {
        StopPreview();
        step_ = 1;
        const cWindowRect rect = view_->WindowRect();
        cSettings& s = globals_.Settings;
        s.pos_EditWinTop = rect.Top;
        s.pos_EditWinLeft = rect.Left;
        s.size_EditWinWidth = rect.Width;
        s.size_EditWinHeight = rect.Height;
        s.edt_AutoImplode = Checked(eEditorControl::chkAutoImplode);
    });
    if (onClosed) onClosed();
}

void cEditor::txtEdit_Change(const std::u16string& text) {
    if (text == editText_) return;
    editText_ = text;
    // Edited text is converted again on the way to the timing step.
    fileLyric_ = false;
}

void cEditor::chkRighttoleft_Click(bool checked) {
    checked_[Index(eEditorControl::chkRighttoleft)] = checked;
    editRightToLeft_ = checked;
    view_->setEditRightToLeft(checked);
}

void cEditor::chkAutoImplode_Click(bool checked) {
    checked_[Index(eEditorControl::chkAutoImplode)] = checked;
}

// --- Files ---

void cEditor::cmdLoad_Click() {
    Guarded("fEdit.cmdLoad_Click", [&] {
        if (step_ != 1) return;
        cFileDialog dialog{
            TrackFolder(), std::u16string(kLoadFilter) + Text(u"AllFiles") + u" (*.*)|*.*", 1, {}};
        if (!view_->ShowOpen(dialog) || dialog.FileName.empty()) return;
        if (!FileExists(dialog.FileName)) {
            ErrorTrail({"fEdit.cmdLoad_Click", "file not found"});
            return;
        }
        auto lyric = std::make_shared<cLyric>(&random_);
        lyric->setAuxPictureBox(aux_);
        lyric->setLoad(FileRead(dialog.FileName));
        lyric_ = std::move(lyric);
        history_.Clear();
        editText_ = lyric_->Text();
        view_->setEditText(editText_);
        editRightToLeft_ = lyric_->RightToLeft();
        view_->setEditRightToLeft(editRightToLeft_);
        setChecked(eEditorControl::chkRighttoleft, editRightToLeft_);
        fileLyric_ = true;
    });
}

std::u16string cEditor::SaveText(int32_t filterIndex) const {
    return Guarded("fEdit.SaveText", std::u16string(), [&] {
        if (filterIndex == 2) return lyric_->LRC(std::make_shared<cMusic>(music_));
        if (filterIndex == 3) return lyric_->TextRebuild();
        // The tvl document, plain text after the properties when no line and
        // no word has a time. The lyric's Simple flag says so only as it was
        // read; stamps and deletions made since are counted here.
        return lyric_->Properties() + (HasTimes() ? lyric_->Load() : lyric_->TextRebuild());
    });
}

void cEditor::cmdSave_Click() {
    Guarded("fEdit.cmdSave_Click", [&] {
        cFileDialog dialog{TrackFolder(), kSaveFilter, 1, {}};
        if (!music_.FileAddress().empty()) dialog.FileName = GetTovalAddress(music_.FileAddress());
        if (!view_->ShowSave(dialog) || dialog.FileName.empty()) return;
        if (!FileSaveUTF8(dialog.FileName, SaveText(dialog.FilterIndex))) {
            view_->ShowMessage(Text(u"SaveFailed"), Text(u"ErrorTitle"), kMbIconError);
            return;
        }
        if (onSaved) onSaved(dialog.FileName);
    });
}

void cEditor::cmdReset_Click() {
    Guarded("fEdit.cmdReset_Click", [&] {
        const int32_t answer =
            view_->ShowMessage(Text(u"RequestLyricReset"), Text(u"RequestLyricResetTitle"),
                               kMbYesNoCancel | kMbIconQuestion);
        if (answer != kIdYes) return;
        // All times go: the lyric is built from the text again.
        fileLyric_ = false;
        updateStep(1);
    });
}

// --- Sending ---

void cEditor::cmdInternet_Click() {
    bool requested = false;
    Guarded("fEdit.cmdInternet_Click", [&] {
        if (sending_) return;
        sending_ = true;
        setEnabled(eEditorControl::cmdInternet, false);
        if (!sender_ && senderFactory_) {
            sender_ = senderFactory_();
            if (sender_)
                sender_->onToval = [this](int32_t result, int32_t id) {
                    tvl_Site_Toval(result, id);
                };
        }
        sendId_ = WrapAdd(sendId_, 1);
        if (!sender_) return;
        // A copy read back from the saved form, so that what is sent is
        // exactly what a save writes.
        auto copy = std::make_shared<cLyric>(&random_);
        copy->setLoad(SaveText(1));
        requested = true;
        sender_->Save(music_, copy, sendId_);
    });
    // Without a request under way no answer will come: the window must not
    // stay locked.
    if (sending_ && !requested) tvl_Site_Toval(kSentFailure, sendId_);
}

void cEditor::tvl_Site_Toval(int32_t result, int32_t id) {
    if (!sending_ || id != sendId_) return;
    Guarded("fEdit.tvl_Site_Toval", [&] {
        if (result == kSentOk)
            view_->ShowMessage(Text(u"TovalSentOk"), Text(u"TovalSentOkTitle"), kMbIconInformation);
        else if (result == kSentSqlError)
            view_->ShowMessage(Text(u"TovalSentSqlError"), Text(u"TovalSentSqlErrorTitle"),
                               kMbIconError);
        else
            view_->ShowMessage(Text(u"TovalSentFail"), Text(u"TovalSentFailTitle"), kMbIconError);
    });
    if (result == kSentOk) sent_ = true;
    sending_ = false;
    setEnabled(eEditorControl::cmdInternet, true);
}

}  // namespace toval
