// The settings dialog: every key of the settings group, each in an edit box
// beside its name, two columns. OK and Apply put the texts into the record,
// save the group and hand over to onApplied (the program's reset).
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

#include "cWindow.h"

namespace toval {

class cConfig;

class fSettings {
  public:
    explicit fSettings(cConfig& config, bool rightToLeft);
    ~fSettings();

    // Shows the dialog (or brings it to the front).
    void Show();
    HWND Hwnd() const { return window_.Hwnd(); }

    std::function<void()> onApplied;
    // The window has closed: the owner may drop this object.
    std::function<void()> onClosed;

  private:
    bool OnMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result);
    void Fill();
    void Apply();
    void Close();

    cConfig& config_;
    bool rightToLeft_;
    cWindow window_;
    HFONT font_ = nullptr;
    std::vector<std::u16string> names_;
    std::vector<HWND> edits_;
};

}  // namespace toval
