// The lyric editor's window (fEdit) with its dialogs: the text box of the
// first step, the lyric picture of the timing and preview steps, the buttons,
// the pop-up menu with the times of the clicked word or line, the advanced and
// the single-time dialogs and the timing help. Every key, click and button
// goes to cEditor; the window shows what cEditor says through iEditorView.
#pragma once

#include <QCheckBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QWidget>
#include <functional>
#include <string>
#include <string_view>

#include "cQtPicture.h"
#include "cQtTimer.h"
#include "editor/cEditor.h"

namespace toval {

class Shell;

// The lyric picture (pb_Main): draws the editor's lyric at the places its
// layout gave, the cursor's line and word in the highlight colours.
class cEditorPicture final : public QWidget {
  public:
    cEditorPicture(cEditor& editor, const cQtPicture& measure, const cSettings& settings);
    // The widget's rectangle of a line (word kUnset) or a word; empty when none.
    QRect Box(int32_t line, int32_t word) const;
    // Follows the lyric's laid-out size.
    void Fit();
    // Where the lyric's top left corner is drawn.
    QPoint Origin() const;

    std::function<void(int32_t keyCode, int32_t shift)> onKey;
    std::function<void(int32_t button, int32_t shift, double x, double y)> onMouse;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

  private:
    cEditor& editor_;
    const cQtPicture& measure_;
    const cSettings& settings_;
};

class cEditorWindow final : public QWidget, public iEditorView {
  public:
    struct Links {
        cGlobals& globals;
        Random& random;
        Shell& shell;  // message boxes
        // The language's caption of an object key (".fEdit.cmdSave.caption").
        std::function<std::u16string(std::u16string_view key)> objects;
        // The language's message text of a key.
        std::function<std::u16string(std::u16string_view key)> texts;
        // Brings the program-wide play position up to date (read on a stamp).
        std::function<void()> refreshPosition;
    };
    explicit cEditorWindow(Links links);
    ~cEditorWindow() override;

    cEditor& Editor() { return editor_; }
    cEditorPicture& Picture() { return *picture_; }

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

  protected:
    void closeEvent(QCloseEvent* event) override;

  private:
    // The language caption of an object, or the designer's one.
    QString Caption(std::u16string_view object, const char* english) const;
    // Labels a widget with its object's caption and tool tip.
    template <class W>
    W* Labelled(W* widget, std::u16string_view object, const char* english);
    QWidget* Control(eEditorControl control) const;
    bool FileDialog(cFileDialog& dialog, bool save);

    Links links_;
    cQtPicture measure_;  // pbAux: the lyric font, for the layout
    cQtTimer stream_;     // tmr_Stream
    cEditor editor_;
    QPlainTextEdit* text_;
    QLabel* preview_;  // the preview step's explanation
    QScrollArea* scroll_;
    cEditorPicture* picture_;
    QPushButton *cmdLoad_, *cmdSave_, *cmdInternet_, *cmdBack_, *cmdNext_, *cmdReset_;
    QCheckBox *chkAutoImplode_, *chkRighttoleft_;
};

}  // namespace toval
