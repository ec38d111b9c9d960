// The timing help window fEditInfo: how to time a lyric, with a picture of
// the keyboard's arrow keys.
#pragma once

#include <windows.h>

#include <string>

namespace toval {

class cConfig;

class fEditInfo {
  public:
    // Modal over owner until OK, Enter, Escape or the close box.
    static void OpenForm(HWND owner, const std::u16string& text, cConfig& config, bool rightToLeft,
                         int dpi);
};

}  // namespace toval
