#include "fEditAdvTime.h"

#include <array>

#include "cWindow.h"
#include "editor/cEditAdvTime.h"
#include "fEdit.h"

namespace toval {

namespace {

enum Id : int { kOptDelete = 10, kOptDelay, kOptAdjust, kOptAll, kOptFrom, kFirstField = 20 };

// One control of the dialog, in pixels at 96 dpi.
struct Item {
    const wchar_t* cls;
    int id;
    const char16_t* name;
    const char16_t* english;
    DWORD style;
    int x, y, w, h;
};

constexpr DWORD kRadio = BS_RADIOBUTTON | WS_TABSTOP;
constexpr Item kItems[] = {
    {L"BUTTON", 0, u"fmrAction", u"Action", BS_GROUPBOX, 8, 4, 360, 108},
    {L"BUTTON", kOptDelete, u"optDelete", u"Delete", kRadio, 20, 26, 104, 22},
    {L"BUTTON", kOptDelay, u"optDelay", u"Delay by", kRadio, 20, 54, 104, 22},
    {L"BUTTON", kOptAdjust, u"optAdjust", u"Adjust", kRadio, 20, 82, 104, 22},
    {L"STATIC", 0, u"lblSep", u"to", SS_CENTER, 226, 85, 30, 20},
    {L"BUTTON", 0, u"fmrSelect", u"Select", BS_GROUPBOX, 8, 116, 360, 80},
    {L"BUTTON", kOptAll, u"optAll", u"All", kRadio, 20, 138, 104, 22},
    {L"BUTTON", kOptFrom, u"optFrom", u"From", kRadio, 20, 166, 104, 22},
    {L"STATIC", 0, u"lblTo", u"to", SS_CENTER, 226, 169, 30, 20},
    {L"BUTTON", IDOK, u"cmdOk", u"OK", BS_DEFPUSHBUTTON | WS_TABSTOP, 196, 206, 80, 26},
    {L"BUTTON", IDCANCEL, u"cmdCancel", u"Cancel", WS_TABSTOP, 286, 206, 80, 26},
};
// The time fields by index: from, to, delay, new start, new end.
constexpr std::array<POINT, cEditAdvTime::kFieldCount> kFields{
    {{130, 166}, {262, 166}, {130, 54}, {130, 82}, {262, 82}}};

}  // namespace

bool fEditAdvTime::OpenForm(HWND owner, cEditAdvTime& dialog, cConfig& config, bool rightToLeft,
                            int dpi) {
    const auto px = [&](int v) { return MulDiv(v, dpi, 96); };
    const std::u16string title = ObjectCaption(config, u".fEditAdvTime", u"Advanced time editing");
    const HFONT font = MessageFont(dpi);
    std::array<HWND, cEditAdvTime::kFieldCount> fields{};
    bool done = false, accepted = false;
    cWindow window;
    const auto show = [&] {
        const HWND hwnd = window.Hwnd();
        const int action = dialog.Action();
        CheckDlgButton(hwnd, kOptDelete, action == cEditAdvTime::kDelete);
        CheckDlgButton(hwnd, kOptDelay, action == cEditAdvTime::kDelay);
        CheckDlgButton(hwnd, kOptAdjust, action == cEditAdvTime::kAdjust);
        CheckDlgButton(hwnd, kOptAll, !dialog.optFrom());
        CheckDlgButton(hwnd, kOptFrom, dialog.optFrom());
        for (int i = 0; i < cEditAdvTime::kFieldCount; ++i)
            EnableWindow(fields[static_cast<size_t>(i)], dialog.FieldEnabled(i));
    };
    const auto command = [&](int id) {
        switch (id) {
            case kOptDelete:
                dialog.optDelete_Click();
                break;
            case kOptDelay:
                dialog.optDelay_Click();
                break;
            case kOptAdjust:
                dialog.optAdjust_Click();
                break;
            case kOptAll:
                dialog.optAll_Click();
                break;
            case kOptFrom:
                dialog.optFrom_Click();
                break;
            case IDOK: {
                for (int i = 0; i < cEditAdvTime::kFieldCount; ++i)
                    dialog.setTxtEdit(i, ControlText(fields[static_cast<size_t>(i)]));
                const int32_t bad = dialog.cmdOk();
                if (bad < 0) {
                    accepted = done = true;
                    return;
                }
                // The field that failed takes the focus, its text selected.
                const HWND field = fields[static_cast<size_t>(bad)];
                SetFocus(field);
                SendMessageW(field, EM_SETSEL, 0, -1);
                return;
            }
            case IDCANCEL:
                done = true;
                return;
            default:
                return;
        }
        show();
    };
    window.Create(DialogArgs(owner, title, px(376), px(240), rightToLeft, L"TovalEditAdvTime"),
                  [&](UINT message, WPARAM wParam, LPARAM, LRESULT&) {
                      if (message == WM_CLOSE) command(IDCANCEL);
                      if (message == WM_COMMAND && HIWORD(wParam) == BN_CLICKED)
                          command(LOWORD(wParam));
                      return message == WM_CLOSE || message == WM_COMMAND;
                  });
    const HWND hwnd = window.Hwnd();
    const std::u16string prefix = u".fEditAdvTime.";
    for (const Item& item : kItems)
        MoveWindow(
            AddControl(hwnd, item.cls, ObjectCaption(config, prefix + item.name, item.english),
                       WS_VISIBLE | item.style, item.id, font),
            px(item.x), px(item.y), px(item.w), px(item.h), FALSE);
    for (int i = 0; i < cEditAdvTime::kFieldCount; ++i) {
        const POINT at = kFields[static_cast<size_t>(i)];
        const HWND field =
            AddControl(hwnd, L"EDIT", dialog.txtEdit(i), WS_VISIBLE | WS_TABSTOP | ES_AUTOHSCROLL,
                       kFirstField + i, font, WS_EX_CLIENTEDGE);
        MoveWindow(field, px(at.x), px(at.y), px(90), px(24), FALSE);
        fields[static_cast<size_t>(i)] = field;
    }
    show();
    ShowWindow(hwnd, SW_SHOW);
    UpdateWindow(hwnd);
    SetFocus(GetDlgItem(hwnd, IDOK));
    RunModal(hwnd, owner, [&] { return done; });
    window.Destroy();
    DeleteObject(font);
    return accepted;
}

}  // namespace toval
