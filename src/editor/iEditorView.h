// The editor window as the editor's logic sees it. The window forwards keys,
// clicks and button presses to cEditor and draws what cEditor tells it through
// this interface: the caption, which controls are enabled, shown or checked,
// the text box, the file dialogs, message boxes, the pop-up menu, the two time
// dialogs and redraw requests. Both front-ends implement it; tests use a fake.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace toval {

class cEditAdvTime;
class cEditTime;

// The controls whose state the logic decides.
enum class eEditorControl : int32_t {
    fraText,  // the frame around the text box (step 1)
    pb_Main,  // the lyric picture box (steps 2 and 3)
    cmdLoad,
    cmdSave,
    cmdInternet,
    cmdBack,
    cmdNext,
    cmdReset,
    chkAutoImplode,
    chkRighttoleft,
};
inline constexpr int32_t kEditorControlCount = 10;

// Buttons of a message box not named by the Shell port (the Windows MB_ value).
inline constexpr int32_t kMbYesNoCancel = 0x3;

// One file dialog: the folder it opens in, the filter ("name|pattern|..."),
// the 1-based filter index, and the chosen file.
struct cFileDialog {
    std::u16string InitDir;
    std::u16string Filter;
    int32_t FilterIndex = 1;
    std::u16string FileName;
};

// The content of the pop-up menu: one entry per time of the clicked element
// under "edit time" and under "delete from"; the two sub-menus are enabled only
// when there is at least one time.
struct cEditorMenu {
    std::vector<std::u16string> EditTimes;  // entry i + 1 of mnuEditTime
    std::vector<std::u16string> DelTimes;   // entry i + 1 of mnuDelTime
    bool EditTimesEnabled = false;
    bool DelFromEnabled = false;
};

// What the user picked in the pop-up menu.
struct cMenuChoice {
    enum Kind : int32_t { None, EditTime, DelTime, DelTimes, Adv };
    Kind What = None;
    int32_t Index = 0;  // for EditTime and DelTime: the entry, from 1
};

// The editor window's position and size, in twips.
struct cWindowRect {
    int32_t Top = 0, Left = 0, Width = 0, Height = 0;
};

class iEditorView {
  public:
    virtual ~iEditorView() = default;

    virtual void setCaption(const std::u16string& text) = 0;
    virtual void setEnabled(eEditorControl control, bool enabled) = 0;
    virtual void setVisible(eEditorControl control, bool visible) = 0;
    virtual void setChecked(eEditorControl control, bool checked) = 0;

    // The text box (txtEdit): its text and reading direction.
    virtual void setEditText(const std::u16string& text) = 0;
    virtual void setEditRightToLeft(bool rightToLeft) = 0;

    // Modal file dialogs; false when cancelled. They may change FilterIndex
    // and set FileName.
    virtual bool ShowOpen(cFileDialog& dialog) = 0;
    virtual bool ShowSave(cFileDialog& dialog) = 0;
    // A modal message box (Shell flags); answers the button (kIdYes, ...).
    virtual int32_t ShowMessage(const std::u16string& text, const std::u16string& title,
                                int32_t flags) = 0;
    // Pops the menu up at the mouse and answers the entry chosen (None when
    // the menu was dismissed).
    virtual cMenuChoice PopupMenu(const cEditorMenu& menu) = 0;
    // The advanced time dialog, modal. The window lets the user change the
    // options and fields of `dialog` and calls its cmdOk on OK; answers true
    // when cmdOk accepted the fields, false when cancelled.
    virtual bool OpenAdvTime(cEditAdvTime& dialog) = 0;
    // The single-time dialog, modal: the window edits dialog's text and hands
    // it the keys pressed in the field (txtEdit_KeyPress) until that answers
    // that the dialog closes.
    virtual void OpenEditTime(cEditTime& dialog) = 0;
    // The timing help window with its text and the arrow-key pictures.
    virtual void ShowEditInfo(const std::u16string& text) = 0;

    // pb_Main must be drawn again whole (the lyric or its layout changed).
    virtual void Redraw() = 0;
    // One line (word kUnset) or one word drawn plain or highlighted. After
    // the lyric changed an index may be out of range: nothing is drawn then.
    virtual void RedrawElement(int32_t line, int32_t word, bool highlighted) = 0;

    virtual cWindowRect WindowRect() = 0;
    virtual void setWindowRect(const cWindowRect& rect) = 0;
};

}  // namespace toval
