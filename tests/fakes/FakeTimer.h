// A Timer that ticks only when the test says so.
#pragma once

#include "platform/Timer.h"

namespace toval::test {

class FakeTimer : public Timer {
  public:
    int32_t Interval() const override { return interval; }
    void setInterval(int32_t ms) override { interval = ms; }
    bool Enabled() const override { return enabled; }
    void setEnabled(bool on) override { enabled = on; }

    // Raises the tick when enabled; returns whether it did.
    bool tick() {
        if (!enabled || !onTimer) return false;
        onTimer();
        return true;
    }

    int32_t interval = 0;
    bool enabled = false;
};

}  // namespace toval::test
