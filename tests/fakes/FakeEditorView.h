// An editor window that records what the editor asks of it and answers
// dialogs, message boxes and the pop-up menu from scripts set by the test.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "editor/cEditAdvTime.h"
#include "editor/cEditTime.h"
#include "editor/iEditorView.h"
#include "fakes/FakeShell.h"

namespace toval::test {

class FakeEditorView : public iEditorView {
  public:
    using Box = FakeShell::Box;

    void setCaption(const std::u16string& text) override { caption = text; }
    void setEnabled(eEditorControl c, bool on) override { enabled[c] = on; }
    void setVisible(eEditorControl c, bool on) override { visible[c] = on; }
    void setChecked(eEditorControl c, bool on) override { checked[c] = on; }
    void setEditText(const std::u16string& text) override { editText = text; }
    void setEditRightToLeft(bool rtl) override { editRightToLeft = rtl; }

    bool ShowOpen(cFileDialog& dialog) override {
        openDialogs.push_back(dialog);
        if (!openAnswer) return false;
        dialog.FileName = openFile;
        return true;
    }
    bool ShowSave(cFileDialog& dialog) override {
        if (!saveAnswer) return false;
        dialog.FileName = saveFile;
        dialog.FilterIndex = saveFilter;
        return true;
    }
    int32_t ShowMessage(const std::u16string& text, const std::u16string& title,
                        int32_t flags) override {
        boxes.push_back({text, title, flags});
        if (onMessage) onMessage();
        return boxAnswer;
    }
    cMenuChoice PopupMenu(const cEditorMenu& menu) override {
        return onMenu ? onMenu(menu) : cMenuChoice{};
    }
    // Plays the user: the script sets options and fields and presses OK
    // (answer true) until cmdOk accepts, or cancels (answer false).
    bool OpenAdvTime(cEditAdvTime& dialog) override {
        if (!onAdv) return false;
        for (;;) {
            if (!onAdv(dialog)) return false;
            if (dialog.cmdOk() < 0) return true;
        }
    }
    void OpenEditTime(cEditTime& dialog) override {
        editTimeShown.push_back(dialog.txtEdit());
        if (!onEditTime) return;
        for (const int32_t key : onEditTime(dialog))
            if (dialog.txtEdit_KeyPress(key)) return;
    }
    void ShowEditInfo(const std::u16string& text) override { infoShown.push_back(text); }
    void Redraw() override {}
    void RedrawElement(int32_t, int32_t, bool) override {}
    cWindowRect WindowRect() override { return rect; }
    void setWindowRect(const cWindowRect& r) override { rect = r; }

    // Answers and scripts.
    bool openAnswer = false;
    std::u16string openFile;
    bool saveAnswer = false;
    std::u16string saveFile;
    int32_t saveFilter = 1;
    int32_t boxAnswer = kIdOk;
    std::function<void()> onMessage;
    std::function<cMenuChoice(const cEditorMenu&)> onMenu;
    std::function<bool(cEditAdvTime&)> onAdv;
    // Sets the field text and answers the keys to press.
    std::function<std::vector<int32_t>(cEditTime&)> onEditTime;

    // Records.
    std::u16string caption;
    std::map<eEditorControl, bool> enabled, visible, checked;
    std::u16string editText;
    bool editRightToLeft = false;
    std::vector<cFileDialog> openDialogs;
    std::vector<Box> boxes;
    std::vector<std::u16string> editTimeShown;
    std::vector<std::u16string> infoShown;
    cWindowRect rect;
};

}  // namespace toval::test
