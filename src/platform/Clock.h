// The wall clock, in local time (error-log time stamps). Injectable for tests.
#pragma once

#include <cstdint>

namespace toval {

struct cDateTime {
    int32_t Year = 0, Month = 0, Day = 0, Hour = 0, Minute = 0, Second = 0;
};

class Clock {
  public:
    virtual ~Clock() = default;
    virtual cDateTime Now() = 0;
};

// The real clock: the system's local time.
class cSystemClock final : public Clock {
  public:
    cDateTime Now() override;
};

}  // namespace toval
