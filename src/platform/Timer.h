// A form timer: an interval in milliseconds, an enabled flag and a tick.
// Win32: SetTimer on a hidden window; Qt: QTimer; tests: a manual tick().
#pragma once

#include <cstdint>
#include <functional>

namespace toval {

class Timer {
  public:
    virtual ~Timer() = default;

    virtual int32_t Interval() const = 0;
    // Changing the interval of an enabled timer restarts its period.
    virtual void setInterval(int32_t ms) = 0;
    virtual bool Enabled() const = 0;
    virtual void setEnabled(bool enabled) = 0;

    // Raised on every tick while enabled.
    std::function<void()> onTimer;
};

}  // namespace toval
