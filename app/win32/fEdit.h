// The lyric editor window fEdit. cEditor holds all of its logic; this form
// forwards the keys, clicks and button presses to it and shows what it says
// (iEditorView): the text box in step 1, the lyric picture with the cursor's
// line and word in steps 2 and 3, the buttons, the pop-up menu, the file
// dialogs, the message boxes and the two time dialogs.
#pragma once

#include <windows.h>

#include <array>
#include <functional>
#include <memory>
#include <string>

#include "cGdiSurface.h"
#include "cWinShell.h"
#include "cWinTimer.h"
#include "cWindow.h"
// windows.h makes DrawText a name of DrawTextW; cDisplay has its own.
#undef DrawText
#include "display/cDisplay.h"
#include "editor/cEditor.h"

namespace toval {

class cConfig;
class cMusic;

// Messages that tools and tests may send to the editor window.
inline constexpr UINT kEditQueryCursor = WM_APP + 0x50;   // wParam 0: curLine, 1: curWord
inline constexpr UINT kEditQueryElement = WM_APP + 0x51;  // (line, word): its centre in pb_Main
inline constexpr wchar_t kEditClass[] = L"TovalEditor";
inline constexpr wchar_t kEditPictureClass[] = L"TovalEditPicture";
// Control ids: 100 + the control's eEditorControl value; the text box is
// the one of fraText.
inline constexpr int kEditControlId = 100;
inline constexpr int kEditInfoId = 99;

// A caption of the language's [objects] section ("<key>.caption"), or english.
std::u16string ObjectCaption(cConfig& config, const std::u16string& key, const char16_t* english);

class fEdit final : public iEditorView {
  public:
    fEdit(cGlobals& globals, Random& random, cConfig& config, cWinShell& shell);
    ~fEdit() override;
    fEdit(const fEdit&) = delete;
    fEdit& operator=(const fEdit&) = delete;

    // Form_Load on the playing track, then the window appears.
    void Show(const cMusic& playing);
    HWND Hwnd() const { return window_.Hwnd(); }
    cEditor& Editor() { return editor_; }

    // The window has closed: the owner may drop this object.
    std::function<void()> onClosed;

    // iEditorView
    void setCaption(const std::u16string& text) override;
    void setEnabled(eEditorControl control, bool enabled) override;
    void setVisible(eEditorControl control, bool visible) override;
    void setChecked(eEditorControl control, bool checked) override;
    void setEditText(const std::u16string& text) override;
    void setEditRightToLeft(bool rightToLeft) override;
    bool ShowOpen(cFileDialog& dialog) override;
    bool ShowSave(cFileDialog& dialog) override;
    int32_t ShowMessage(const std::u16string& text, const std::u16string& title,
                        int32_t flags) override;
    cMenuChoice PopupMenu(const cEditorMenu& menu) override;
    bool OpenAdvTime(cEditAdvTime& dialog) override;
    void OpenEditTime(cEditTime& dialog) override;
    void ShowEditInfo(const std::u16string& text) override;
    void Redraw() override;
    void RedrawElement(int32_t line, int32_t word, bool highlighted) override;
    cWindowRect WindowRect() override;
    void setWindowRect(const cWindowRect& rect) override;

  private:
    void CreateControls();
    void CreateTextBox();
    void ApplyFonts();
    void Layout();
    HWND Control(eEditorControl control) const;
    bool FileDialog(cFileDialog& dialog, bool save);
    void Redrawn(const cRect& whole);
    void KeepInView(const cRect& box);
    bool ElementBox(int32_t line, int32_t word, cRect& box) const;
    void Close();
    bool OnMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result);
    bool OnPicture(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result);

    cGlobals& globals_;
    cConfig& config_;
    cWinShell& shell_;
    cGdiSurface surface_;  // pbAux, and the picture pb_Main shows
    cDisplay display_;     // paints the lyric's pieces on surface_
    cWinTimer stream_;     // tmr_Stream
    cEditor editor_;
    cWindow window_;
    cWindow picture_;  // pb_Main
    std::array<HWND, kEditorControlCount> controls_{};
    HWND info_ = nullptr;  // the step's explanation
    HFONT font_ = nullptr;
    HFONT textFont_ = nullptr;
    int dpi_ = 96;
    // The picture's point shown at pb_Main's top left corner, the lyric's
    // whole box, and where the last click was (the pop-up menu opens there).
    int viewLeft_ = 0, viewTop_ = 0;
    cRect whole_;
    POINT click_{};
    bool redrawing_ = false;
};

}  // namespace toval
