// The Timer port on a QTimer of the program's event loop. An interval of 0 or
// less never ticks.
#pragma once

#include <QTimer>

#include "platform/Timer.h"

namespace toval {

class cQtTimer final : public Timer {
  public:
    cQtTimer();
    int32_t Interval() const override { return interval_; }
    void setInterval(int32_t ms) override;
    bool Enabled() const override { return enabled_; }
    void setEnabled(bool enabled) override;

  private:
    void Arm();

    QTimer timer_;
    int32_t interval_ = 0;
    bool enabled_ = false;
};

}  // namespace toval
