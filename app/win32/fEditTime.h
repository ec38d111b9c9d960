// The single-time dialog fEditTime: one field holding a time. Enter applies
// it and Escape closes; cEditTime decides what either does.
#pragma once

#include <windows.h>

namespace toval {

class cConfig;
class cEditTime;

class fEditTime {
  public:
    // Modal over owner until the dialog closes.
    static void OpenForm(HWND owner, cEditTime& dialog, cConfig& config, bool rightToLeft, int dpi);
};

}  // namespace toval
