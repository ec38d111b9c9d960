// A Timer that ticks on a cPosixLoop. An interval of 0 or less never ticks.
#pragma once

#include <chrono>

#include "platform/Timer.h"
#include "posix/cPosixLoop.h"

namespace toval {

class cPosixTimer final : public Timer {
  public:
    explicit cPosixTimer(cPosixLoop& loop);
    ~cPosixTimer() override;
    cPosixTimer(const cPosixTimer&) = delete;
    cPosixTimer& operator=(const cPosixTimer&) = delete;

    int32_t Interval() const override { return interval_; }
    void setInterval(int32_t ms) override;
    bool Enabled() const override { return enabled_; }
    void setEnabled(bool enabled) override;

  private:
    friend class cPosixLoop;
    using clock = std::chrono::steady_clock;

    bool Armed() const { return enabled_ && interval_ > 0; }
    // Ticks when due; the next period starts from now.
    void Fire(clock::time_point now);

    cPosixLoop& loop_;
    int32_t interval_ = 0;
    bool enabled_ = false;
    clock::time_point due_{};
};

}  // namespace toval
