#include "cWinTimer.h"

namespace toval {

namespace {
constexpr UINT_PTR kTimerId = 1;
}

cWinTimer::cWinTimer() {
    window_.Create({.parent = HWND_MESSAGE},
                   [this](UINT message, WPARAM wParam, LPARAM, LRESULT& result) {
                       if (message != WM_TIMER || wParam != kTimerId) return false;
                       result = 0;
                       // A copy: the tick may drop this timer.
                       const auto tick = onTimer;
                       if (tick) tick();
                       return true;
                   });
}

cWinTimer::~cWinTimer() {
    if (window_.Hwnd()) KillTimer(window_.Hwnd(), kTimerId);
}

void cWinTimer::Arm() {
    if (!window_.Hwnd()) return;
    if (enabled_ && interval_ > 0)
        SetTimer(window_.Hwnd(), kTimerId, static_cast<UINT>(interval_), nullptr);
    else
        KillTimer(window_.Hwnd(), kTimerId);
}

void cWinTimer::setInterval(int32_t ms) {
    interval_ = ms;
    Arm();
}

void cWinTimer::setEnabled(bool enabled) {
    if (enabled == enabled_) return;
    enabled_ = enabled;
    Arm();
}

}  // namespace toval
