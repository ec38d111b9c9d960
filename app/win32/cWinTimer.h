// A Timer on SetTimer: each timer owns a message-only window, so that a
// dropped timer takes its pending ticks with it. An interval of 0 or less
// never ticks.
#pragma once

#include "cWindow.h"
#include "platform/Timer.h"

namespace toval {

class cWinTimer final : public Timer {
  public:
    cWinTimer();
    ~cWinTimer() override;

    int32_t Interval() const override { return interval_; }
    void setInterval(int32_t ms) override;
    bool Enabled() const override { return enabled_; }
    void setEnabled(bool enabled) override;

  private:
    void Arm();

    cWindow window_;
    int32_t interval_ = 0;
    bool enabled_ = false;
};

}  // namespace toval
