// The advanced time dialog fEditAdvTime: an action (delete, delay by, adjust
// to a new start and end) over the whole lyric or a range. cEditAdvTime holds
// the options, the five time fields and the check of OK.
#pragma once

#include <windows.h>

namespace toval {

class cConfig;
class cEditAdvTime;

class fEditAdvTime {
  public:
    // Modal over owner; true when OK was accepted.
    static bool OpenForm(HWND owner, cEditAdvTime& dialog, cConfig& config, bool rightToLeft,
                         int dpi);
};

}  // namespace toval
