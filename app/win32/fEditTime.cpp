#include "fEditTime.h"

#include "cWindow.h"
#include "config/cConfig.h"
#include "config/mLanguage.h"
#include "editor/cEditTime.h"
#include "fEdit.h"

namespace toval {

void fEditTime::OpenForm(HWND owner, cEditTime& dialog, cConfig& config, bool rightToLeft,
                         int dpi) {
    const auto px = [&](int v) { return MulDiv(v, dpi, 96); };
    const std::u16string title = ObjectCaption(config, u".fEditTime", u"Edit time");
    const HFONT font = MessageFont(dpi);
    HWND field = nullptr;
    bool done = false;
    cWindow window;
    window.Create(DialogArgs(owner, title, px(300), px(90), rightToLeft, L"TovalEditTime"),
                  [&](UINT message, WPARAM wParam, LPARAM, LRESULT&) {
                      if (message == WM_CLOSE) wParam = IDCANCEL;
                      if (message != WM_CLOSE && message != WM_COMMAND) return false;
                      if (LOWORD(wParam) != IDOK && LOWORD(wParam) != IDCANCEL) return false;
                      // Enter and Escape reach the field's key handler.
                      dialog.setTxtEdit(ControlText(field));
                      done =
                          dialog.txtEdit_KeyPress(LOWORD(wParam) == IDOK ? kKeyEnter : kKeyEscape);
                      return true;
                  });
    const HWND hwnd = window.Hwnd();
    field = AddControl(hwnd, L"EDIT", dialog.txtEdit(), WS_VISIBLE | WS_TABSTOP | ES_AUTOHSCROLL, 1,
                       font, WS_EX_CLIENTEDGE);
    MoveWindow(field, px(12), px(12), px(276), px(24), FALSE);
    const HWND hint = AddControl(
        hwnd, L"STATIC", config.Language().GetValue(u"objects", u".fEditTime.txtEdit.tooltiptext"),
        WS_VISIBLE | SS_LEFT, 2, font);
    MoveWindow(hint, px(12), px(42), px(276), px(40), FALSE);
    ShowWindow(hwnd, SW_SHOW);
    UpdateWindow(hwnd);
    SetFocus(field);
    SendMessageW(field, EM_SETSEL, 0, -1);
    RunModal(hwnd, owner, [&] { return done; });
    window.Destroy();
    DeleteObject(font);
}

}  // namespace toval
